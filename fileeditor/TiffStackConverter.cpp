#include "fileeditor/TiffStackConverter.h"

#include <QFileInfo>

#include <cmath>

#include "datafile/ImageFrameWriter.h"
#include "definitions/FileDefinitions.h"
#include "definitions/FileEditorOperationDefinitions.h"
#include "fileeditor/CsvTableReader.h"
#include "fileeditor/SpreadsheetConverter.h"
#include "fileeditor/TiffStackReader.h"

namespace zarvi {

namespace {

using FD = FileDefinitions;
using Texts = FileEditorOperationDefinitions;

/// Percent of the progress given to checking the pages before any frame is converted.
constexpr int ScanPercent = 5;

bool readTimestamps(const QString& path, std::size_t frames, std::vector<double>& times, QString& error)
{
    CsvTableReaderConfig csv;
    csv.path = path;
    csv.hasHeader = SpreadsheetConverter::startsWithHeader(path);
    csv.timeColumn = 0;
    CsvTable table = CsvTableReader::read(csv);
    if (!table.ok()) {
        error = table.error;
        return false;
    }
    if (!table.columns.empty()) {
        error = Texts::timestampsColumnsMessage().arg(path).arg(table.columnNames.size());
        return false;
    }
    if (table.time.size() != frames) {
        error = Texts::timestampCountMessage().arg(path).arg(table.time.size()).arg(frames);
        return false;
    }
    times = std::move(table.time);
    return true;
}

bool writeStack(TiffStackReader& reader, const TiffStackConversionConfig& config,
                const std::vector<double>& times, ConversionTarget& target, ConversionResult& result,
                Feedback* feedback)
{
    const TiffStackInfo& info = reader.info();
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
    geometry.bitCount = info.bitsPerSample;
    geometry.username = to.sensor;
    bool ok = stack.create(file, group, geometry, info.frameCount, {}, result.error);
    if (ok &&
        !file.writeAttribute(group, FD::SourceFilepath, QFileInfo(config.sourcePath).absoluteFilePath())) {
        result.error = Texts::unableToWriteMessage().arg(groupPath, file.lastError());
        ok = false;
    }

    std::vector<std::uint16_t> frame(info.pixelsPerFrame());
    ProgressTracker progress(feedback, info.frameCount, ScanPercent, 100);
    for (std::size_t k = 0; ok && k < info.frameCount; ++k) {
        if (progress.isCanceled()) {
            result.canceled = true;
            result.error = Texts::canceledMessage();
            ok = false;
        } else if (!reader.readFrame(k, frame)) {
            result.error = reader.lastError();
            ok = false;
        } else if (!stack.appendRaw(frame.data(), times[k], result.error)) {
            ok = false;
        }
        progress.update(k + 1);
    }
    stack.close();
    file.closeGroup(group);
    if (ok)
        result.datapaths << groupPath + QLatin1Char('/') + FD::ImageStack
                         << groupPath + QLatin1Char('/') + FD::Time;
    return ok;
}

} // namespace

ConversionResult TiffStackConverter::convert(const TiffStackConversionConfig& config, Feedback* feedback)
{
    ConversionResult result;
    const ConversionDestination& to = config.destination;
    result.filepath = to.filepath;
    const bool fromRate = config.timestampsPath.isEmpty();
    if (!ConversionTarget::isUsableName(to.device))
        result.error = Texts::deviceNameMessage().arg(to.device);
    else if (!ConversionTarget::isUsableName(to.sensor))
        result.error = Texts::sensorNameMessage().arg(to.sensor);
    else if (to.series < 0)
        result.error = Texts::seriesNumberMessage().arg(to.series);
    else if (fromRate && !(std::isfinite(config.frameRate) && config.frameRate > 0.0))
        result.error = Texts::frameRateMessage();
    if (!result.ok())
        return result;

    TiffStackReader reader;
    ScaledFeedback scanning(feedback, 0, ScanPercent);
    const TiffStackInfo info = reader.open(TiffStackReaderConfig{config.sourcePath}, &scanning);
    if (!info.ok()) {
        result.error = info.error;
        result.canceled = info.canceled;
        return result;
    }
    if (!info.warning.isEmpty())
        result.notes << info.warning;
    std::vector<double> times(info.frameCount);
    if (fromRate) {
        for (std::size_t k = 0; k < times.size(); ++k)
            times[k] = static_cast<double>(k) / config.frameRate;
    } else if (!readTimestamps(config.timestampsPath, info.frameCount, times, result.error)) {
        return result;
    }

    ConversionTarget target;
    if (!target.open(to.filepath, false, result.error))
        return result;
    if (!writeStack(reader, config, times, target, result, feedback) || !target.commit(result.error)) {
        target.rollback();
        result.datapaths.clear();
    }
    return result;
}

} // namespace zarvi
