#include "ConvertTestSupport.h"

#include <QDir>
#include <QFile>

#include <opencv2/imgcodecs.hpp>

#include "fileeditor/VideoConverter.h"

namespace zarvi {
namespace {

using FD = FileDefinitions;

constexpr int Width = 48;
constexpr int Height = 32;
constexpr int Frames = 12;

cv::Mat greyFrame(int k)
{
    cv::Mat frame(Height, Width, CV_8UC1);
    for (int y = 0; y < Height; ++y) {
        for (int x = 0; x < Width; ++x)
            frame.at<uchar>(y, x) = static_cast<uchar>((x * 5 + y * 3 + k * 19) & 255);
    }
    return frame;
}

/// A lossless grey video encoded by the ffmpeg program from PNG frames.
bool encodeVideo(const test::TempDir& dir, const QString& video, int rate)
{
    for (int k = 0; k < Frames; ++k) {
        const QString png = dir.file(QStringLiteral("f%1.png").arg(k, 3, 10, QLatin1Char('0')));
        if (!cv::imwrite(QFile::encodeName(png).toStdString(), greyFrame(k)))
            return false;
    }
    const test::ToolRun run =
        test::runTool(QStringLiteral("ffmpeg"),
                      {"-v", "error", "-y", "-framerate", QString::number(rate), "-i",
                       dir.file(QStringLiteral("f%03d.png")), "-c:v", "ffv1", "-pix_fmt", "gray", video});
    EXPECT_EQ(run.exitCode, 0) << run.output.toStdString();
    return run.exitCode == 0;
}

TEST(VideoConverter, LinksVideoWithItsTimesAndStoresItsFramesAsStack)
{
    if (!test::haveTool(QStringLiteral("ffmpeg")))
        GTEST_SKIP() << "ffmpeg is not installed";
    test::TempDir dir;
    ASSERT_TRUE(QDir().mkpath(dir.file(QStringLiteral("videos"))));
    const QString video = dir.file(QStringLiteral("videos/arena.avi"));
    ASSERT_TRUE(encodeVideo(dir, video, 25));
    const QString file = dir.file(QStringLiteral("session.orvel"));

    VideoConversionConfig config{video, ConversionDestination{file, QStringLiteral("Camera"), QString(), 0},
                                 false};
    ConversionResult result = VideoConverter::convert(config);
    ASSERT_TRUE(result.ok()) << result.error.toStdString();
    const QString link = QStringLiteral("DataConverted/Camera/Video/Series1/Video1");
    EXPECT_EQ(result.datapaths, QStringList{link});
    HDF5Reader_V6 reader;
    ASSERT_GE(reader.open(file), 0);
    const hid_t group = reader.openGroup(reader.fileId(), link);
    EXPECT_EQ(reader.readAllAttributes(group), (QVariantMap{{"Filepath", QFileInfo(video).absoluteFilePath()},
                                                            {"RelativeFilePath", "videos/arena.avi"},
                                                            {"Filename", "arena.avi"},
                                                            {"FrameRate", 25.0}}));
    reader.closeGroup(group);
    reader.closeFile();
    const std::vector<double> times = test::storedValues(file, link + "/Time");
    ASSERT_EQ(times.size(), std::size_t(Frames));
    for (int k = 0; k < Frames; ++k)
        EXPECT_NEAR(times[k], k / 25.0, 1e-9);
    EXPECT_FALSE(test::pathExists(file, QStringLiteral("DataConverted/Camera/Images")));
    test::expectEditedStamp(file);

    config.asImageStack = true;
    config.destination.sensor = QStringLiteral("Arena");
    result = VideoConverter::convert(config);
    ASSERT_TRUE(result.ok()) << result.error.toStdString();
    const QString stack = QStringLiteral("DataConverted/Camera/Images/Series1/Arena/ImageStack");
    EXPECT_EQ(result.datapaths,
              (QStringList{QStringLiteral("DataConverted/Camera/Video/Series2/Video1"), stack,
                           QStringLiteral("DataConverted/Camera/Images/Series1/Arena/Time")}));
    const test::StoredDataset images = test::storedDataset(file, stack);
    EXPECT_EQ(images.dimensions, (std::vector<hsize_t>{Height, Width, Frames}));
    EXPECT_EQ(images.attributes.value("BitCount").toInt(), 8);
    EXPECT_EQ(images.attributes.value("Format").toInt(), 28);
    for (int k = 0; k < Frames; ++k) {
        const cv::Mat expected = greyFrame(k);
        const std::vector<std::uint16_t> stored = test::storedFrame(file, stack, k);
        ASSERT_EQ(stored.size(), std::size_t(Width * Height));
        EXPECT_TRUE(std::equal(stored.begin(), stored.end(), expected.begin<uchar>())) << "frame " << k;
    }
    EXPECT_EQ(test::storedValues(file, QStringLiteral("DataConverted/Camera/Images/Series1/Arena/Time")),
              test::storedValues(file, QStringLiteral("DataConverted/Camera/Video/Series2/Video1/Time")));
}

TEST(VideoConverter, RefusesUnreadableVideoWithoutCreatingTheFile)
{
    test::TempDir dir;
    const QString video = dir.file(QStringLiteral("notes.avi"));
    test::writeText(video, "this is not a video");
    const QString file = dir.file(QStringLiteral("never.orvel"));
    const ConversionResult result = VideoConverter::convert(
        VideoConversionConfig{video, {file, QStringLiteral("Camera"), QString(), 0}, false});
    EXPECT_EQ(result.error,
              QStringLiteral("<b>%1</b> could not be opened as a video; the file may be damaged or in a "
                             "format that cannot be decoded.")
                  .arg(video));
    EXPECT_FALSE(QFileInfo::exists(file));
}

} // namespace
} // namespace zarvi
