#pragma once

#include <string>

#include <opencv2/core/mat.hpp>

namespace zarvi {

/// Writes a Motion-JPEG .avi frame by frame. Made by VideoCodecs, whose library holds
/// the implementation. Used by one thread at a time; reports failures by result.
class VideoEncoder
{
public:
    virtual ~VideoEncoder() = default;

    /// Creates the file at `utf8Path` for colour frames of width x height pixels.
    virtual bool open(const std::string& utf8Path, double fps, int width, int height) = 0;
    /// Appends an 8-bit BGR frame of the size given to open().
    virtual void write(const cv::Mat& frame) = 0;
    /// Finishes the file.
    virtual void release() = 0;
};

} // namespace zarvi
