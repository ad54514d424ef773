#pragma once

#include <QString>

#include <cstddef>
#include <memory>
#include <vector>

#include <opencv2/core/mat.hpp>

#include "datafile/Feedback.h"
#include "datafile/VideoDecoder.h"

namespace zarvi {

/// The pixel layout in which video frames are handed out.
enum class VideoColor
{
    /// 8-bit, three channels, blue-green-red.
    Bgr,
    /// 8-bit, one channel.
    Grey
};

struct VideoFrameReaderConfig
{
    /// An .avi, .mp4 or .mpeg file (anything FFmpeg decodes).
    QString path;
    VideoColor color = VideoColor::Bgr;
};

/// What open() found: the video's geometry and rate, or why it cannot be read.
struct VideoInfo
{
    int width = 0;
    int height = 0;
    /// Frames the container states, or else an estimate from its duration and rate; 0
    /// when neither is known.
    std::size_t frameCount = 0;
    /// The container states frameCount; only then is a shorter video reported as truncated.
    bool frameCountExact = false;
    double fps = 0.0;
    QString error;

    bool ok() const { return error.isEmpty(); }
};

/// The time of every frame of a video, in seconds from the first.
struct VideoTimestamps
{
    std::vector<double> times;
    /// Some or all times were derived from the frame rate (see VideoFrameReader).
    bool fromFrameRate = false;
    QString error;
    bool canceled = false;

    bool ok() const { return error.isEmpty(); }
};

/// Reads a video file frame by frame, in order from the start or from a frame sought,
/// through FFmpeg (the VideoCodecs library, loaded on first use), with each frame's time as the container
/// stores it, so that variable frame rates and dropped frames keep their true timing. Where the container
/// gives no usable time (the times stop advancing, as with MPEG program streams), the remaining frames are
/// timed by the frame rate from the last time given. A file that ends before the number of frames its header
/// states is reported as truncated rather than silently cut short. Lives on the worker thread of the
/// conversion or of the behaviour view's decoding; one object is used by one thread at a time.
class VideoFrameReader
{
public:
    VideoInfo open(const VideoFrameReaderConfig& config);
    const VideoInfo& info() const { return m_info; }

    /// Decodes the next frame into frame (reallocated only when its size or type
    /// changes) and its time in seconds into seconds. False at the end of the video or
    /// on failure; lastError() is empty at a regular end and says what went wrong otherwise.
    bool readNext(cv::Mat& frame, double& seconds);
    /// Passes over the next frame without handing it out, which saves the conversion of
    /// its pixels. False as readNext().
    bool skipNext();
    std::size_t framesRead() const { return m_framesRead; }
    /// Makes frame `index` (from 0) the next one readNext() decodes. A frame a little ahead
    /// is reached by decoding forward, any other through the container's index, so a jump
    /// costs about the same anywhere in a long video. False, with lastError() set, when the
    /// video cannot be positioned there.
    bool seek(std::size_t index);
    /// The times of the frames read since some frame come from the frame rate.
    bool timesFromFrameRate() const { return m_timesFromRate; }
    QString lastError() const { return m_error; }

    void close();

    /// Reads the whole video once and collects every frame's time in seconds; progress
    /// runs over the announced frames, and cancelling returns canceled set.
    static VideoTimestamps readTimestamps(const QString& path, Feedback* feedback = nullptr);

private:
    /// Advances to the next frame; false at the end, with m_error set when the
    /// video ended before its announced length.
    bool grabNext(double& seconds);

    VideoFrameReaderConfig m_config;
    VideoInfo m_info;
    std::unique_ptr<VideoDecoder> m_decoder;
    cv::Mat m_decoded;
    std::size_t m_framesRead = 0;
    double m_lastSeconds = 0.0;
    bool m_timesFromRate = false;
    double m_rateOriginSeconds = 0.0;
    std::size_t m_rateOriginFrame = 0;
    QString m_error;
};

} // namespace zarvi
