#pragma once

#include "fileeditor/VideoFrameReader.h"

#include <QString>

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

namespace zarvi {

/// Decodes a segment of a video on a thread of its own, a few frames ahead of the
/// thread that uses them, so that decoding frame k + 1 and working on frame k share the
/// cores. At most Depth decoded frames wait at any time and their buffers are reused,
/// so memory does not grow with the video's length. The frames come out in order,
/// exactly as one thread would read them. Made, opened, read and destroyed on one
/// thread (the consumer); the decoding thread belongs to it.
class FramePrefetcher
{
public:
    FramePrefetcher() = default;
    ~FramePrefetcher();
    FramePrefetcher(const FramePrefetcher&) = delete;
    FramePrefetcher& operator=(const FramePrefetcher&) = delete;

    /// Opens the video (colour frames, 8-bit blue-green-red) on the calling thread.
    VideoInfo open(const QString& videoPath);
    /// Starts decoding frames first to last (0-based, both included); the frames before
    /// `first` are passed over without being converted.
    void start(std::size_t first, std::size_t last);
    /// Waits for the next frame and swaps it into `frame`, with its index. The buffer
    /// `frame` held is decoded into again later, so the caller keeps no other header on
    /// it. False after the last frame, or when the video ends early or cannot be decoded
    /// (error() says why; empty after the last frame).
    bool next(cv::Mat& frame, std::size_t& index);
    QString error() const;
    /// Stops decoding and waits for the thread; also done on destruction.
    void stop();

    /// Decoded frames that may wait at once.
    static constexpr std::size_t Depth = 3;

private:
    struct Decoded
    {
        cv::Mat frame;
        std::size_t index = 0;
    };

    void decode(std::size_t first, std::size_t last);

    VideoFrameReader m_reader;
    QString m_videoPath;
    std::thread m_thread;
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<Decoded> m_ready;
    /// Buffers handed back by next(), for the decoder to fill again.
    std::vector<cv::Mat> m_spare;
    bool m_stopRequested = false;
    bool m_finished = false;
    QString m_error;
};

} // namespace zarvi
