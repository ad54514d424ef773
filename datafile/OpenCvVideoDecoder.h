#pragma once

#include <opencv2/videoio.hpp>

#include "datafile/VideoDecoder.h"

namespace zarvi {

/// VideoDecoder through OpenCV's FFmpeg backend, with the frame count the container
/// states read through FFmpeg itself. Part of the video library; one thread at a time.
class OpenCvVideoDecoder : public VideoDecoder
{
public:
    bool open(const std::string& utf8Path) override;
    bool isOpened() const override { return m_capture.isOpened(); }
    void release() override;

    int width() const override;
    int height() const override;
    double fps() const override;
    std::size_t statedFrameCount() const override { return m_statedFrames; }
    double estimatedFrameCount() const override;

    bool grab() override;
    double positionMsec() const override;
    bool retrieve(cv::Mat& frame) override;
    bool seekFrame(std::size_t index) override;

private:
    // get() is not const in OpenCV although it changes nothing visible.
    mutable cv::VideoCapture m_capture;
    std::size_t m_statedFrames = 0;
};

} // namespace zarvi
