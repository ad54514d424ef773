#include "datafile/OpenCvVideoDecoder.h"

extern "C" {
#include <libavformat/avformat.h>
}

namespace zarvi {

namespace {

/// The number of frames the container's header states for its first video stream (the
/// one OpenCV reads), 0 when it states none, as MPEG program streams and Matroska files
/// do. Only a stated count promises how many frames the file holds.
std::size_t statedFrameCountOf(const std::string& path)
{
    AVFormatContext* context = nullptr;
    if (avformat_open_input(&context, path.c_str(), nullptr, nullptr) != 0)
        return 0;
    std::size_t frames = 0;
    for (unsigned s = 0; s < context->nb_streams; ++s) {
        const AVStream* stream = context->streams[s];
        if (stream->codecpar->codec_type == AVMEDIA_TYPE_VIDEO &&
            !(stream->disposition & AV_DISPOSITION_ATTACHED_PIC)) {
            frames = stream->nb_frames > 0 ? static_cast<std::size_t>(stream->nb_frames) : 0;
            break;
        }
    }
    avformat_close_input(&context);
    return frames;
}

} // namespace

bool OpenCvVideoDecoder::open(const std::string& utf8Path)
{
    release();
    // OpenCV reports failures by result here, but guard against an exception from a
    // broken backend all the same.
    try {
        m_capture.open(utf8Path, cv::CAP_FFMPEG);
    } catch (const cv::Exception&) {
        m_capture.release();
    }
    if (!m_capture.isOpened())
        return false;
    m_statedFrames = statedFrameCountOf(utf8Path);
    return true;
}

void OpenCvVideoDecoder::release()
{
    m_capture.release();
    m_statedFrames = 0;
}

int OpenCvVideoDecoder::width() const
{
    return static_cast<int>(m_capture.get(cv::CAP_PROP_FRAME_WIDTH));
}

int OpenCvVideoDecoder::height() const
{
    return static_cast<int>(m_capture.get(cv::CAP_PROP_FRAME_HEIGHT));
}

double OpenCvVideoDecoder::fps() const
{
    return m_capture.get(cv::CAP_PROP_FPS);
}

double OpenCvVideoDecoder::estimatedFrameCount() const
{
    return m_capture.get(cv::CAP_PROP_FRAME_COUNT);
}

bool OpenCvVideoDecoder::grab()
{
    try {
        return m_capture.grab();
    } catch (const cv::Exception&) {
        return false;
    }
}

double OpenCvVideoDecoder::positionMsec() const
{
    return m_capture.get(cv::CAP_PROP_POS_MSEC);
}

bool OpenCvVideoDecoder::retrieve(cv::Mat& frame)
{
    try {
        return m_capture.retrieve(frame) && !frame.empty();
    } catch (const cv::Exception&) {
        return false;
    }
}

bool OpenCvVideoDecoder::seekFrame(std::size_t index)
{
    try {
        return m_capture.set(cv::CAP_PROP_POS_FRAMES, static_cast<double>(index));
    } catch (const cv::Exception&) {
        return false;
    }
}

} // namespace zarvi
