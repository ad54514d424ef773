#include "image/operations/splitimagesinseries/SeriesSplit.h"

#include <gtest/gtest.h>

namespace zarvi {
namespace {

using Indices = std::vector<std::size_t>;

TEST(SplitImagesInSeries, DurationIsReadOnlyInItsFormAndAboveZero)
{
    EXPECT_DOUBLE_EQ(parseSplitDuration(QStringLiteral("00:00:01:500")).value(), 1.5);
    EXPECT_DOUBLE_EQ(parseSplitDuration(QStringLiteral("01:02:03:004")).value(), 3723.004);
    EXPECT_DOUBLE_EQ(parseSplitDuration(QStringLiteral("00:00:00:001")).value(), 0.001);
    for (const char* text : {"00:00:00:000", "", "1.5", "0:00:01:500", "00:00:01.500", "00:00:01:50",
                             "00:60:00:000", "00:00:60:000", "00:00:01:500:0", "aa:bb:cc:ddd"})
        EXPECT_FALSE(parseSplitDuration(QString::fromLatin1(text))) << text;
}

TEST(SplitImagesInSeries, TimeGapsOfAtLeastTheDurationStartASeries)
{
    // A step of exactly the duration is a gap.
    EXPECT_EQ(seriesStarts({0.0, 1.0, 1.5}, SplitMethod::DetectTimeGaps, 1.0), (Indices{0, 1}));
    // 0.3 - 0.1 is 0.19999999999999998 in doubles: still a step of 0.2.
    EXPECT_EQ(seriesStarts({0.1, 0.3, 0.4}, SplitMethod::DetectTimeGaps, 0.2), (Indices{0, 1}));
    EXPECT_EQ(seriesStarts({0.0, 0.1}, SplitMethod::DetectTimeGaps, 1.0), (Indices{0}));
}

TEST(SplitImagesInSeries, DurationIsCountedFromEachSeriesFirstFrame)
{
    // Times 0, 0.25, ..., 2.25: [0, 0.75], [1.0, 1.75], [2.0, 2.25]; the frame exactly
    // one duration after a series' first frame starts the next one.
    std::vector<double> times;
    for (int k = 0; k < 10; ++k)
        times.push_back(0.25 * k);
    EXPECT_EQ(seriesStarts(times, SplitMethod::SplitByDuration, 1.0), (Indices{0, 4, 8}));
    // Counted from 1.5, not on a grid from 0: 2.2 stays with 1.5 (a grid would cut at 2).
    EXPECT_EQ(seriesStarts({0.0, 0.9, 1.5, 2.2, 2.6}, SplitMethod::SplitByDuration, 1.0), (Indices{0, 2, 4}));
}

} // namespace
} // namespace zarvi
