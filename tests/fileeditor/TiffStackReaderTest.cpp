#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>

#include <cstring>
#include <fstream>

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
using test::writeGreyPage;

void expectFrames(TiffStackReader& reader, const std::vector<std::vector<std::uint16_t>>& expected,
                  const std::vector<std::size_t>& order)
{
    std::vector<std::uint16_t> frame(reader.info().pixelsPerFrame());
    for (const std::size_t k : order) {
        ASSERT_TRUE(reader.readFrame(k, frame)) << reader.lastError().toStdString();
        EXPECT_EQ(frame, expected[k]) << "frame " << k;
    }
}

void appendLittleEndian(std::string& out, std::uint64_t value, int bytes)
{
    for (int i = 0; i < bytes; ++i)
        out.push_back(static_cast<char>((value >> (8 * i)) & 0xFF));
}

/// Writes a two-page 16-bit BigTIFF byte by byte, the second page's pixels placed beyond
/// the 4 GiB mark where only 64-bit offsets reach. The gap stays unwritten, so the file
/// is sparse and costs almost no disk.
void writeSparseBigTiff(const QString& path, int width, int height,
                        const std::vector<std::vector<std::uint16_t>>& pages,
                        const std::vector<std::uint64_t>& dataOffsets)
{
    constexpr int Entries = 9;
    constexpr std::uint64_t DirectoryBytes = 8 + Entries * 20 + 8;
    std::string head = "II";
    appendLittleEndian(head, 43, 2);
    appendLittleEndian(head, 8, 2);
    appendLittleEndian(head, 0, 2);
    appendLittleEndian(head, 16, 8);
    const std::uint64_t pageBytes = static_cast<std::uint64_t>(width) * height * 2;
    for (std::size_t k = 0; k < pages.size(); ++k) {
        appendLittleEndian(head, Entries, 8);
        const auto entry = [&head](int tag, int type, std::uint64_t value) {
            appendLittleEndian(head, tag, 2);
            appendLittleEndian(head, type, 2);
            appendLittleEndian(head, 1, 8);
            appendLittleEndian(head, value, 8);
        };
        entry(256, 3, width);
        entry(257, 3, height);
        entry(258, 3, 16);
        entry(259, 3, 1);
        entry(262, 3, 1);
        entry(273, 16, dataOffsets[k]);
        entry(277, 3, 1);
        entry(278, 3, height);
        entry(279, 16, pageBytes);
        const bool last = k + 1 == pages.size();
        appendLittleEndian(head, last ? 0 : 16 + (k + 1) * DirectoryBytes, 8);
    }
    std::ofstream out(QFile::encodeName(path).toStdString(), std::ios::binary);
    out.write(head.data(), static_cast<std::streamsize>(head.size()));
    for (std::size_t k = 0; k < pages.size(); ++k) {
        out.seekp(static_cast<std::streamoff>(dataOffsets[k]));
        out.write(reinterpret_cast<const char*>(pages[k].data()), static_cast<std::streamsize>(pageBytes));
    }
}

