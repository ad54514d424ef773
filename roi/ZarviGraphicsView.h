#pragma once

#include "roi/FrameContrast.h"

#include <QGraphicsView>
#include <QImage>
#include <QPointer>

#include <cstdint>
#include <vector>

class QGraphicsPixmapItem;

namespace zarvi {

class AbstractROIHandler;

/// Shows one unsigned 16-bit image frame with the regions of interest drawn over it. The
/// frame is shown in grey levels over a display range, its 0.5th to 99.5th percentiles
/// with autocontrast, else the full range of its bit count; the values themselves are
/// never changed. A colour frame (a video's) is shown as it is, with no contrast. Pixel
/// (x, y) is centred on scene point (x, y). Navigation: the frame fits the view when shown
/// and follows resizes until the user zooms; the wheel zooms around the cursor; dragging
/// with the middle button pans. The pixel under the cursor and its value are reported by
/// pixelHovered(). One ROI handler at a time receives the mouse and keys
/// (setActiveHandler); the ROI items belong to their handlers, never to the scene. GUI
/// thread.
class ZarviGraphicsView : public QGraphicsView
{
    Q_OBJECT

public:
    explicit ZarviGraphicsView(QWidget* parent = nullptr);
    ~ZarviGraphicsView() override;

    /// Shows `frame`, row by row, of `width` x `height` pixels; false, with nothing
    /// changed, when its size does not match. A new size fits the view again.
    bool setFrame(std::vector<std::uint16_t> frame, int width, int height, int bitCount);
    /// Shows a colour frame as it is, in place of any grey frame; the value of a pixel is
    /// then its grey level (qGray). A new size fits the view again.
    bool setColorFrame(const QImage& image);
    const std::vector<std::uint16_t>& frame() const { return m_frame; }
    QSize imageSize() const { return m_imageSize; }
    /// The value of pixel (x, y); -1 outside the image.
    int pixelValue(int x, int y) const;
    /// Autocontrast changes the display only.
    void setAutoContrast(bool enabled);
    bool autoContrast() const { return m_autoContrast; }
    ContrastRange contrast() const { return m_contrast; }

    /// Makes `handler` the one that receives the mouse and keys, in place of the previous.
    void setActiveHandler(AbstractROIHandler* handler);
    void clearActiveHandler();
    AbstractROIHandler* activeHandler() const;

    /// Scales the frame to fill the view, keeping its aspect ratio, and centres it.
    void fitToView();
    /// Screen pixels per image pixel.
    double zoom() const;
    /// The scene position under a viewport position, unrounded.
    QPointF scenePosition(const QPointF& viewportPos) const;

signals:
    /// The cursor is over pixel (x, y) holding `value`; (-1, -1, -1) off the image.
    void pixelHovered(int x, int y, int value);

protected:
    bool viewportEvent(QEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void refreshImage();
    void reportPixel(const QPointF& viewportPos);
    double fitScale() const;
    /// Sets the zoom keeping the scene point under `viewportPos` where it is.
    void zoomAround(double scale, const QPointF& viewportPos);
    void updateSmoothing();

    QGraphicsScene* m_scene;
    QGraphicsPixmapItem* m_pixmap;
    std::vector<std::uint16_t> m_frame;
    QImage m_colorFrame;
    QSize m_imageSize;
    int m_bitCount = 16;
    bool m_autoContrast = true;
    ContrastRange m_contrast;
    QPointer<AbstractROIHandler> m_handler;
    bool m_followsSize = true;
    bool m_panning = false;
    QPointF m_panFrom;
};

} // namespace zarvi
