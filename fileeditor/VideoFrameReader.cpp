#include "fileeditor/VideoFrameReader.h"

#include <QFileInfo>

#include <cmath>

#include <opencv2/imgproc.hpp>

extern "C" {
#include <libavformat/avformat.h>
}

#include "definitions/FileEditorOperationDefinitions.h"

namespace zarvi {

namespace {

using Texts = FileEditorOperationDefinitions;

/// Frames this close ahead are reached by decoding forward: cheaper than a seek, which
/// goes back to the last key frame and decodes forward from there anyway.
constexpr std::size_t forwardDecodeLimit = 30;

/// The number of frames the container's header states for its first video stream (the
/// one OpenCV reads), 0 when it states none, as MPEG program streams and Matroska files
/// do. Only a stated count promises how many frames the file holds.
std::size_t statedFrameCount(const QByteArray& path)
{
    AVFormatContext* context = nullptr;
    if (avformat_open_input(&context, path.constData(), nullptr, nullptr) != 0)
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

VideoInfo VideoFrameReader::open(const VideoFrameReaderConfig& config)
{
    close();
    m_config = config;
    const QFileInfo file(config.path);
    if (!file.isFile()) {
        m_info.error =
            (file.isDir() ? Texts::folderNotFileMessage() : Texts::missingFileMessage()).arg(config.path);
        return m_info;
    }
    // FFmpeg takes UTF-8 file names on every platform. OpenCV reports failures by
    // result here, but guard against an exception from a broken backend all the same.
    const QByteArray path = config.path.toUtf8();
    try {
        m_capture.open(path.toStdString(), cv::CAP_FFMPEG);
    } catch (const cv::Exception&) {
        m_capture.release();
    }
    if (!m_capture.isOpened()) {
        m_info.error = Texts::videoOpenMessage().arg(config.path);
        return m_info;
    }
    m_info.width = static_cast<int>(m_capture.get(cv::CAP_PROP_FRAME_WIDTH));
    m_info.height = static_cast<int>(m_capture.get(cv::CAP_PROP_FRAME_HEIGHT));
    m_info.fps = m_capture.get(cv::CAP_PROP_FPS);
    m_info.frameCount = statedFrameCount(path);
    m_info.frameCountExact = m_info.frameCount > 0;
    if (!m_info.frameCountExact) {
        // OpenCV's estimate from the duration and the rate.
        const double frames = m_capture.get(cv::CAP_PROP_FRAME_COUNT);
        m_info.frameCount =
            std::isfinite(frames) && frames > 0 ? static_cast<std::size_t>(std::llround(frames)) : 0;
    }
    if (m_info.width <= 0 || m_info.height <= 0) {
        m_capture.release();
        m_info = VideoInfo();
        m_info.error = Texts::videoOpenMessage().arg(config.path);
    }
    return m_info;
}

void VideoFrameReader::close()
{
    m_capture.release();
    m_info = VideoInfo();
    m_framesRead = 0;
    m_timesFromRate = false;
    m_lastSeconds = 0.0;
    m_error.clear();
}

bool VideoFrameReader::grabNext(double& seconds)
{
    m_error.clear();
    if (!m_capture.isOpened()) {
        m_error = Texts::notOpenMessage();
        return false;
    }
    bool grabbed = false;
    try {
        grabbed = m_capture.grab();
    } catch (const cv::Exception&) {
        grabbed = false;
    }
    if (!grabbed) {
        if (m_info.frameCountExact && m_framesRead < m_info.frameCount) {
            m_error =
                Texts::videoTruncatedMessage().arg(m_framesRead).arg(m_info.frameCount).arg(m_config.path);
        }
        return false;
    }
    // Containers that give OpenCV no time per frame (MPEG program streams) report 0 for
    // every frame. From the first time that does not advance on, frames are timed by the
    // rate, counted from the last time the container gave.
    const double reported = m_capture.get(cv::CAP_PROP_POS_MSEC) / 1000.0;
    if (!m_timesFromRate && m_framesRead > 0 && !(reported > m_lastSeconds) && m_info.fps > 0.0) {
        m_timesFromRate = true;
        m_rateOriginSeconds = m_lastSeconds;
        m_rateOriginFrame = m_framesRead - 1;
    }
    seconds = m_timesFromRate
                  ? m_rateOriginSeconds + static_cast<double>(m_framesRead - m_rateOriginFrame) / m_info.fps
                  : reported;
    m_lastSeconds = seconds;
    ++m_framesRead;
    return true;
}

bool VideoFrameReader::seek(std::size_t index)
{
    m_error.clear();
    if (!m_capture.isOpened()) {
        m_error = Texts::notOpenMessage();
        return false;
    }
    double seconds = 0.0;
    if (index >= m_framesRead && index - m_framesRead <= forwardDecodeLimit) {
        while (m_framesRead < index)
            if (!grabNext(seconds))
                return false;
        return true;
    }
    bool positioned = false;
    try {
        positioned = m_capture.set(cv::CAP_PROP_POS_FRAMES, static_cast<double>(index));
    } catch (const cv::Exception&) {
        positioned = false;
    }
    if (!positioned) {
        m_error = Texts::videoOpenMessage().arg(m_config.path);
        return false;
    }
    // The times the container gives restart from the new position.
    m_framesRead = index;
    m_timesFromRate = false;
    m_lastSeconds = -1.0;
    return true;
}

bool VideoFrameReader::readNext(cv::Mat& frame, double& seconds)
{
    if (!grabNext(seconds))
        return false;
    try {
        if (m_config.color == VideoColor::Bgr) {
            if (m_capture.retrieve(frame) && !frame.empty())
                return true;
        } else if (m_capture.retrieve(m_decoded) && !m_decoded.empty()) {
            if (m_decoded.channels() == 1)
                m_decoded.copyTo(frame);
            else
                cv::cvtColor(m_decoded, frame, cv::COLOR_BGR2GRAY);
            return true;
        }
    } catch (const cv::Exception&) {
        // Reported below like any frame that cannot be decoded.
    }
    m_error = Texts::videoTruncatedMessage()
                  .arg(m_framesRead - 1)
                  .arg(std::max(m_info.frameCount, m_framesRead))
                  .arg(m_config.path);
    return false;
}

bool VideoFrameReader::skipNext()
{
    double seconds = 0.0;
    return grabNext(seconds);
}

VideoTimestamps VideoFrameReader::readTimestamps(const QString& path, Feedback* feedback)
{
    VideoTimestamps result;
    VideoFrameReader reader;
    const VideoInfo info = reader.open(VideoFrameReaderConfig{path, VideoColor::Bgr});
    if (!info.ok()) {
        result.error = info.error;
        return result;
    }
    result.times.reserve(info.frameCount);
    ProgressTracker progress(feedback, info.frameCount);
    double seconds = 0.0;
    while (true) {
        if (progress.isCanceled()) {
            result.canceled = true;
            result.error = Texts::canceledMessage();
            return result;
        }
        if (!reader.grabNext(seconds))
            break;
        result.times.push_back(seconds);
        progress.update(result.times.size());
    }
    result.fromFrameRate = reader.timesFromFrameRate();
    result.error = reader.lastError();
    return result;
}

} // namespace zarvi
