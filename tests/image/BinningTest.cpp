#include "image/operations/binning/FrameBinning.h"

#include <gtest/gtest.h>

namespace zarvi {
namespace {

TEST(Binning, TwoByTwoOfConstantBlocksGivesTheBlockValues)
{
    cv::Mat frame(4, 4, CV_32F);
    const float blocks[2][2] = {{10.0f, 20.0f}, {30.0f, 40.0f}};
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 4; ++x)
            frame.at<float>(y, x) = blocks[y / 2][x / 2];
    cv::Mat binned;
    binFrame(frame, binned, 2);
    ASSERT_EQ(binned.size(), cv::Size(2, 2));
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 2; ++x)
            EXPECT_FLOAT_EQ(binned.at<float>(y, x), blocks[y][x]);
}

TEST(Binning, TwoByTwoIsTheBlockMean)
{
    // Block values 1, 2, 5, 6 average to 3.5; 3, 4, 7, 8 to 5.5.
    cv::Mat frame = (cv::Mat_<float>(2, 4) << 1, 2, 3, 4, 5, 6, 7, 8);
    cv::Mat binned;
    binFrame(frame, binned, 2);
    ASSERT_EQ(binned.size(), cv::Size(2, 1));
    EXPECT_FLOAT_EQ(binned.at<float>(0, 0), 3.5f);
    EXPECT_FLOAT_EQ(binned.at<float>(0, 1), 5.5f);
}

TEST(Binning, FourByFourSamplesTheBlockCentreBilinearly)
{
    // Pixel (x, y) holds x + 8 y, so the bilinear sample at any point is x + 8 y there.
    // The output pixel (i, j) centre maps to input (4 i + 1.5, 4 j + 1.5): the mean of
    // the central 2 x 2 pixels of the block, 4 i + 1.5 + 8 (4 j + 1.5).
    cv::Mat frame(8, 8, CV_32F);
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x)
            frame.at<float>(y, x) = static_cast<float>(x + 8 * y);
    // A pixel outside the centre of its block must not count: make it huge.
    frame.at<float>(0, 0) = 1e6f;
    cv::Mat binned;
    binFrame(frame, binned, 4);
    ASSERT_EQ(binned.size(), cv::Size(2, 2));
    for (int j = 0; j < 2; ++j)
        for (int i = 0; i < 2; ++i)
            EXPECT_FLOAT_EQ(binned.at<float>(j, i), static_cast<float>(4 * i + 1.5 + 8 * (4 * j + 1.5)));
}

TEST(Binning, SizeOfAFrameThatIsNoMultipleRoundsToTheNearest)
{
    EXPECT_EQ(binnedSize({11, 7}, 4), cv::Size(3, 2)); // 2.75 -> 3, 1.75 -> 2
    EXPECT_EQ(binnedSize({7, 9}, 2), cv::Size(4, 4));  // 3.5 -> 4, 4.5 -> 4: ties go to the even size
    cv::Mat frame = cv::Mat::ones(7, 11, CV_32F), binned;
    binFrame(frame, binned, 4);
    EXPECT_EQ(binned.size(), binnedSize({11, 7}, 4));
}

} // namespace
} // namespace zarvi
