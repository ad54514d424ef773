#include "fileeditor/VideoConverter.h"

#include <QDir>
#include <QFileInfo>

#include "datafile/ImageFrameWriter.h"
#include "definitions/FileDefinitions.h"
#include "definitions/FileEditorOperationDefinitions.h"
#include "fileeditor/VideoFrameReader.h"

namespace zarvi {

namespace {

using FD = FileDefinitions;
using Texts = FileEditorOperationDefinitions;

/// Bits per sample of a video frame converted to grey.
constexpr int VideoBitCount = 8;

/// Decodes every frame in grey into a new image stack and collects the frame times.
bool writeStack(const VideoConversionConfig& config, ConversionTarget& target, std::vector<double>& times,
                ConversionResult& result, Feedback* feedback)
{
    VideoFrameReader reader;
    const VideoInfo info = reader.open(VideoFrameReaderConfig{config.sourcePath, VideoColor::Grey});
    if (!info.ok()) {
        result.error = info.error;
        return false;
    }
    const ConversionDestination& to = config.destination;
    const int series = target.seriesNumber(to.device, FD::Images, to.series);
    const QString groupPath = ConversionTarget::dataPath(to.device, FD::Images, series, to.sensor);
    const hid_t group = target.createGroup(groupPath, result.error);
    if (group < 0)
        return false;
    HDF5Writer_V6& file = target.file();
    ImageFrameWriter stack;
    ImageStackInfo geometry;
    geometry.height = info.height;
    geometry.width = info.width;
    geometry.bitCount = VideoBitCount;
    geometry.username = to.sensor;
    bool ok = stack.create(file, group, geometry, info.frameCount, {}, result.error);
    if (ok &&
        !file.writeAttribute(group, FD::SourceFilepath, QFileInfo(config.sourcePath).absoluteFilePath())) {
        result.error = Texts::unableToWriteMessage().arg(groupPath, file.lastError());
        ok = false;
    }

    times.reserve(info.frameCount);
    ProgressTracker progress(feedback, info.frameCount);
    cv::Mat frame;
    double seconds = 0.0;
    while (ok) {
        if (progress.isCanceled()) {
            result.canceled = true;
            result.error = Texts::canceledMessage();
            ok = false;
            break;
        }
        if (!reader.readNext(frame, seconds)) {
            ok = reader.lastError().isEmpty();
            result.error = reader.lastError();
            break;
        }
        if (frame.type() != CV_8UC1 || frame.cols != info.width || frame.rows != info.height) {
            result.error = Texts::mixedFrameSizeMessage()
                               .arg(Texts::videoFrameLocation().arg(times.size() + 1).arg(config.sourcePath))
                               .arg(frame.cols)
                               .arg(frame.rows)
                               .arg(info.width)
                               .arg(info.height);
            ok = false;
            break;
        }
        // Grey values widen to 16 bits unchanged.
        ok = stack.append(frame, seconds, result.error);
        times.push_back(seconds);
        progress.update(times.size());
    }
    stack.close();
    file.closeGroup(group);
    if (ok)
        result.datapaths << groupPath + QLatin1Char('/') + FD::ImageStack
                         << groupPath + QLatin1Char('/') + FD::Time;
    return ok;
}

/// The next free "Video<K>" in a series group (1 when the group does not exist).
int nextVideoNumber(HDF5Writer_V6& file, const QString& seriesPath)
{
    int k = 1;
    while (file.exists(file.fileId(), seriesPath + QLatin1Char('/') + FD::VideoPattern.arg(k)))
        ++k;
    return k;
}

bool writeLink(const VideoConversionConfig& config, double frameRate, const std::vector<double>& times,
               ConversionTarget& target, ConversionResult& result)
{
    const ConversionDestination& to = config.destination;
    HDF5Writer_V6& file = target.file();
    const int series = target.seriesNumber(to.device, FD::Video, to.series);
    const QString seriesPath =
        QStringList{FD::DataConverted, to.device, FD::Video, FD::SeriesPattern.arg(series)}.join(
            QLatin1Char('/'));
    const QString groupPath =
        seriesPath + QLatin1Char('/') + FD::VideoPattern.arg(nextVideoNumber(file, seriesPath));
    const hid_t group = target.createGroup(groupPath, result.error);
    if (group < 0)
        return false;
    const QFileInfo video(config.sourcePath);
    const QDir dataFolder = QFileInfo(to.filepath).absoluteDir();
    bool ok = file.writeAttribute(group, FD::Filepath, video.absoluteFilePath()) &&
              file.writeAttribute(group, FD::RelativeFilePath,
                                  dataFolder.relativeFilePath(video.absoluteFilePath())) &&
              file.writeAttribute(group, FD::Filename, video.fileName()) &&
              file.writeAttribute(group, FD::FrameRate, frameRate);
    if (!ok)
        result.error = Texts::unableToWriteMessage().arg(groupPath, file.lastError());
    ok = ok && target.writeTimes(group, FD::Time, times, result.error);
    file.closeGroup(group);
    if (ok)
        result.datapaths.prepend(groupPath);
    return ok;
}

} // namespace

ConversionResult VideoConverter::convert(const VideoConversionConfig& config, Feedback* feedback)
{
    ConversionResult result;
    const ConversionDestination& to = config.destination;
    result.filepath = to.filepath;
    if (!ConversionTarget::isUsableName(to.device))
        result.error = Texts::deviceNameMessage().arg(to.device);
    else if (config.asImageStack && !ConversionTarget::isUsableName(to.sensor))
        result.error = Texts::sensorNameMessage().arg(to.sensor);
    else if (to.series < 0)
        result.error = Texts::seriesNumberMessage().arg(to.series);
    if (!result.ok())
        return result;
    VideoFrameReader probe;
    const VideoInfo info = probe.open(VideoFrameReaderConfig{config.sourcePath});
    probe.close();
    if (!info.ok()) {
        result.error = info.error;
        return result;
    }

    // Reading the times takes one pass over the video; without a stack, that pass comes
    // before the file is touched.
    std::vector<double> times;
    if (!config.asImageStack) {
        VideoTimestamps stamps = VideoFrameReader::readTimestamps(config.sourcePath, feedback);
        if (!stamps.ok()) {
            result.error = stamps.error;
            result.canceled = stamps.canceled;
            return result;
        }
        times = std::move(stamps.times);
    }
    ConversionTarget target;
    if (!target.open(to.filepath, false, result.error))
        return result;
    const bool ok = (!config.asImageStack || writeStack(config, target, times, result, feedback)) &&
                    writeLink(config, info.fps, times, target, result) && target.commit(result.error);
    if (!ok) {
        target.rollback();
        result.datapaths.clear();
    }
    return result;
}

} // namespace zarvi
