// Seeking in a real video: every frame carries its own index as a row of black and white
// blocks, so the frame decoded after a seek can be read back and compared with the one
// asked for.
#include "common/TempDir.h"

#include "fileeditor/VideoFrameReader.h"

#include <QFile>

#include <opencv2/imgproc.hpp>
#include <opencv2/videoio.hpp>

#include <gtest/gtest.h>

using namespace zarvi;

namespace {

constexpr int Frames = 200;
constexpr int Block = 8;

/// Bit b of k is block b, white when set.
cv::Mat indexFrame(int k)
{
    cv::Mat frame(48, 8 * Block, CV_8UC3, cv::Scalar::all(0));
    for (int b = 0; b < 8; ++b)
        if (k & (1 << b))
            frame.colRange(b * Block, (b + 1) * Block).setTo(cv::Scalar::all(255));
    return frame;
}

int indexOf(const cv::Mat& frame)
{
    cv::Mat grey;
    cv::cvtColor(frame, grey, cv::COLOR_BGR2GRAY);
    int k = 0;
    for (int b = 0; b < 8; ++b)
        if (cv::mean(grey.colRange(b * Block, (b + 1) * Block))[0] > 128)
            k |= 1 << b;
    return k;
}

class VideoSeekTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        cv::VideoWriter writer(QFile::encodeName(video).toStdString(),
                               cv::VideoWriter::fourcc('M', 'J', 'P', 'G'), 25.0, cv::Size(8 * Block, 48),
                               true);
        ASSERT_TRUE(writer.isOpened());
        for (int k = 0; k < Frames; ++k)
            writer.write(indexFrame(k));
        writer.release();
        ASSERT_TRUE(reader.open({video, VideoColor::Bgr}).ok());
    }

    int frameAfterSeek(std::size_t index)
    {
        EXPECT_TRUE(reader.seek(index)) << reader.lastError().toStdString();
        return next();
    }

    int next()
    {
        cv::Mat frame;
        double seconds = 0.0;
        EXPECT_TRUE(reader.readNext(frame, seconds)) << reader.lastError().toStdString();
        return frame.empty() ? -1 : indexOf(frame);
    }

    test::TempDir dir;
    QString video = dir.file(QStringLiteral("index.avi"));
    VideoFrameReader reader;
};

} // namespace

TEST_F(VideoSeekTest, TheFrameReadAfterASeekIsTheOneAskedFor)
{
    EXPECT_EQ(next(), 0);
    EXPECT_EQ(frameAfterSeek(150), 150); // far ahead, through the container
    EXPECT_EQ(next(), 151);
    EXPECT_EQ(frameAfterSeek(10), 10); // back
    EXPECT_EQ(frameAfterSeek(14), 14); // a little ahead, decoded forward
    EXPECT_EQ(frameAfterSeek(14 + 1), 15);
    EXPECT_EQ(frameAfterSeek(Frames - 1), Frames - 1);
    EXPECT_EQ(frameAfterSeek(0), 0);
    EXPECT_EQ(reader.framesRead(), 1u);
}
