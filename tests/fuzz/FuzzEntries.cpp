#include "fuzz/FuzzEntries.h"

#include "datafile/DataFileTree.h"
#include "datafile/FileClassifier.h"
#include "datafile/HDF5Reader_V6.h"
#include "datafile/SuperblockRepair.h"
#include "definitions/DatasetDefinitions.h"
#include "fileeditor/CsvTableReader.h"
#include "fileeditor/TiffStackReader.h"
#include "fileeditor/VideoFrameReader.h"
#include "fileeditor/XlsxSheetReader.h"
#include "fuzz/ForkedRun.h"
#include "fuzz/FuzzInputFile.h"

#include <QDataStream>
#include <QFileInfo>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
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

/// How long the child may read a data file before the file is taken for damaged, as the
/// application's file check does after its own limit. Well below the fuzzer's -timeout, so
/// that a hang of the library is an outcome and the reads repeated here still fit.
constexpr int LibraryReadMilliseconds = 5000;

/// What reading a data file through the HDF5 library gives.
struct LibraryRead
{
    FileClassification classification;
    QVariantMap rootAttributes;
    std::vector<DataFileNode> tree;
};

/// The reads the application makes through the library: the file check's classification,
/// then the root attributes and the tree with every attribute that a tab shows. The check
/// reads the tree of recognized files only; here every file that opens is read, so that the
/// same reads repeated in this process are ones the child came through.
LibraryRead readThroughLibrary(const QString& path)
{
    LibraryRead read;
    read.classification = FileClassifier::classify(path);
    if (!read.classification.detail.isEmpty())
        return read;
    HDF5Reader_V6 reader;
    if (reader.open(path) < 0)
        return read;
    read.rootAttributes = reader.readAllAttributes(reader.fileId());
    read.tree = DataFileTree::collect(reader);
    return read;
}

QByteArray encodeClassification(const FileClassification& classification)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out << static_cast<qint32>(classification.kind) << classification.message << classification.detail;
    return bytes;
}

[[noreturn]] void fail(const char* what)
{
    std::fprintf(stderr, "fuzz_datafile: %s\n", what);
    std::abort();
}

FileClassification decodeClassification(const QByteArray& bytes)
{
    QDataStream in(bytes);
    qint32 kind = 0;
    FileClassification classification;
    in >> kind >> classification.message >> classification.detail;
    if (in.status() != QDataStream::Ok || kind < 0 || kind > static_cast<qint32>(FileKind::Unrecognized))
        fail("the child's classification does not decode");
    classification.kind = static_cast<FileKind>(kind);
    return classification;
}

/// The application's outcome for a file whose check crashed or ran past its time.
FileClassification refusedAsDamaged(const QString& path)
{
    FileClassification classification;
    classification.message =
        DatasetDefinitions::damagedFileMessage().arg(QFileInfo(path).fileName().toHtmlEscaped());
    return classification;
}

void checkClassification(const FileClassification& classification)
{
    if (classification.kind == FileKind::Unrecognized && classification.message.trimmed().isEmpty())
        fail("a refused file has no message for the user");
}

/// What the application does with an outside data file, split as the application splits
/// it. Our own checks of the bytes, which do not trust the library, run in this process.
/// The reads through the HDF5 library run in a forked child, as the application runs
/// `zarvi-cli check` in a child process: the library (1.10) crashes or hangs on some
/// damaged files (tests/fuzz/library-faults/), which our code cannot fix, and a child that
/// a signal ended or that ran past its time gives the application's outcome, the file
/// refused as damaged. A sanitizer's report on our code in the child is still a finding.
/// When the child came through, the application goes on to read the file in its own
/// process, and so does this entry: the same reads again, then ours over their results,
/// all in this process, where any fault is ours and the fuzzer sees our coverage.
void dataFile(const std::uint8_t* data, std::size_t size)
{
    const QString path = FuzzInputFile::write(QStringLiteral("file.orvel"), data, size);
    if (path.isEmpty())
        return;
    SuperblockRepair::looksInterrupted(path);

    const ForkedRunResult child =
        ForkedRun::run([&path] { return encodeClassification(readThroughLibrary(path).classification); },
                       LibraryReadMilliseconds);
    switch (child.end) {
    case ForkedRunEnd::NotStarted:
        return;
    case ForkedRunEnd::Exited:
        fail("the child reading through the library ended with a sanitizer's report (above)");
    case ForkedRunEnd::Signalled:
    case ForkedRunEnd::TimedOut:
        checkClassification(refusedAsDamaged(path));
        return;
    case ForkedRunEnd::Finished:
        checkClassification(decodeClassification(child.output));
        break;
    }

    const LibraryRead read = readThroughLibrary(path);
    checkClassification(read.classification);
    for (auto it = read.rootAttributes.cbegin(); it != read.rootAttributes.cend(); ++it)
        DataFileTree::valueText(it.value());
    for (const DataFileNode& node : read.tree) {
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
