#pragma once

#include "fileeditor/VideoFrameReader.h"

#include <QMetaType>
#include <QObject>

#include <atomic>
#include <deque>

Q_DECLARE_METATYPE(cv::Mat)

namespace zarvi {

/// Decodes the frames of one behaviour video on demand, for a view that shows them. It
/// lives on a worker thread of its own: request() may be called from any thread and only
/// notes the frame wanted, so that requests made faster than frames decode (a slider
/// dragged across an hour of video) collapse to the latest one instead of queueing. While
/// playing (setReadAhead() above 0) it decodes the next frames into a small cache between
/// requests, so that playback finds them ready; memory stays a few frames whatever the
/// video's length.
class VideoFrameSource : public QObject
{
    Q_OBJECT

public:
    explicit VideoFrameSource(QObject* parent = nullptr);

    /// Asks for frame `index`; frameReady() answers unless a later request replaces it.
    /// Any thread.
    void request(qint64 index);
    /// How many frames after the one requested to decode in advance (0 while paused).
    /// Any thread.
    void setReadAhead(int frames);

public slots:
    /// Opens the video; opened() answers with its size and frame count, or an error.
    void open(const QString& path);

signals:
    void opened(int width, int height, qint64 frames, const QString& error);
    /// Frame `index` decoded, 8-bit BGR; an empty frame with `error` when it could not be.
    void frameReady(qint64 index, const cv::Mat& frame, const QString& error);

private:
    /// Serves the latest request, then decodes one frame ahead if wanted and comes back.
    void serve();
    void scheduleServe();
    /// Decodes frame `index` into `frame`, seeking when it is not the next one.
    bool decode(qint64 index, cv::Mat& frame);
    const cv::Mat* cached(qint64 index) const;

    VideoFrameReader m_reader;
    std::atomic<qint64> m_wanted{-1};
    std::atomic<int> m_readAhead{0};
    std::atomic<bool> m_serveScheduled{false};
    qint64 m_served = -1;
    qint64 m_frameCount = 0;
    std::deque<std::pair<qint64, cv::Mat>> m_cache;
};

} // namespace zarvi
