#include "VideoTestSupport.h"

#include "behavior/FramePrefetcher.h"

namespace zarvi {
namespace {

/// Twelve frames, each told apart by where its disc lies.
class FramePrefetcherTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        std::vector<cv::Point> centres;
        for (int k = 0; k < Frames; ++k)
            centres.emplace_back(20 + 9 * k, 30 + 5 * k);
        ASSERT_TRUE(test::writeDiscVideo(video, centres));
    }

    /// Every frame as one thread reads them, one after the other.
    std::vector<cv::Mat> readInOrder() const
    {
        VideoFrameReader reader;
        EXPECT_TRUE(reader.open(VideoFrameReaderConfig{video, VideoColor::Bgr}).ok());
        std::vector<cv::Mat> frames;
        cv::Mat frame;
        double seconds = 0.0;
        while (reader.readNext(frame, seconds))
            frames.push_back(frame.clone());
        return frames;
    }

    static constexpr int Frames = 12;
    test::TempDir dir;
    QString video = dir.file(QStringLiteral("frames.avi"));
};

TEST_F(FramePrefetcherTest, SegmentComesOutInOrderAsOneThreadReadsIt)
{
    const std::vector<cv::Mat> expected = readInOrder();
    ASSERT_EQ(expected.size(), std::size_t(Frames));
    FramePrefetcher decoder;
    ASSERT_TRUE(decoder.open(video).ok());
    decoder.start(3, 9);
    cv::Mat frame;
    std::size_t index = 0;
    for (std::size_t k = 3; k <= 9; ++k) {
        ASSERT_TRUE(decoder.next(frame, index)) << decoder.error().toStdString();
        EXPECT_EQ(index, k);
        EXPECT_EQ(cv::norm(frame, expected[k], cv::NORM_INF), 0.0) << "frame " << k;
    }
    EXPECT_FALSE(decoder.next(frame, index));
    EXPECT_TRUE(decoder.error().isEmpty());
}

TEST_F(FramePrefetcherTest, VideoShorterThanTheSegmentIsAnError)
{
    FramePrefetcher decoder;
    ASSERT_TRUE(decoder.open(video).ok());
    decoder.start(5, 20);
    cv::Mat frame;
    std::size_t index = 0;
    int read = 0;
    while (decoder.next(frame, index))
        ++read;
    EXPECT_EQ(read, Frames - 5);
    EXPECT_EQ(decoder.error(),
              QStringLiteral("The video <b>%1</b> ended after 12 frames, before frame 12.").arg(video));
}

TEST_F(FramePrefetcherTest, StoppingPartWayEndsTheDecoder)
{
    FramePrefetcher decoder;
    ASSERT_TRUE(decoder.open(video).ok());
    decoder.start(0, Frames - 1);
    cv::Mat frame;
    std::size_t index = 0;
    ASSERT_TRUE(decoder.next(frame, index));
    decoder.stop();
    // What was decoded before the stop may still come out, but never beyond it, and no error.
    while (decoder.next(frame, index))
        EXPECT_LT(index, FramePrefetcher::Depth + 1);
    EXPECT_TRUE(decoder.error().isEmpty());
}

} // namespace
} // namespace zarvi
