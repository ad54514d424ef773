#include "fuzz/FuzzEntries.h"

#include "datafile/DataFileTree.h"
#include "datafile/FileClassifier.h"
#include "datafile/HDF5Reader_V6.h"
#include "fileeditor/CsvTableReader.h"
#include "fileeditor/TiffStackReader.h"
#include "fileeditor/VideoFrameReader.h"
#include "fileeditor/XlsxSheetReader.h"
#include "fuzz/FuzzInputFile.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace zarvi::fuzz {

namespace {

/// Frames are decoded the way a conversion decodes them, a few per input: enough to
/// reach every page layout without spending the run on long stacks and videos.
constexpr std::size_t FramesPerInput = 4;
/// The frame buffer is the converter's to size; beyond this many pixels an input only
/// measures how much memory the machine has.
constexpr std::size_t MaxFramePixels = std::size_t(1) << 24;

void tiffStack(const std::uint8_t* data, std::size_t size)
{
    const QString path = FuzzInputFile::write(QStringLiteral("stack.tif"), data, size);
    if (path.isEmpty())
        return;
    TiffStackReader reader;
    const TiffStackInfo info = reader.open({path});
    if (!info.ok() || info.pixelsPerFrame() == 0 || info.pixelsPerFrame() > MaxFramePixels)
        return;
    std::vector<std::uint16_t> frame(info.pixelsPerFrame());
    for (std::size_t k = 0; k < std::min(info.frameCount, FramesPerInput); ++k)
        reader.readFrame(k, frame);
}

/// The first byte chooses the reader's options, the rest is the file: bits 0-1 the
/// delimiter, bit 2 no header, bit 3 no time column, bit 4 column 2 as events, bit 5
/// column 3 as a trigger (bit 6: with a threshold), bit 7 times in milliseconds.
CsvTableReaderConfig csvOptions(std::uint8_t options, const QString& path)
{
    CsvTableReaderConfig config;
    config.path = path;
    config.delimiter = static_cast<CsvDelimiter>(options & 3);
    config.hasHeader = !(options & 4);
    config.timeColumn = (options & 8) ? -1 : 0;
    if (options & 16)
        config.eventColumns = {1};
    if (options & 32) {
        CsvTriggerColumn trigger;
        trigger.column = 2;
        if (options & 64)
            trigger.threshold = 0.5;
        config.triggerColumns = {trigger};
    }
    config.timeUnit = (options & 128) ? TimeUnit::Milliseconds : TimeUnit::Seconds;
    return config;
}

void csvTable(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return;
    const QString path = FuzzInputFile::write(QStringLiteral("table.csv"), data + 1, size - 1);
    if (path.isEmpty())
        return;
    const CsvTableReaderConfig config = csvOptions(data[0], path);
    CsvTableReader::preview(path, 5, config.delimiter);
    CsvTableReader::read(config);
}

void xlsxSheet(const std::uint8_t* data, std::size_t size)
{
    const QString path = FuzzInputFile::write(QStringLiteral("table.xlsx"), data, size);
    if (path.isEmpty())
        return;
    QStringList sheets;
    QString error;
    if (!XlsxSheetReader::sheetNames(path, sheets, error))
        return;
    std::vector<XlsxRow> rows;
    XlsxSheetReader::readSheet(path, sheets.value(sheets.size() - 1), rows, error, 100);
    CsvTableReader::preview(path, 5);
    CsvTableReaderConfig config;
    config.path = path;
    config.eventColumns = {1};
    CsvTableReader::read(config);
}

void video(const std::uint8_t* data, std::size_t size)
{
    const QString path = FuzzInputFile::write(QStringLiteral("clip.avi"), data, size);
    if (path.isEmpty())
        return;
    VideoFrameReader reader;
    const VideoInfo info = reader.open({path, VideoColor::Grey});
    if (!info.ok() ||
        static_cast<std::size_t>(info.width) * static_cast<std::size_t>(info.height) > MaxFramePixels)
        return;
    cv::Mat frame;
    double seconds = 0.0;
    for (std::size_t k = 0; k < FramesPerInput && reader.readNext(frame, seconds); ++k) {
    }
    if (info.frameCount > 1)
        reader.seek(info.frameCount / 2);
}

/// What `zarvi-cli info` and the application's file check do: classify, then list the
/// tree with every attribute.
void dataFile(const std::uint8_t* data, std::size_t size)
{
    const QString path = FuzzInputFile::write(QStringLiteral("file.orvel"), data, size);
    if (path.isEmpty())
        return;
    const FileClassification classification = FileClassifier::classify(path);
    if (!classification.detail.isEmpty())
        return;
    HDF5Reader_V6 reader;
    if (reader.open(path) < 0)
        return;
    reader.readAllAttributes(reader.fileId());
    for (const DataFileNode& node : DataFileTree::collect(reader)) {
        for (auto it = node.attributes.cbegin(); it != node.attributes.cend(); ++it)
            DataFileTree::valueText(it.value());
    }
}

constexpr FuzzEntry entries[] = {
    {"tiff", tiffStack}, {"csv", csvTable}, {"xlsx", xlsxSheet}, {"video", video}, {"datafile", dataFile},
};

} // namespace

std::span<const FuzzEntry> fuzzEntries()
{
    return entries;
}

const FuzzEntry* findFuzzEntry(const char* name)
{
    for (const FuzzEntry& entry : entries)
        if (std::strcmp(entry.name, name) == 0)
            return &entry;
    return nullptr;
}

} // namespace zarvi::fuzz