TEST(TiffStackReader, ReadsMultiPageStacksJoinedByTiffcpBitForBit)
{
    if (!haveTool(QStringLiteral("tiffcp")))
        GTEST_SKIP() << "tiffcp is not installed";
    test::TempDir dir;
    constexpr int Width = 45;
    constexpr int Height = 37;
    std::vector<std::vector<std::uint16_t>> expected;
    QStringList pages;
    for (int k = 0; k < 4; ++k) {
        pages << dir.file(QStringLiteral("page%1.tif").arg(k));
        ASSERT_TRUE(writeGreyPage(pages.last(), Width, Height, k));
        expected.push_back(testFrame(Width, Height, k));
    }
    // Classic strips, BigTIFF, tiles with padded edges, compression, many small strips.
    const std::vector<QStringList> variants = {{},
                                               {QStringLiteral("-8")},
                                               {QStringLiteral("-t"), QStringLiteral("-w"),
                                                QStringLiteral("16"), QStringLiteral("-l"),
                                                QStringLiteral("16")},
                                               {QStringLiteral("-c"), QStringLiteral("lzw:2")},
                                               {QStringLiteral("-r"), QStringLiteral("3")}};
    for (std::size_t v = 0; v < variants.size(); ++v) {
        SCOPED_TRACE(variants[v].join(QLatin1Char(' ')).toStdString());
        const QString stack = dir.file(QStringLiteral("stack%1.tif").arg(v));
        const test::ToolRun run = runTool(QStringLiteral("tiffcp"), variants[v] + pages + QStringList{stack});
        ASSERT_EQ(run.exitCode, 0) << run.output.toStdString();

        TiffStackReader reader;
        const TiffStackInfo info = reader.open(TiffStackReaderConfig{stack});
        ASSERT_TRUE(info.ok()) << info.error.toStdString();
        EXPECT_EQ(info.width, Width);
        EXPECT_EQ(info.height, Height);
        EXPECT_EQ(info.frameCount, 4u);
        EXPECT_EQ(info.bitsPerSample, 16);
        // In order, then jumping back and forth.
        expectFrames(reader, expected, {0, 1, 2, 3, 2, 0, 3, 1});
    }

    TiffStackReader reader;
    ASSERT_TRUE(reader.open(TiffStackReaderConfig{dir.file(QStringLiteral("stack0.tif"))}).ok());
    std::vector<std::uint16_t> frame(Width * Height);
    EXPECT_FALSE(reader.readFrame(4, frame));
    EXPECT_EQ(reader.lastError(), QStringLiteral("Frame 5 does not exist; the stack has 4 frames."));
    std::vector<std::uint16_t> small(10);
    EXPECT_FALSE(reader.readFrame(0, small));
    EXPECT_FALSE(reader.lastError().isEmpty());
}

TEST(TiffStackReader, ReadsFolderOfSinglePagesInNaturalNameOrder)
{
    test::TempDir dir;
    const QString folder = dir.file(QStringLiteral("frames"));
    ASSERT_TRUE(QDir().mkdir(folder));
    // Written out of order; k is the position each name must take.
    const std::vector<std::pair<QString, int>> names = {{QStringLiteral("img10.tif"), 3},
                                                        {QStringLiteral("img2.tif"), 1},
                                                        {QStringLiteral("IMG3.TIFF"), 2},
                                                        {QStringLiteral("img1.tif"), 0}};
    for (const auto& [name, k] : names)
        ASSERT_TRUE(writeGreyPage(folder + QLatin1Char('/') + name, 20, 10, k));
    test::writeText(folder + QStringLiteral("/notes.txt"), "not an image");

    TiffStackReader reader;
    const TiffStackInfo info = reader.open(TiffStackReaderConfig{folder});
    ASSERT_TRUE(info.ok()) << info.error.toStdString();
    EXPECT_EQ(info.frameCount, 4u);
    QStringList fileNames;
    for (const QString& file : info.files)
        fileNames << QFileInfo(file).fileName();
    EXPECT_EQ(fileNames, (QStringList{"img1.tif", "img2.tif", "IMG3.TIFF", "img10.tif"}));
    std::vector<std::vector<std::uint16_t>> expected;
    for (int k = 0; k < 4; ++k)
        expected.push_back(testFrame(20, 10, k));
    expectFrames(reader, expected, {0, 1, 2, 3, 1});
}

