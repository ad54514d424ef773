#include <gtest/gtest.h>

#include <QFile>

#include <opencv2/imgcodecs.hpp>

#include "FileToolHelpers.h"
#include "common/TempDir.h"
#include "fileeditor/VideoFrameReader.h"

namespace zarvi {
namespace {

using test::haveTool;
using test::runTool;

constexpr int Width = 64;
constexpr int Height = 48;
constexpr int Frames = 20;

/// A colour frame whose three channels change differently with position and time.
cv::Mat colourFrame(int k)
{
    cv::Mat frame(Height, Width, CV_8UC3);
    for (int y = 0; y < Height; ++y) {
        for (int x = 0; x < Width; ++x) {
            frame.at<cv::Vec3b>(y, x) = cv::Vec3b(static_cast<uchar>((x * 7 + k * 13) & 255),
                                                  static_cast<uchar>((y * 11 + k * 5) & 255),
                                                  static_cast<uchar>((x * y + k * 29) & 255));
        }
    }
    return frame;
}

cv::Mat greyFrame(int k)
{
    cv::Mat frame(Height, Width, CV_8UC1);
    for (int y = 0; y < Height; ++y) {
        for (int x = 0; x < Width; ++x)
            frame.at<uchar>(y, x) = static_cast<uchar>((x * 3 + y * 5 + k * 17) & 255);
    }
    return frame;
}

/// Writes the frames as PNG files and encodes them with the ffmpeg program.
bool encode(const test::TempDir& dir, const std::vector<cv::Mat>& frames, const QStringList& options,
            const QString& video, int rate)
{
    for (std::size_t k = 0; k < frames.size(); ++k) {
        const QString png = dir.file(QStringLiteral("f%1.png").arg(k, 3, 10, QLatin1Char('0')));
        if (!cv::imwrite(QFile::encodeName(png).toStdString(), frames[k]))
            return false;
    }
    const QStringList arguments = QStringList{"-v",
                                              "error",
                                              "-y",
                                              "-framerate",
                                              QString::number(rate),
                                              "-i",
                                              dir.file(QStringLiteral("f%03d.png"))} +
                                  options + QStringList{video};
    const test::ToolRun run = runTool(QStringLiteral("ffmpeg"), arguments);
    EXPECT_EQ(run.exitCode, 0) << run.output.toStdString();
    return run.exitCode == 0;
}

/// Reads every frame; the frames and their times.
std::vector<cv::Mat> readAll(VideoFrameReader& reader, std::vector<double>& times)
{
    std::vector<cv::Mat> frames;
    cv::Mat frame;
    double seconds = 0.0;
    while (reader.readNext(frame, seconds)) {
        frames.push_back(frame.clone());
        times.push_back(seconds);
    }
    return frames;
}

TEST(VideoFrameReader, ReadsLosslessVideoFrameForFrameWithContainerTimes)
{
    if (!haveTool(QStringLiteral("ffmpeg")))
        GTEST_SKIP() << "ffmpeg is not installed";
    test::TempDir dir;
    std::vector<cv::Mat> colour;
    for (int k = 0; k < Frames; ++k)
        colour.push_back(colourFrame(k));
    const QString video = dir.file(QStringLiteral("colour.avi"));
    ASSERT_TRUE(encode(dir, colour, {"-c:v", "ffv1", "-pix_fmt", "bgr0"}, video, 10));

    VideoFrameReader reader;
    const VideoInfo info = reader.open(VideoFrameReaderConfig{video, VideoColor::Bgr});
    ASSERT_TRUE(info.ok()) << info.error.toStdString();
    EXPECT_EQ(info.width, Width);
    EXPECT_EQ(info.height, Height);
    EXPECT_EQ(info.frameCount, std::size_t(Frames));
    EXPECT_TRUE(info.frameCountExact);
    EXPECT_DOUBLE_EQ(info.fps, 10.0);
    std::vector<double> times;
    const std::vector<cv::Mat> frames = readAll(reader, times);
    EXPECT_TRUE(reader.lastError().isEmpty()) << reader.lastError().toStdString();
    ASSERT_EQ(frames.size(), std::size_t(Frames));
    for (int k = 0; k < Frames; ++k) {
        ASSERT_EQ(frames[k].type(), CV_8UC3);
        EXPECT_EQ(cv::norm(frames[k], colour[k], cv::NORM_INF), 0.0) << "frame " << k;
        EXPECT_NEAR(times[k], k / 10.0, 1e-9) << "frame " << k;
    }

    const VideoTimestamps stamps = VideoFrameReader::readTimestamps(video);
    ASSERT_TRUE(stamps.ok()) << stamps.error.toStdString();
    EXPECT_FALSE(stamps.fromFrameRate);
    ASSERT_EQ(stamps.times.size(), std::size_t(Frames));
    for (int k = 0; k < Frames; ++k)
        EXPECT_NEAR(stamps.times[k], k / 10.0, 1e-9);
}

TEST(VideoFrameReader, ReadsGreyFramesUnchanged)
{
    if (!haveTool(QStringLiteral("ffmpeg")))
        GTEST_SKIP() << "ffmpeg is not installed";
    test::TempDir dir;
    std::vector<cv::Mat> grey;
    for (int k = 0; k < Frames; ++k)
        grey.push_back(greyFrame(k));
    const QString video = dir.file(QStringLiteral("grey.avi"));
    ASSERT_TRUE(encode(dir, grey, {"-c:v", "ffv1", "-pix_fmt", "gray"}, video, 30));

    VideoFrameReader reader;
    ASSERT_TRUE(reader.open(VideoFrameReaderConfig{video, VideoColor::Grey}).ok());
    std::vector<double> times;
    const std::vector<cv::Mat> frames = readAll(reader, times);
    ASSERT_EQ(frames.size(), std::size_t(Frames));
    for (int k = 0; k < Frames; ++k) {
        ASSERT_EQ(frames[k].type(), CV_8UC1);
        EXPECT_EQ(cv::norm(frames[k], grey[k], cv::NORM_INF), 0.0) << "frame " << k;
        EXPECT_NEAR(times[k], k / 30.0, 1e-9);
    }
}

TEST(VideoFrameReader, TakesTimesFromAnMp4Container)
{
    if (!haveTool(QStringLiteral("ffmpeg")))
        GTEST_SKIP() << "ffmpeg is not installed";
    test::TempDir dir;
    std::vector<cv::Mat> colour;
    for (int k = 0; k < Frames; ++k)
        colour.push_back(colourFrame(k));
    const QString video = dir.file(QStringLiteral("clip.mp4"));
    ASSERT_TRUE(encode(dir, colour, {"-c:v", "mpeg4", "-q:v", "2", "-pix_fmt", "yuv420p"}, video, 25));

    const VideoTimestamps stamps = VideoFrameReader::readTimestamps(video);
    ASSERT_TRUE(stamps.ok()) << stamps.error.toStdString();
    ASSERT_EQ(stamps.times.size(), std::size_t(Frames));
    for (int k = 0; k < Frames; ++k)
        EXPECT_NEAR(stamps.times[k], k / 25.0, 1e-9);
}

TEST(VideoFrameReader, TimesMpegProgramStreamFramesWithoutStatedCount)
{
    if (!haveTool(QStringLiteral("ffmpeg")))
        GTEST_SKIP() << "ffmpeg is not installed";
    test::TempDir dir;
    const QString video = dir.file(QStringLiteral("clip.mpeg"));
    const test::ToolRun run = runTool(QStringLiteral("ffmpeg"),
                                      {"-v", "error", "-y", "-f", "lavfi", "-i", "testsrc=size=64x48:rate=25",
                                       "-frames:v", "37", "-c:v", "mpeg2video", "-q:v", "2", video});
    ASSERT_EQ(run.exitCode, 0) << run.output.toStdString();

    // A program stream states no frame count, so running short of the estimate is no error.
    // OpenCV gets no time for the frames of this stream (it reports 0 for each), so they
    // are timed by the rate.
    VideoFrameReader reader;
    const VideoInfo info = reader.open(VideoFrameReaderConfig{video});
    ASSERT_TRUE(info.ok()) << info.error.toStdString();
    EXPECT_FALSE(info.frameCountExact);
    const VideoTimestamps stamps = VideoFrameReader::readTimestamps(video);
    ASSERT_TRUE(stamps.ok()) << stamps.error.toStdString();
    ASSERT_EQ(stamps.times.size(), 37u);
    for (std::size_t k = 0; k < stamps.times.size(); ++k)
        EXPECT_NEAR(stamps.times[k], static_cast<double>(k) / 25.0, 1e-9);
}

TEST(VideoFrameReader, ReportsTruncatedAndUnreadableFiles)
{
    if (!haveTool(QStringLiteral("ffmpeg")))
        GTEST_SKIP() << "ffmpeg is not installed";
    test::TempDir dir;
    std::vector<cv::Mat> colour;
    for (int k = 0; k < Frames; ++k)
        colour.push_back(colourFrame(k));
    const QString video = dir.file(QStringLiteral("cut.avi"));
    ASSERT_TRUE(encode(dir, colour, {"-c:v", "ffv1", "-pix_fmt", "bgr0"}, video, 10));
    QFile file(video);
    ASSERT_TRUE(file.resize(file.size() / 2));

    VideoFrameReader reader;
    const VideoInfo info = reader.open(VideoFrameReaderConfig{video, VideoColor::Grey});
    ASSERT_TRUE(info.ok()) << info.error.toStdString();
    std::vector<double> times;
    const std::vector<cv::Mat> frames = readAll(reader, times);
    EXPECT_LT(frames.size(), std::size_t(Frames));
    EXPECT_EQ(reader.lastError(),
              QStringLiteral("Only %1 of the 20 frames announced by <b>%2</b> could be read; "
                             "the file may be truncated or damaged.")
                  .arg(frames.size())
                  .arg(video));
    const VideoTimestamps stamps = VideoFrameReader::readTimestamps(video);
    EXPECT_FALSE(stamps.ok());
    EXPECT_EQ(stamps.times.size(), frames.size());

    const QString text = dir.file(QStringLiteral("notes.avi"));
    test::writeText(text, "this is not a video");
    EXPECT_TRUE(
        reader.open(VideoFrameReaderConfig{text}).error.contains(QStringLiteral("could not be opened")));
    EXPECT_TRUE(reader.open(VideoFrameReaderConfig{dir.file(QStringLiteral("missing.avi"))})
                    .error.contains(QStringLiteral("does not exist")));
    // A folder given as a video is named as what it is.
    EXPECT_EQ(reader.open(VideoFrameReaderConfig{dir.path()}).error,
              QStringLiteral("<b>%1</b> is a folder, not a file.").arg(dir.path()));
    cv::Mat frame;
    double seconds = 0.0;
    EXPECT_FALSE(reader.readNext(frame, seconds));
}

} // namespace
} // namespace zarvi
