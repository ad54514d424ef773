#pragma once

#include "roi/FrameContrast.h"

#include <QWidget>

#include <cstdint>
#include <span>
#include <vector>

class QCheckBox;
class QLabel;
class QSlider;
class QSpinBox;

namespace zarvi {

class ZarviGraphicsView;

/// Browses an image stack (height x width x frames) of a data file one frame at
/// a time: a frame slider, autocontrast between the 0.5 and 99.5 percentiles of
/// the frame (or the full range of its bit count), and the value of the pixel
/// under the mouse; the frame is shown in a ZarviGraphicsView, so it zooms with
/// the wheel and pans with the middle button. Each frame is read on demand through
/// ImageFrameReader, the file being opened under its lock and closed around the read. GUI
/// thread.
class ImageStackWidget : public QWidget
{
    Q_OBJECT

public:
    ImageStackWidget(const QString& filePath, const QString& datasetPath, QWidget* parent = nullptr);

    /// Reads the stack's shape, bit count and frame times and shows the first
    /// frame; false with `error` when the dataset is not a readable stack (one whose "Time"
    /// has one entry per frame).
    bool load(QString& error);
    /// Reads and shows frame `index`; false when the file is busy or the read fails.
    bool showFrame(int index);
    void setAutoContrast(bool enabled);

    int frameCount() const { return m_frames; }
    int frameWidth() const { return m_width; }
    int frameHeight() const { return m_height; }
    int currentFrame() const { return m_current; }
    std::span<const std::uint16_t> frame() const;
    ContrastRange contrast() const;
    /// Shows the value of pixel (x, y) of the current frame; (-1, -1) clears it.
    void showPixel(int x, int y);
    QString pixelText() const;

signals:
    void sendStatusMessage(const QString& text);

private:
    void updateFrameLabel();

    QString m_filePath;
    QString m_datasetPath;
    int m_height = 0;
    int m_width = 0;
    int m_frames = 0;
    int m_bitCount = 16;
    int m_current = -1;
    std::vector<double> m_frameTimes;

    ZarviGraphicsView* m_view;
    QSlider* m_slider;
    QSpinBox* sb_frame;
    QLabel* lb_frame;
    QCheckBox* cb_autoContrast;
    QLabel* lb_pixel;
};

} // namespace zarvi
