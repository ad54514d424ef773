#pragma once

#include <QWidget>

#include <opencv2/core.hpp>

#include <functional>
#include <memory>

class QCheckBox;
class QLabel;
class QSlider;
class QSpinBox;

namespace zarvi {

class BackgroundJob;
class ZarviGraphicsView;

/// The preview of an image operation: the selected frame of the input stack (where the
/// operation's regions are drawn) and, beside it, that frame as the operation would
/// compute it. A slider and a spin box choose the frame; "Autocontrast" changes the
/// display only. Reading the frame and computing its preview run off the GUI thread,
/// one at a time; a request made while one runs is served when it ends. GUI thread.
class ImageFramePreview : public QWidget
{
    Q_OBJECT

public:
    /// Computes the preview of one frame: input CV_32FC1, output any single-channel
    /// image (converted for display with rounding and saturation, as a run writes it).
    /// Runs on a worker thread: it must own everything it uses.
    using Computation = std::function<bool(const cv::Mat& input, cv::Mat& output)>;

    explicit ImageFramePreview(QWidget* parent = nullptr);
    ~ImageFramePreview() override;

    /// The stack shown; the first frame is read at once.
    void setStack(const QString& filepath, const QString& stackPath, int frames, int bitCount);
    /// Sets how the preview is computed (none hides the output side) and recomputes it.
    void setComputation(Computation computation);
    /// The view showing the input frame, for drawing regions on it.
    ZarviGraphicsView* inputView() const { return m_input; }
    ZarviGraphicsView* outputView() const { return m_output; }
    int currentFrame() const;
    /// True while a frame is being read or computed.
    bool isBusy() const;

signals:
    /// The frame shown and its preview are up to date.
    void previewUpdated();

public slots:
    /// Shows frame `index`; the slider and the spin box follow.
    void showFrame(int index);
    /// Recomputes the preview of the current frame (after a parameter changed).
    void refresh();

private:
    void startJob();
    void onJobFinished(bool canceled);

    ZarviGraphicsView* m_input;
    ZarviGraphicsView* m_output;
    QLabel* lb_output;
    QSlider* m_slider;
    QSpinBox* sb_frame;
    QCheckBox* cb_autocontrast;
    QLabel* lb_status;
    std::unique_ptr<BackgroundJob> m_job;
    Computation m_computation;
    QString m_filepath;
    QString m_stackPath;
    int m_bitCount = 16;
    bool m_pending = false;
    /// Written by the job, read on the GUI thread once it has finished.
    struct Result;
    std::shared_ptr<Result> m_result;
};

} // namespace zarvi
