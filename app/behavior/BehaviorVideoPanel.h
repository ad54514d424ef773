#pragma once

#include <QElapsedTimer>
#include <QImage>
#include <QTimer>
#include <QWidget>

#include <opencv2/core.hpp>

#include <memory>
#include <vector>

class QLabel;
class QSlider;
class QThread;
class QToolButton;

namespace zarvi {

class TrailItem;
class VideoFrameSource;
class ZarviGraphicsView;

/// The behaviour video with its controls: the frame in a ZarviGraphicsView (where the
/// arena, zones and tracked trail are drawn), a frame slider, play/pause at the recorded
/// rate and the current time. Frames are decoded on demand by a VideoFrameSource on a
/// worker thread of its own, never the whole video: moving the slider asks for one frame,
/// and requests made while one decodes collapse to the latest, so the slider stays fluid
/// on an hour of video. Playing follows the recorded clock: each tick shows the last frame
/// whose time has come (skipping frames if decoding falls behind) while the source decodes
/// a few frames ahead. GUI thread; the decoding thread is stopped when the panel goes.
class BehaviorVideoPanel : public QWidget
{
    Q_OBJECT

public:
    explicit BehaviorVideoPanel(QWidget* parent = nullptr);
    ~BehaviorVideoPanel() override;

    /// Opens the video at `path`, whose frames are taken at `frameTimes` (the link's
    /// "Time"), at `frame`; videoOpened() tells when it is ready, or why not.
    void openVideo(const QString& path, std::vector<double> frameTimes, int frame = 0);
    /// Shows no video, with `message` in its place.
    void closeVideo(const QString& message);

    ZarviGraphicsView* view() const { return m_view; }
    TrailItem* trail() const { return m_trail.get(); }
    QSlider* slider() const { return m_slider; }
    QToolButton* playButton() const { return m_play; }
    QLabel* timeLabel() const { return m_time; }
    int frameCount() const { return static_cast<int>(m_frameTimes.size()); }
    const std::vector<double>& frameTimes() const { return m_frameTimes; }
    int currentFrame() const;
    /// The current frame's time on the recording's clock; 0 without a video.
    double currentTime() const;
    /// The last frame decoded and shown; -1 before the first.
    int shownFrame() const { return m_shownFrame; }
    /// Moves to `frame` (the slider follows).
    void setFrame(int frame);
    /// The frame whose time is nearest to `seconds`.
    int frameNearest(double seconds) const;
    void setPlaying(bool playing);
    bool isPlaying() const { return m_timer.isActive(); }

signals:
    /// The video is open (empty error) or could not be (the reason).
    void videoOpened(const QString& error);
    /// The slider moved to `frame`, taken at `seconds`.
    void frameChanged(int frame, double seconds);
    /// Frame `frame` is on screen.
    void frameShown(int frame);

private:
    void onOpened(int width, int height, qint64 frames, const QString& error);
    void onFrameReady(qint64 index, const cv::Mat& frame, const QString& error);
    void onSliderMoved(int frame);
    void onTick();
    void updateTimeText();

    ZarviGraphicsView* m_view;
    QSlider* m_slider;
    QToolButton* m_play;
    QLabel* m_time;
    QLabel* m_message;
    std::unique_ptr<TrailItem> m_trail;
    std::shared_ptr<QThread> m_thread;
    std::shared_ptr<VideoFrameSource> m_source;
    std::vector<double> m_frameTimes;
    int m_shownFrame = -1;
    QTimer m_timer;
    QElapsedTimer m_clock;
    double m_playFrom = 0.0;
};

} // namespace zarvi
