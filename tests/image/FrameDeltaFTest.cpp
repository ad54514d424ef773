#include "image/operations/dffimages/FrameDeltaF.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace zarvi {
namespace {

/// One-row float frames, one per entry of `rows`.
std::vector<cv::Mat> floatFrames(const std::vector<std::vector<float>>& rows)
{
    std::vector<cv::Mat> frames;
    for (const std::vector<float>& row : rows)
        frames.push_back(cv::Mat(row, true).reshape(1, 1));
    return frames;
}

/// `values` written `times` times in a row.
template <typename T> std::vector<T> repeated(const std::vector<T>& values, int times)
{
    std::vector<T> row;
    for (int k = 0; k < times; ++k)
        row.insert(row.end(), values.begin(), values.end());
    return row;
}

/// Both passes over `frames`: the output of every frame, pixel values in a row.
std::vector<std::vector<int>> deltaFOf(FrameDeltaF& deltaF, const std::vector<cv::Mat>& frames)
{
    for (const cv::Mat& frame : frames)
        deltaF.addToBaseline(frame);
    deltaF.finishBaseline();
    std::vector<std::vector<int>> outputs;
    cv::Mat percent;
    for (const cv::Mat& frame : frames) {
        deltaF.compute(frame, percent);
        EXPECT_EQ(percent.type(), CV_16UC1);
        outputs.emplace_back(percent.begin<std::uint16_t>(), percent.end<std::uint16_t>());
    }
    return outputs;
}

TEST(FrameDeltaFTest, TheMeanImageOfThousandsOfFramesIsExact)
{
    // 1000 frames of 65535, then 1000 of 1: the mean is 32768. A float sum passes 2^24 after
    // 257 frames and rounds from there on; past 2^25 adding 1 changes nothing. It would give
    // 32767.87.
    FrameDeltaF deltaF({}, false);
    const cv::Mat bright(1, 1, CV_16U, cv::Scalar(65535)), dim(1, 1, CV_16U, cv::Scalar(1));
    for (int k = 0; k < 1000; ++k)
        deltaF.addToBaseline(bright);
    for (int k = 0; k < 1000; ++k)
        deltaF.addToBaseline(dim);
    deltaF.finishBaseline();
    EXPECT_EQ(deltaF.baselineFrames(), 2000u);
    EXPECT_EQ(deltaF.baseline().at<float>(0, 0), 32768.0f);
}

TEST(FrameDeltaFTest, PercentagesAreRoundedAndSaturated)
{
    // Pixel 0 is 3 in the even frames and 4 in the odd ones (mean 3.5): 4 is 14.29 % above
    // F0 (14), 3 is below (0). Pixel 1 is 0 in 999 frames and 1000 in frame 1: F0 = 1, so
    // frame 1 is 99900 % (65535) and the others -100 % (0). Pixels 2 and 3 alternate 7, 9
    // and 5, 11 (F0 = 8): 12.5 % and 37.5 % in the odd frames, ties that go to the even
    // neighbour, 12 and 38. Frames are these four pixels five times over, 20 pixels: rows are
    // computed in blocks of 16 and the rest one by one, and both must agree.
    std::vector<std::vector<float>> rows;
    for (int k = 0; k < 1000; ++k) {
        const bool odd = k % 2 == 1;
        rows.push_back(repeated<float>(
            {odd ? 4.0f : 3.0f, k == 1 ? 1000.0f : 0.0f, odd ? 9.0f : 7.0f, odd ? 11.0f : 5.0f}, 5));
    }
    FrameDeltaF deltaF({}, false);
    const auto outputs = deltaFOf(deltaF, floatFrames(rows));
    EXPECT_EQ(deltaF.baseline().at<float>(0, 0), 3.5f);
    EXPECT_EQ(outputs[0], repeated<int>({0, 0, 0, 0}, 5));
    EXPECT_EQ(outputs[1], repeated<int>({14, 65535, 12, 38}, 5));
    EXPECT_EQ(outputs[2], repeated<int>({0, 0, 0, 0}, 5));
    EXPECT_EQ(outputs[3], repeated<int>({14, 0, 12, 38}, 5));
}

TEST(FrameDeltaFTest, ARatioBeyondTheIntegersStillSaturatesTo65535)
{
    // After the dark frame 1: 1 and -(1 - 2^-24), so F0 = 2^-25 and frame 0 is about
    // 100 x 2^25 %, far beyond what an int holds; it is still "above 65535".
    const cv::Mat dark(1, 1, CV_32F, cv::Scalar(1.0));
    FrameDeltaF deltaF(dark, false);
    const auto outputs = deltaFOf(deltaF, floatFrames({{2.0f}, {0x1p-24f}}));
    EXPECT_EQ(deltaF.baseline().at<float>(0, 0), 0x1p-25f);
    EXPECT_EQ(outputs[0], std::vector<int>{65535});
    EXPECT_EQ(outputs[1], std::vector<int>{0});
}

TEST(FrameDeltaFTest, ABlackFrameCountsAsZerosWhenFramesAreScaledToMeanOne)
{
    // Frame 0 is black (mean 0), frame 1 (2, 6, 2, 6, ...) has mean 4 and becomes (0.5, 1.5); F0 is
    // (0.25, 0.75), so frame 1 is 100 % above it in both pixels and frame 0 below (0).
    FrameDeltaF deltaF({}, true);
    const auto outputs =
        deltaFOf(deltaF, floatFrames({repeated<float>({0.0f, 0.0f}, 10), repeated<float>({2.0f, 6.0f}, 10)}));
    EXPECT_EQ(deltaF.baseline().at<float>(0, 0), 0.25f);
    EXPECT_EQ(deltaF.baseline().at<float>(0, 1), 0.75f);
    EXPECT_EQ(outputs[0], repeated<int>({0, 0}, 10));
    EXPECT_EQ(outputs[1], repeated<int>({100, 100}, 10));
}

} // namespace
} // namespace zarvi
