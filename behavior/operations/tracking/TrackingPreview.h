#pragma once

#include "behavior/operations/tracking/FrameTracking.h"

#include <QWidget>

#include <memory>

class QGraphicsPathItem;
class QLabel;
class QSlider;
class QSpinBox;

namespace zarvi {

class BackgroundJob;
class ZarviGraphicsView;

/// The preview of Animal Tracking on one frame of the video: the frame in grey beside the
/// threshold mask, with the position found marked on both and written below, and the
/// animal's size estimated there. A slider and a spin box choose the frame. Decoding
/// and thresholding run off the GUI thread, one at a time; a request made while one runs
/// is served when it ends. The last decoded frame is kept, so a change of thresholds
/// does not decode again, and moving forward decodes only the frames in between. GUI
/// thread.
class TrackingPreview : public QWidget
{
    Q_OBJECT

public:
    explicit TrackingPreview(QWidget* parent = nullptr);
    ~TrackingPreview() override;

    /// The video shown, of `frames` frames; the first frame is previewed at once.
    void setVideo(const QString& videoPath, int frames);
    /// The thresholds to preview; recomputes the current frame.
    void setThresholds(const ThresholdSettings& thresholds);
    int currentFrame() const;
    /// True while a frame is being decoded or thresholded.
    bool isBusy() const;
    /// The position found on the frame shown; (-1, -1) when none.
    cv::Point position() const { return m_position; }
    ZarviGraphicsView* frameView() const { return m_frameView; }
    ZarviGraphicsView* maskView() const { return m_maskView; }

signals:
    /// The frame shown, its mask and position are up to date.
    void previewUpdated();
    /// The animal's size on the frame shown, in pixels, when an animal was found.
    void animalSizeEstimated(int size);

public slots:
    void showFrame(int index);

private:
    struct Source;
    struct Result;

    void refresh();
    void startJob();
    void onJobFinished();
    void showResult(const Result& result);

    ZarviGraphicsView* m_frameView;
    ZarviGraphicsView* m_maskView;
    QSlider* m_slider;
    QSpinBox* sb_previewFrame;
    QLabel* lb_position;
    /// The position marks; deleted before the views, whose scenes hold them.
    std::unique_ptr<QGraphicsPathItem> m_frameMark;
    std::unique_ptr<QGraphicsPathItem> m_maskMark;
    std::unique_ptr<BackgroundJob> m_job;
    /// The decoder and the last frame, used by one job at a time.
    std::shared_ptr<Source> m_source;
    std::shared_ptr<Result> m_result;
    ThresholdSettings m_thresholds;
    cv::Point m_position{-1, -1};
    bool m_pending = false;
};

} // namespace zarvi
