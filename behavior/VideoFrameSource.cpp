#include "behavior/VideoFrameSource.h"

#include <QMetaObject>

namespace zarvi {

namespace {

/// Cached frames beyond the read-ahead are dropped, oldest first.
constexpr std::size_t cacheLimit = 32;

} // namespace

VideoFrameSource::VideoFrameSource(QObject* parent) : QObject(parent)
{
    qRegisterMetaType<cv::Mat>();
}

void VideoFrameSource::request(qint64 index)
{
    m_wanted = index;
    scheduleServe();
}

void VideoFrameSource::setReadAhead(int frames)
{
    m_readAhead = std::max(frames, 0);
    scheduleServe();
}

void VideoFrameSource::open(const QString& path)
{
    m_cache.clear();
    m_served = -1;
    const VideoInfo info = m_reader.open(VideoFrameReaderConfig{path, VideoColor::Bgr});
    m_frameCount = static_cast<qint64>(info.frameCount);
    emit opened(info.width, info.height, m_frameCount, info.error);
}

void VideoFrameSource::scheduleServe()
{
    if (!m_serveScheduled.exchange(true))
        QMetaObject::invokeMethod(this, &VideoFrameSource::serve, Qt::QueuedConnection);
}

const cv::Mat* VideoFrameSource::cached(qint64 index) const
{
    for (const auto& [cachedIndex, frame] : m_cache)
        if (cachedIndex == index)
            return &frame;
    return nullptr;
}

bool VideoFrameSource::decode(qint64 index, cv::Mat& frame)
{
    double seconds = 0.0;
    if (static_cast<qint64>(m_reader.framesRead()) != index &&
        !m_reader.seek(static_cast<std::size_t>(index)))
        return false;
    return m_reader.readNext(frame, seconds);
}

void VideoFrameSource::serve()
{
    m_serveScheduled = false;
    const qint64 wanted = m_wanted;
    if (wanted < 0 || !m_reader.info().ok() || m_reader.info().width == 0)
        return;
    if (wanted != m_served) {
        m_served = wanted;
        if (const cv::Mat* ready = cached(wanted)) {
            emit frameReady(wanted, *ready, QString());
        } else {
            // A jump: what was decoded ahead belongs elsewhere in the video.
            m_cache.clear();
            cv::Mat frame;
            if (decode(wanted, frame))
                emit frameReady(wanted, frame, QString());
            else
                emit frameReady(wanted, cv::Mat(), m_reader.lastError());
        }
        // Frames before the one shown are not needed again while playing forward.
        while (!m_cache.empty() && m_cache.front().first < wanted)
            m_cache.pop_front();
    }
    // One frame ahead per turn of the event loop, so that a new request is seen at once.
    const int ahead = m_readAhead;
    const qint64 next = m_cache.empty() ? wanted + 1 : m_cache.back().first + 1;
    if (ahead == 0 || next > wanted + ahead || (m_frameCount > 0 && next >= m_frameCount))
        return;
    cv::Mat frame;
    if (!decode(next, frame))
        return;
    m_cache.emplace_back(next, frame);
    if (m_cache.size() > cacheLimit)
        m_cache.pop_front();
    scheduleServe();
}

} // namespace zarvi
