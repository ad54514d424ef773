#include "datafile/OpenCvVideoEncoder.h"

namespace zarvi {

bool OpenCvVideoEncoder::open(const std::string& utf8Path, double fps, int width, int height)
{
    try {
        return m_writer.open(utf8Path, cv::VideoWriter::fourcc('M', 'J', 'P', 'G'), fps,
                             cv::Size(width, height), true);
    } catch (const cv::Exception&) {
        return false;
    }
}

} // namespace zarvi
