#include "fileeditor/VideoFrameReader.h"

#include <QFileInfo>

#include <cmath>

#include <opencv2/imgproc.hpp>

#include "datafile/VideoCodecs.h"
#include "definitions/FileEditorOperationDefinitions.h"

namespace zarvi {

namespace {

using Texts = FileEditorOperationDefinitions;

/// Frames this close ahead are reached by decoding forward: cheaper than a seek, which
/// goes back to the last key frame and decodes forward from there anyway.
constexpr std::size_t forwardDecodeLimit = 30;

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
    if (!m_decoder) {
        const VideoCodecs* codecs = VideoCodecs::load(m_info.error);
        if (!codecs)
            return m_info;
        m_decoder = codecs->makeDecoder();
    }
    // FFmpeg takes UTF-8 file names on every platform.
    if (!m_decoder->open(config.path.toUtf8().toStdString())) {
        m_info.error = Texts::videoOpenMessage().arg(config.path);
        return m_info;
    }
    m_info.width = m_decoder->width();
    m_info.height = m_decoder->height();
    m_info.fps = m_decoder->fps();
    m_info.frameCount = m_decoder->statedFrameCount();
    m_info.frameCountExact = m_info.frameCount > 0;
    if (!m_info.frameCountExact) {
        // OpenCV's estimate from the duration and the rate.
        const double frames = m_decoder->estimatedFrameCount();
        m_info.frameCount =
            std::isfinite(frames) && frames > 0 ? static_cast<std::size_t>(std::llround(frames)) : 0;
    }
    if (m_info.width <= 0 || m_info.height <= 0) {
        m_decoder->release();
        m_info = VideoInfo();
        m_info.error = Texts::videoOpenMessage().arg(config.path);
    }
    return m_info;
}

void VideoFrameReader::close()
{
    if (m_decoder)
        m_decoder->release();
    m_info = VideoInfo();
    m_framesRead = 0;
    m_timesFromRate = false;
    m_lastSeconds = 0.0;
    m_error.clear();
}

bool VideoFrameReader::grabNext(double& seconds)
{
    m_error.clear();
    if (!m_decoder || !m_decoder->isOpened()) {
        m_error = Texts::notOpenMessage();
        return false;
    }
    if (!m_decoder->grab()) {
        if (m_info.frameCountExact && m_framesRead < m_info.frameCount) {
            m_error =
                Texts::videoTruncatedMessage().arg(m_framesRead).arg(m_info.frameCount).arg(m_config.path);
        }
        return false;
    }
    // Containers that give OpenCV no time per frame (MPEG program streams) report 0 for
    // every frame. From the first time that does not advance on, frames are timed by the
    // rate, counted from the last time the container gave.
    const double reported = m_decoder->positionMsec() / 1000.0;
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
    if (!m_decoder || !m_decoder->isOpened()) {
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
    if (!m_decoder->seekFrame(index)) {
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
    if (m_config.color == VideoColor::Bgr) {
        if (m_decoder->retrieve(frame))
            return true;
    } else if (m_decoder->retrieve(m_decoded)) {
        if (m_decoded.channels() == 1)
            m_decoded.copyTo(frame);
        else
            cv::cvtColor(m_decoded, frame, cv::COLOR_BGR2GRAY);
        return true;
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
