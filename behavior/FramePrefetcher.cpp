#include "behavior/FramePrefetcher.h"

#include "definitions/VideoOperationDefinitions.h"

namespace zarvi {

FramePrefetcher::~FramePrefetcher()
{
    stop();
}

VideoInfo FramePrefetcher::open(const QString& videoPath)
{
    stop();
    m_videoPath = videoPath;
    return m_reader.open(VideoFrameReaderConfig{videoPath, VideoColor::Bgr});
}

void FramePrefetcher::start(std::size_t first, std::size_t last)
{
    stop();
    m_ready.clear();
    m_stopRequested = false;
    m_finished = false;
    m_error.clear();
    m_thread = std::thread([this, first, last] { decode(first, last); });
}

void FramePrefetcher::decode(std::size_t first, std::size_t last)
{
    bool stopped = false;
    std::size_t k = 0;
    while (k < first) {
        {
            const std::lock_guard lock(m_mutex);
            stopped = m_stopRequested;
        }
        if (stopped || !m_reader.skipNext())
            break;
        ++k;
    }
    for (; !stopped && k >= first && k <= last; ++k) {
        cv::Mat frame;
        {
            std::unique_lock lock(m_mutex);
            m_changed.wait(lock, [this] { return m_stopRequested || m_ready.size() < Depth; });
            stopped = m_stopRequested;
            if (stopped)
                break;
            if (!m_spare.empty()) {
                frame = std::move(m_spare.back());
                m_spare.pop_back();
            }
        }
        double seconds = 0.0;
        if (!m_reader.readNext(frame, seconds))
            break;
        const std::lock_guard lock(m_mutex);
        m_ready.push_back({std::move(frame), k});
        m_changed.notify_all();
    }
    QString error;
    // Short of the last frame without a stop request: the video ended early or broke.
    if (!stopped && k <= last) {
        error = m_reader.lastError();
        if (error.isEmpty())
            error = VideoOperationDefinitions::videoEndedMessage()
                        .arg(m_videoPath)
                        .arg(m_reader.framesRead())
                        .arg(k);
    }
    const std::lock_guard lock(m_mutex);
    m_error = error;
    m_finished = true;
    m_changed.notify_all();
}

bool FramePrefetcher::next(cv::Mat& frame, std::size_t& index)
{
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return !m_ready.empty() || m_finished; });
    if (m_ready.empty())
        return false;
    Decoded& decoded = m_ready.front();
    cv::swap(frame, decoded.frame);
    index = decoded.index;
    // The buffer the caller gave back is filled again by the decoder.
    if (!decoded.frame.empty())
        m_spare.push_back(std::move(decoded.frame));
    m_ready.pop_front();
    m_changed.notify_all();
    return true;
}

QString FramePrefetcher::error() const
{
    const std::lock_guard lock(m_mutex);
    return m_error;
}

void FramePrefetcher::stop()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stopRequested = true;
        m_changed.notify_all();
    }
    if (m_thread.joinable())
        m_thread.join();
}

} // namespace zarvi
