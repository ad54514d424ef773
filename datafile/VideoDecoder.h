#pragma once

#include <cstddef>
#include <string>

#include <opencv2/core/mat.hpp>

namespace zarvi {

/// Decodes one video file frame by frame through FFmpeg. Made by VideoCodecs, whose
/// library holds the implementation, so that only programs that read videos load the
/// decoders. Used by one thread at a time; reports failures by result, never by exception.
class VideoDecoder
{
public:
    virtual ~VideoDecoder() = default;

    /// Opens the file at `utf8Path`; false when it cannot be decoded.
    virtual bool open(const std::string& utf8Path) = 0;
    virtual bool isOpened() const = 0;
    virtual void release() = 0;

    virtual int width() const = 0;
    virtual int height() const = 0;
    virtual double fps() const = 0;
    /// Frames the container's header states for its first video stream, 0 when it states none.
    virtual std::size_t statedFrameCount() const = 0;
    /// The frame count estimated from the duration and the rate; not finite or 0 when unknown.
    virtual double estimatedFrameCount() const = 0;

    /// Advances to the next frame; false at the end or on failure.
    virtual bool grab() = 0;
    /// The time of the frame grabbed last, in milliseconds, as the container gives it.
    virtual double positionMsec() const = 0;
    /// Converts the frame grabbed last to 8-bit BGR (or grey when the video is grey).
    virtual bool retrieve(cv::Mat& frame) = 0;
    /// Makes frame `index` the next one grab() reaches.
    virtual bool seekFrame(std::size_t index) = 0;
};

} // namespace zarvi