TEST(TiffStackReader, WidensEightBitPagesWithoutChangingValues)
{
    test::TempDir dir;
    std::vector<std::uint8_t> pixels(256 * 3);
    for (std::size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = static_cast<std::uint8_t>(i % 256);
    const QString path = dir.file(QStringLiteral("eight.tif"));
    ASSERT_TRUE(test::writeTiffPage(path, test::PageLayout{256, 3, 8}, pixels.data()));

    TiffStackReader reader;
    const TiffStackInfo info = reader.open(TiffStackReaderConfig{path});
    ASSERT_TRUE(info.ok()) << info.error.toStdString();
    EXPECT_EQ(info.bitsPerSample, 8);
    std::vector<std::uint16_t> frame(256 * 3, 0xFFFF);
    ASSERT_TRUE(reader.readFrame(0, frame));
    for (std::size_t i = 0; i < frame.size(); ++i)
        ASSERT_EQ(frame[i], i % 256) << "pixel " << i;
}

TEST(TiffStackReader, RefusesWhatIsNotAGreyscaleStack)
{
    test::TempDir dir;
    const auto openError = [](const QString& path) {
        TiffStackReader reader;
        const TiffStackInfo info = reader.open(TiffStackReaderConfig{path});
        EXPECT_EQ(info.frameCount, 0u);
        return info.error;
    };

    const std::vector<std::uint8_t> rgb(8 * 4 * 3, 7);
    const QString rgbPath = dir.file(QStringLiteral("colour.tif"));
    ASSERT_TRUE(test::writeTiffPage(rgbPath, {8, 4, 8, 3, PHOTOMETRIC_RGB}, rgb.data()));
    EXPECT_EQ(openError(rgbPath),
              QStringLiteral(
                  "Page 1 of <b>colour.tif</b> is an RGB image; only greyscale stacks can be converted."));

    const std::vector<float> floats(8 * 4, 1.5f);
    const QString floatPath = dir.file(QStringLiteral("float.tif"));
    ASSERT_TRUE(test::writeTiffPage(floatPath, {8, 4, 32, 1, PHOTOMETRIC_MINISBLACK, SAMPLEFORMAT_IEEEFP},
                                    floats.data()));
    EXPECT_TRUE(openError(floatPath).contains(QStringLiteral("floating-point samples")));

    const std::vector<std::uint32_t> wide(8 * 4, 70000);
    const QString widePath = dir.file(QStringLiteral("wide.tif"));
    ASSERT_TRUE(test::writeTiffPage(widePath, {8, 4, 32}, wide.data()));
    EXPECT_TRUE(openError(widePath).contains(QStringLiteral("has 32 bits per sample")));

    const std::vector<std::int16_t> signedPixels(8 * 4, -3);
    const QString signedPath = dir.file(QStringLiteral("signed.tif"));
    ASSERT_TRUE(test::writeTiffPage(signedPath, {8, 4, 16, 1, PHOTOMETRIC_MINISBLACK, SAMPLEFORMAT_INT},
                                    signedPixels.data()));
    EXPECT_TRUE(openError(signedPath).contains(QStringLiteral("signed integer samples")));

    const QString text = dir.file(QStringLiteral("notes.tif"));
    test::writeText(text, "Time,Signal\n0,1\n");
    EXPECT_EQ(openError(text), QStringLiteral("<b>%1</b> is not a TIFF file.").arg(text));

    EXPECT_TRUE(
        openError(dir.file(QStringLiteral("missing.tif"))).contains(QStringLiteral("does not exist")));

    const QString empty = dir.file(QStringLiteral("empty"));
    ASSERT_TRUE(QDir().mkdir(empty));
    EXPECT_TRUE(openError(empty).contains(QStringLiteral("holds no TIFF files")));

    if (haveTool(QStringLiteral("tiffcp"))) {
        const QString folder = dir.file(QStringLiteral("pages"));
        ASSERT_TRUE(QDir().mkdir(folder));
        ASSERT_TRUE(writeGreyPage(dir.file(QStringLiteral("a.tif")), 4, 4, 0));
        ASSERT_EQ(runTool(QStringLiteral("tiffcp"), {dir.file(QStringLiteral("a.tif")),
                                                     dir.file(QStringLiteral("a.tif")), folder + "/two.tif"})
                      .exitCode,
                  0);
        EXPECT_TRUE(openError(folder).contains(QStringLiteral("holds 2 pages")));
    }
}

TEST(TiffStackReader, NamesThePageWhoseSizeDiffers)
{
    test::TempDir dir;
    const QString folder = dir.file(QStringLiteral("frames"));
    ASSERT_TRUE(QDir().mkdir(folder));
    ASSERT_TRUE(writeGreyPage(folder + "/f1.tif", 40, 30, 0));
    ASSERT_TRUE(writeGreyPage(folder + "/f2.tif", 40, 30, 1));
    ASSERT_TRUE(writeGreyPage(folder + "/f3.tif", 32, 24, 2));
    TiffStackReader reader;
    EXPECT_EQ(reader.open(TiffStackReaderConfig{folder}).error,
              QStringLiteral("<b>f3.tif</b> is 32 × 24 pixels, but the first frame is 40 × 30 pixels; all "
                             "frames of a stack must have the same size."));

    if (!haveTool(QStringLiteral("tiffcp")))
        GTEST_SKIP() << "tiffcp is not installed";
    const QString stack = dir.file(QStringLiteral("mixed.tif"));
    ASSERT_EQ(
        runTool(QStringLiteral("tiffcp"), {folder + "/f1.tif", folder + "/f2.tif", folder + "/f3.tif", stack})
            .exitCode,
        0);
    EXPECT_EQ(reader.open(TiffStackReaderConfig{stack}).error,
              QStringLiteral("Page 3 of <b>mixed.tif</b> is 32 × 24 pixels, but the first frame is 40 × 30 "
                             "pixels; all frames of a stack must have the same size."));
}

TEST(TiffStackReader, ReachesBigTiffPixelsBeyondFourGigabytes)
{
    test::TempDir dir;
    const QString path = dir.file(QStringLiteral("sparse.tif"));
    const std::vector<std::vector<std::uint16_t>> pages = {testFrame(64, 16, 0), testFrame(64, 16, 1)};
    const std::uint64_t beyond = 5ULL << 30;
    writeSparseBigTiff(path, 64, 16, pages, {4096, beyond});
    ASSERT_GT(QFileInfo(path).size(), qint64(4) << 30);

    TiffStackReader reader;
    const TiffStackInfo info = reader.open(TiffStackReaderConfig{path});
    ASSERT_TRUE(info.ok()) << info.error.toStdString();
    EXPECT_EQ(info.frameCount, 2u);
    expectFrames(reader, pages, {1, 0, 1});

    // Cut inside the second page's pixels: refused when opened, naming that page and
    // the 64 * 16 * 2 bytes it declares.
    QFile file(path);
    ASSERT_TRUE(file.resize(static_cast<qint64>(beyond) + 100));
    const TiffStackInfo cut = reader.open(TiffStackReaderConfig{path});
    ASSERT_FALSE(cut.ok());
    EXPECT_TRUE(
        cut.error.startsWith(QStringLiteral("Page 2 of <b>sparse.tif</b> declares <b>2048 bytes</b>")))
        << cut.error.toStdString();
}

TEST(TiffStackReader, ReadsImageJStacksWhoseFramesFollowTheFirstImage)
{
    test::TempDir dir;
    for (const bool bigEndian : {false, true}) {
        const QString path = dir.file(bigEndian ? QStringLiteral("big.tif") : QStringLiteral("little.tif"));
        ASSERT_TRUE(test::writeImageJStack(path, 23, 7, 5, 5, bigEndian));
        TiffStackReader reader;
        const TiffStackInfo info = reader.open(TiffStackReaderConfig{path});
        ASSERT_TRUE(info.ok()) << info.error.toStdString();
        EXPECT_EQ(info.width, 23);
        EXPECT_EQ(info.height, 7);
        ASSERT_EQ(info.frameCount, 5u);
        EXPECT_TRUE(info.warning.isEmpty());
        std::vector<std::vector<std::uint16_t>> expected;
        for (int k = 0; k < 5; ++k)
            expected.push_back(testFrame(23, 7, k));
        expectFrames(reader, expected, {4, 0, 2, 1, 3});
    }
}

TEST(TiffStackReader, ImportsTheFramesAnImageJStackHoldsAndWarnsOfTheMissingOnes)
{
    test::TempDir dir;
    const QString one = dir.file(QStringLiteral("announced.tif"));
    ASSERT_TRUE(test::writeImageJStack(one, 16, 9, 3500, 1, false));
    TiffStackReader reader;
    TiffStackInfo info = reader.open(TiffStackReaderConfig{one});
    ASSERT_TRUE(info.ok()) << info.error.toStdString();
    EXPECT_EQ(info.frameCount, 1u);
    EXPECT_EQ(info.warning,
              QStringLiteral("Warning: <b>announced.tif</b> announces 3500 frames but holds 1; the 1 "
                             "frames it holds were imported."));
    expectFrames(reader, {testFrame(16, 9, 0)}, {0});

    // Three of four frames, and half of the fourth, in the other byte order.
    const QString cut = dir.file(QStringLiteral("cut.tif"));
    ASSERT_TRUE(test::writeImageJStack(cut, 16, 9, 4, 4, true));
    QByteArray bytes = test::readText(cut);
    bytes.chop(16 * 9);
    test::writeText(cut, bytes);
    info = reader.open(TiffStackReaderConfig{cut});
    ASSERT_TRUE(info.ok()) << info.error.toStdString();
    EXPECT_EQ(info.frameCount, 3u);
    EXPECT_TRUE(info.warning.contains(QStringLiteral("announces 4 frames but holds 3")));
    expectFrames(reader, {testFrame(16, 9, 0), testFrame(16, 9, 1), testFrame(16, 9, 2)}, {2, 1, 0});
}

TEST(TiffStackReader, DamagedFilesGiveMessages)
{
    test::TempDir dir;
    const QString path = dir.file(QStringLiteral("stack.tif"));
    {
        TiffStackWriter writer;
        ASSERT_TRUE(writer.open({path, 30, 20, 16, 6}));
        for (int k = 0; k < 6; ++k)
            ASSERT_TRUE(writer.writeFrame(testFrame(30, 20, k)));
        ASSERT_TRUE(writer.finish());
    }
    const QByteArray whole = test::readText(path);
    // Every length from the bare header on: each either opens and reads or says why not.
    for (qsizetype length = 8; length < whole.size(); length += 97) {
        test::writeText(path, whole.left(length));
        TiffStackReader reader;
        const TiffStackInfo info = reader.open(TiffStackReaderConfig{path});
        if (!info.ok()) {
            EXPECT_FALSE(info.error.isEmpty());
            continue;
        }
        std::vector<std::uint16_t> frame(info.pixelsPerFrame());
        for (std::size_t k = 0; k < info.frameCount; ++k) {
            if (!reader.readFrame(k, frame)) {
                EXPECT_FALSE(reader.lastError().isEmpty());
            }
        }
    }
}

/// Sets the value of one entry of the first directory of a little-endian classic TIFF,
/// as a LONG, the way a damaged or hostile file would declare it.
void patchTag(QByteArray& bytes, std::uint16_t tag, std::uint32_t value)
{
    const auto read = [&bytes](qsizetype at, int size) {
        std::uint32_t v = 0;
        for (int i = size - 1; i >= 0; --i)
            v = (v << 8) | static_cast<std::uint8_t>(bytes[at + i]);
        return v;
    };
    const auto write = [&bytes](qsizetype at, std::uint32_t v, int size) {
        for (int i = 0; i < size; ++i)
            bytes[at + i] = static_cast<char>((v >> (8 * i)) & 0xFF);
    };
    const qsizetype directory = read(4, 4);
    const std::uint32_t entries = read(directory, 2);
    for (std::uint32_t e = 0; e < entries; ++e) {
        const qsizetype entry = directory + 2 + 12 * e;
        if (read(entry, 2) == tag) {
            write(entry + 2, TIFF_LONG, 2);
            write(entry + 8, value, 4);
            return;
        }
    }
    ADD_FAILURE() << "no tag " << tag;
}

TEST(TiffStackReader, RefusesDeclaredSizesTheFileCannotHold)
{
    test::TempDir dir;
    const QString path = dir.file(QStringLiteral("small.tif"));

    // 60000 x 60000 16-bit pixels (7.2 GB) declared by a file of a few hundred bytes.
    ASSERT_TRUE(writeGreyPage(path, 16, 8, 0));
    QByteArray bytes = test::readText(path);
    ASSERT_LT(bytes.size(), 600);
    patchTag(bytes, TIFFTAG_IMAGEWIDTH, 60000);
    patchTag(bytes, TIFFTAG_IMAGELENGTH, 60000);
    patchTag(bytes, TIFFTAG_ROWSPERSTRIP, 60000);
    test::writeText(path, bytes);
    TiffStackReader reader;
    TiffStackInfo info = reader.open(TiffStackReaderConfig{path});
    ASSERT_FALSE(info.ok());
    // 60000 * 60000 * 2 bytes declared against the file's own size.
    EXPECT_TRUE(info.error.contains(QStringLiteral("<b>7200000000 bytes</b>"))) << info.error.toStdString();
    EXPECT_TRUE(info.error.contains(QString::number(bytes.size()))) << info.error.toStdString();
    EXPECT_TRUE(info.error.contains(QStringLiteral("small.tif")));

    // A strip said to start beyond the end of the file.
    ASSERT_TRUE(writeGreyPage(path, 16, 8, 0));
    bytes = test::readText(path);
    patchTag(bytes, TIFFTAG_STRIPOFFSETS, 1u << 30);
    test::writeText(path, bytes);
    info = reader.open(TiffStackReaderConfig{path});
    ASSERT_FALSE(info.ok());
    EXPECT_TRUE(info.error.contains(QStringLiteral("<b>256 bytes</b>"))) << info.error.toStdString();
}

TEST(TiffStackReader, RefusesATileLongerThanTheFileCanHold)
{
    test::TempDir dir;
    const QString path = dir.file(QStringLiteral("tiled.tif"));
    const std::vector<std::uint16_t> frame = testFrame(32, 32, 0);
    {
        TIFF* tiff = TIFFOpen(QFile::encodeName(path).constData(), "w");
        ASSERT_NE(tiff, nullptr);
        TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, 32u);
        TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, 32u);
        TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 16);
        TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
        TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
        TIFFSetField(tiff, TIFFTAG_TILEWIDTH, 16u);
        TIFFSetField(tiff, TIFFTAG_TILELENGTH, 16u);
        std::vector<std::uint16_t> tile(16 * 16);
        for (std::uint32_t ty = 0; ty < 32; ty += 16) {
            for (std::uint32_t tx = 0; tx < 32; tx += 16) {
                for (std::size_t r = 0; r < 16; ++r)
                    std::memcpy(&tile[r * 16], &frame[(ty + r) * 32 + tx], 32);
                ASSERT_EQ(TIFFWriteTile(tiff, tile.data(), tx, ty, 0, 0), 512);
            }
        }
        TIFFClose(tiff);
    }
    // The tiled page reads as written before it is damaged.
    TiffStackReader reader;
    ASSERT_TRUE(reader.open(TiffStackReaderConfig{path}).ok());
    std::vector<std::uint16_t> read(32 * 32);
    ASSERT_TRUE(reader.readFrame(0, read));
    EXPECT_EQ(read, frame);
    reader.close();

    QByteArray bytes = test::readText(path);
    patchTag(bytes, TIFFTAG_TILELENGTH, 4294967167u);
    test::writeText(path, bytes);
    const TiffStackInfo info = reader.open(TiffStackReaderConfig{path});
    ASSERT_FALSE(info.ok());
    EXPECT_TRUE(info.error.contains(QStringLiteral("tiled.tif"))) << info.error.toStdString();
}

TEST(TiffStackReader, OpeningCanBeCanceled)
{
    test::TempDir dir;
    ASSERT_TRUE(writeGreyPage(dir.file(QStringLiteral("a.tif")), 4, 4, 0));
    test::RecordingFeedback feedback(-1);
    TiffStackReader reader;
    const TiffStackInfo info = reader.open(TiffStackReaderConfig{dir.path()}, &feedback);
    EXPECT_TRUE(info.canceled);
    EXPECT_FALSE(info.ok());
    std::vector<std::uint16_t> frame(16);
    EXPECT_FALSE(reader.readFrame(0, frame));
}

} // namespace
} // namespace zarvi
