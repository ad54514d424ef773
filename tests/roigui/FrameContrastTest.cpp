#include "roi/FrameContrast.h"

#include <algorithm>
#include <numeric>
#include <random>
#include <vector>

#include <gtest/gtest.h>

using zarvi::ContrastRange;
using zarvi::FrameContrast;

TEST(FrameContrast, PercentilesByNearestRank)
{
    // 0..999 once each, shuffled: rank ceil(0.005 * 1000) = 5 is the value 4,
    // rank ceil(0.995 * 1000) = 995 is the value 994.
    std::vector<std::uint16_t> frame(1000);
    std::iota(frame.begin(), frame.end(), 0);
    std::shuffle(frame.begin(), frame.end(), std::mt19937(3));
    const ContrastRange range = FrameContrast::percentileRange(frame, 0.5, 99.5);
    EXPECT_EQ(range.low, 4);
    EXPECT_EQ(range.high, 994);

    // A flat frame still maps: its value to black, one more to white.
    const std::vector<std::uint16_t> flat(50, 700);
    const ContrastRange flatRange = FrameContrast::percentileRange(flat, 0.5, 99.5);
    EXPECT_EQ(flatRange.low, 700);
    EXPECT_EQ(flatRange.high, 701);

    EXPECT_EQ(FrameContrast::fullRange(12).high, 4095);
    EXPECT_EQ(FrameContrast::fullRange(0).high, 65535);
}

TEST(FrameContrast, GreyLevelsAreLinearAndClipped)
{
    const std::vector<std::uint16_t> frame = {50, 100, 150, 200, 300, 125};
    const QImage image = FrameContrast::toGray8(frame, 3, 2, {100, 200});
    ASSERT_EQ(image.format(), QImage::Format_Grayscale8);
    ASSERT_EQ(image.size(), QSize(3, 2));
    // 255 * (v - 100) / 100, rounded: 150 -> 127.5 -> 128, 125 -> 63.75 -> 64.
    EXPECT_EQ(image.constScanLine(0)[0], 0);
    EXPECT_EQ(image.constScanLine(0)[1], 0);
    EXPECT_EQ(image.constScanLine(0)[2], 128);
    EXPECT_EQ(image.constScanLine(1)[0], 255);
    EXPECT_EQ(image.constScanLine(1)[1], 255);
    EXPECT_EQ(image.constScanLine(1)[2], 64);
    EXPECT_TRUE(FrameContrast::toGray8(frame, 4, 2, {100, 200}).isNull());
}
