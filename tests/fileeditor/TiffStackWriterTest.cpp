#include <gtest/gtest.h>

#include <QFileInfo>

#include <cstring>

#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <opencv2/imgcodecs.hpp>

#include "FileToolHelpers.h"
#include "TiffTestPages.h"
#include "common/TempDir.h"
#include "fileeditor/TiffStackReader.h"
#include "fileeditor/TiffStackWriter.h"

namespace zarvi {
namespace {

using test::haveTool;
using test::runTool;
using test::testFrame;

/// Pages as OpenCV reads them, an implementation independent of libtiff's users here.
std::vector<cv::Mat> readWithOpenCv(const QString& path)
{
    std::vector<cv::Mat> pages;
    cv::imreadmulti(QFile::encodeName(path).toStdString(), pages, cv::IMREAD_UNCHANGED);
    return pages;
}

bool writeStack(const TiffStackWriterConfig& config, const std::vector<std::vector<std::uint16_t>>& frames,
                QString* error = nullptr)
{
    TiffStackWriter writer;
    bool ok = writer.open(config);
    for (std::size_t k = 0; ok && k < frames.size(); ++k)
        ok = writer.writeFrame(frames[k]);
    ok = ok && writer.finish();
    if (error)
        *error = writer.lastError();
    return ok;
}

/// Frames 0 .. count - 1 of the test pattern, all of one odd size.
constexpr int Width = 37;
constexpr int Height = 23;
std::vector<std::vector<std::uint16_t>> testFrames(int count)
{
    std::vector<std::vector<std::uint16_t>> frames;
    for (int k = 0; k < count; ++k)
        frames.push_back(testFrame(Width, Height, k));
    return frames;
}

TEST(TiffStackWriter, WritesStackThatOtherToolsReadBitForBit)
{
    test::TempDir dir;
    std::vector<std::vector<std::uint16_t>> frames = testFrames(5);
    const QString path = dir.file(QStringLiteral("export.tif"));
    QString error;
    ASSERT_TRUE(writeStack({path, Width, Height, 16, frames.size()}, frames, &error)) << error.toStdString();

    if (haveTool(QStringLiteral("tiffinfo"))) {
        const test::ToolRun run = runTool(QStringLiteral("tiffinfo"), {path});
        EXPECT_EQ(run.exitCode, 0) << run.output.toStdString();
        EXPECT_EQ(run.output.count("TIFF Directory at offset"), 5) << run.output.toStdString();
    }

    const std::vector<cv::Mat> pages = readWithOpenCv(path);
    ASSERT_EQ(pages.size(), frames.size());
    for (std::size_t k = 0; k < pages.size(); ++k) {
        ASSERT_EQ(pages[k].type(), CV_16UC1);
        ASSERT_EQ(pages[k].cols, Width);
        const cv::Mat expected(Height, Width, CV_16UC1, frames[k].data());
        EXPECT_EQ(cv::countNonZero(pages[k] != expected), 0) << "page " << k;
    }

    TiffStackReader reader;
    ASSERT_TRUE(reader.open(TiffStackReaderConfig{path}).ok());
    std::vector<std::uint16_t> frame(Width * Height);
    for (std::size_t k = 0; k < frames.size(); ++k) {
        ASSERT_TRUE(reader.readFrame(k, frame));
        EXPECT_EQ(frame, frames[k]);
    }

    // Frames put straight into the page being written make the same file, byte for byte.
    const QString filled = dir.file(QStringLiteral("filled.tif"));
    TiffStackWriter writer;
    ASSERT_TRUE(writer.open({filled, Width, Height, 16, frames.size()}));
    for (const std::vector<std::uint16_t>& f : frames) {
        void* slot = writer.frameSlot();
        ASSERT_NE(slot, nullptr);
        std::memcpy(slot, f.data(), f.size() * sizeof(std::uint16_t));
        ASSERT_TRUE(writer.writeFilledFrame());
    }
    EXPECT_FALSE(writer.writeFilledFrame()) << "one frame more than announced";
    ASSERT_TRUE(writer.finish());
    QFile a(path), b(filled);
    ASSERT_TRUE(a.open(QIODevice::ReadOnly) && b.open(QIODevice::ReadOnly));
    EXPECT_EQ(a.readAll(), b.readAll());
    // Eight-bit pages need their samples converted, so they offer no slot.
    TiffStackWriter narrow;
    ASSERT_TRUE(narrow.open({dir.file(QStringLiteral("narrow.tif")), Width, Height, 8, 1}));
    EXPECT_EQ(narrow.frameSlot(), nullptr);
}

// Pages filled and written on two threads, in any order, make the file that writing the
// frames one after another makes; a fill or the caller stopping ends the writing.
TEST(TiffStackWriter, FramesWrittenOnBothCoresMakeTheSameFile)
{
    test::TempDir dir;
    const std::vector<std::vector<std::uint16_t>> frames = testFrames(7);
    const QString inTurn = dir.file(QStringLiteral("in-turn.tif"));
    ASSERT_TRUE(writeStack({inTurn, Width, Height, 16, frames.size()}, frames));
    const auto fillFrom = [&frames](std::size_t k, void* samples) {
        std::memcpy(samples, frames[k].data(), frames[k].size() * sizeof(std::uint16_t));
        return true;
    };
    std::size_t lastDone = 0;
    const auto keepGoing = [&lastDone](std::size_t done) {
        lastDone = done;
        return true;
    };

    // All of them, and all but the first, which went the ordinary way.
    for (const std::size_t inOrder : {std::size_t{0}, std::size_t{1}}) {
        const QString path = dir.file(QStringLiteral("both-%1.tif").arg(inOrder));
        TiffStackWriter writer;
        ASSERT_TRUE(writer.open({path, Width, Height, 16, frames.size()}));
        if (inOrder == 1)
            ASSERT_TRUE(writer.writeFrame(frames[0]));
        ASSERT_TRUE(writer.writeFramesOnBothCores(fillFrom, keepGoing)) << writer.lastError().toStdString();
        EXPECT_EQ(writer.framesWritten(), frames.size());
        ASSERT_TRUE(writer.finish());
        EXPECT_EQ(test::readText(path), test::readText(inTurn)) << inOrder;
    }
    EXPECT_GE(lastDone, frames.size() - 1);

    TiffStackWriter failing;
    ASSERT_TRUE(failing.open({dir.file(QStringLiteral("failing.tif")), Width, Height, 16, frames.size()}));
    EXPECT_FALSE(failing.writeFramesOnBothCores(
        [&](std::size_t k, void* samples) { return k != 3 && fillFrom(k, samples); }, keepGoing));
    EXPECT_TRUE(failing.lastError().isEmpty()) << "the fill gives its own reason";
    EXPECT_FALSE(failing.finish());

    TiffStackWriter stopped;
    ASSERT_TRUE(stopped.open({dir.file(QStringLiteral("stopped.tif")), Width, Height, 16, frames.size()}));
    EXPECT_FALSE(stopped.writeFramesOnBothCores(fillFrom, [](std::size_t) { return false; }));

    TiffStackWriter narrow;
    ASSERT_TRUE(narrow.open({dir.file(QStringLiteral("narrow.tif")), Width, Height, 8, 1}));
    EXPECT_FALSE(narrow.writeFramesOnBothCores(fillFrom, keepGoing));
}

TEST(TiffStackWriter, EightBitOutputKeepsSmallValuesAndSaturatesLargeOnes)
{
    test::TempDir dir;
    const std::vector<std::uint16_t> frame = {0, 1, 254, 255, 256, 300, 65535, 17};
    const QString path = dir.file(QStringLiteral("eight.tif"));
    ASSERT_TRUE(writeStack({path, 4, 2, 8, 1}, {frame}));
    const std::vector<cv::Mat> pages = readWithOpenCv(path);
    ASSERT_EQ(pages.size(), 1u);
    ASSERT_EQ(pages[0].type(), CV_8UC1);
    const std::vector<std::uint8_t> expected = {0, 1, 254, 255, 255, 255, 255, 17};
    EXPECT_EQ(std::vector<std::uint8_t>(pages[0].begin<std::uint8_t>(), pages[0].end<std::uint8_t>()),
              expected);
}

TEST(TiffStackWriter, WritesBigTiffThatReadsBack)
{
    test::TempDir dir;
    const std::vector<std::vector<std::uint16_t>> frames = {testFrame(16, 8, 0), testFrame(16, 8, 1)};
    const QString path = dir.file(QStringLiteral("big.tif"));
    ASSERT_TRUE(writeStack({path, 16, 8, 16, 2, TiffContainer::Big}, frames));
    // BigTIFF's version number is 43 where classic TIFF has 42.
    const QByteArray head = test::readText(path).left(4);
    EXPECT_EQ(head, QByteArray("II\x2B\x00", 4));
    if (haveTool(QStringLiteral("tiffinfo"))) {
        EXPECT_EQ(runTool(QStringLiteral("tiffinfo"), {path}).exitCode, 0);
    }
    TiffStackReader reader;
    ASSERT_TRUE(reader.open(TiffStackReaderConfig{path}).ok());
    std::vector<std::uint16_t> frame(16 * 8);
    ASSERT_TRUE(reader.readFrame(1, frame));
    EXPECT_EQ(frame, frames[1]);
}

TEST(TiffStackWriter, ReplacesALongerFileAndFillsAnEmptyOne)
{
    test::TempDir dir;
    const QString path = dir.file(QStringLiteral("stack.tif"));
    const std::vector<std::vector<std::uint16_t>> many = {testFrame(40, 30, 0), testFrame(40, 30, 1),
                                                          testFrame(40, 30, 2)};
    ASSERT_TRUE(writeStack({path, 40, 30, 16, 3}, many));
    const qint64 longer = QFileInfo(path).size();
    // Three frames of 2400 bytes at least.
    EXPECT_GE(longer, 3 * 2400);

    // Written again with one small frame: nothing of the old stack is left behind.
    const std::vector<std::vector<std::uint16_t>> one = {testFrame(10, 5, 7)};
    ASSERT_TRUE(writeStack({path, 10, 5, 16, 1}, one));
    EXPECT_LT(QFileInfo(path).size(), 1000);
    TiffStackReader reader;
    TiffStackInfo info = reader.open(TiffStackReaderConfig{path});
    ASSERT_TRUE(info.ok()) << info.error.toStdString();
    EXPECT_EQ(info.frameCount, 1u);
    std::vector<std::uint16_t> frame(10 * 5);
    ASSERT_TRUE(reader.readFrame(0, frame));
    EXPECT_EQ(frame, one[0]);
    reader.close();

    // An empty file made beforehand, as an export's temporary file is, is filled as it is.
    const QString empty = dir.file(QStringLiteral("empty.tif"));
    test::writeText(empty, QByteArray());
    ASSERT_TRUE(writeStack({empty, 40, 30, 8, 3}, many));
    info = reader.open(TiffStackReaderConfig{empty});
    ASSERT_TRUE(info.ok()) << info.error.toStdString();
    ASSERT_EQ(info.frameCount, 3u);
    EXPECT_EQ(info.bitsPerSample, 8);
    std::vector<std::uint16_t> wide(40 * 30);
    ASSERT_TRUE(reader.readFrame(2, wide));
    for (std::size_t i = 0; i < wide.size(); ++i)
        ASSERT_EQ(wide[i], std::min<std::uint16_t>(many[2][i], 255)) << i;
}

TEST(TiffStackWriter, ChoosesTheContainerBySizeAndChecksItsInput)
{
    test::TempDir dir;
    // 10,000 frames of 600 x 600 16-bit pixels: 7.2 GB.
    const TiffStackWriterConfig large{dir.file(QStringLiteral("large.tif")), 600, 600, 16, 10000};
    TiffStackWriter automatic;
    ASSERT_TRUE(automatic.open(large));
    EXPECT_TRUE(automatic.isBigTiff());
    TiffStackWriter small;
    ASSERT_TRUE(small.open({dir.file(QStringLiteral("small.tif")), 600, 600, 16, 100}));
    EXPECT_FALSE(small.isBigTiff());

    TiffStackWriterConfig classic = large;
    classic.container = TiffContainer::Classic;
    TiffStackWriter refused;
    EXPECT_FALSE(refused.open(classic));
    EXPECT_TRUE(refused.lastError().contains(QStringLiteral("write it as BigTIFF")));

    EXPECT_FALSE(refused.open({dir.file(QStringLiteral("x.tif")), 4, 4, 12, 1}));
    EXPECT_EQ(refused.lastError(),
              QStringLiteral("TIFF stacks are written with 8 or 16 bits per sample, not 12."));

    const QString path = dir.file(QStringLiteral("short.tif"));
    TiffStackWriter writer;
    ASSERT_TRUE(writer.open({path, 4, 2, 16, 2}));
    EXPECT_FALSE(writer.writeFrame(std::vector<std::uint16_t>(7)));
    ASSERT_TRUE(writer.writeFrame(testFrame(4, 2, 0)));
    EXPECT_FALSE(writer.finish());
    EXPECT_EQ(writer.lastError(),
              QStringLiteral("Only 1 of the 2 frames were written to <b>%1</b>.").arg(path));
}

// A disk that fills up while pages are being written, made by a file-size limit: the
// failed write, which happens on a second thread, still ends the stack with the system's
// reason, whether the frames are given in turn or filled on both cores.
TEST(TiffStackWriter, AWriteThatFailsBehindTheCallerIsReported)
{
    test::TempDir dir;
    const QString path = dir.file(QStringLiteral("full.tif"));
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        ::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{100'000, 100'000};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        TiffStackWriter writer;
        bool ok = writer.open({path, 100, 100, 16, 20});
        const bool opened = ok;
        for (int k = 0; ok && k < 20; ++k)
            ok = writer.writeFrame(testFrame(100, 100, k));
        ok = ok && writer.finish();
        const std::vector<std::uint16_t> frame = testFrame(100, 100, 0);
        TiffStackWriter onBothCores;
        const bool failedOnBothCores =
            onBothCores.open({path + QStringLiteral("2"), 100, 100, 16, 20}) &&
            !onBothCores.writeFramesOnBothCores(
                [&frame](std::size_t, void* samples) {
                    std::memcpy(samples, frame.data(), frame.size() * sizeof(std::uint16_t));
                    return true;
                },
                [](std::size_t) { return true; }) &&
            onBothCores.lastError().endsWith(qt_error_string(EFBIG));
        const bool reported =
            failedOnBothCores &&
            writer.lastError().startsWith(QStringLiteral("Unable to write <b>%1</b>: ").arg(path)) &&
            writer.lastError().endsWith(qt_error_string(EFBIG));
        ::_exit(opened && !ok && reported ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0) << "the full disk was expected to be reported";
}

} // namespace
} // namespace zarvi
