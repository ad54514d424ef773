#pragma once

#include <opencv2/videoio.hpp>

#include "datafile/VideoEncoder.h"

namespace zarvi {

/// VideoEncoder through OpenCV's video writer. Part of the video library; one thread at a time.
class OpenCvVideoEncoder : public VideoEncoder
{
public:
    bool open(const std::string& utf8Path, double fps, int width, int height) override;
    void write(const cv::Mat& frame) override { m_writer.write(frame); }
    void release() override { m_writer.release(); }

private:
    cv::VideoWriter m_writer;
};

} // namespace zarvi
