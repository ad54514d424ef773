#include "image/operations/discardframes/FrameAutodetection.h"
#include "image/operations/discardframes/FrameSelection.h"

#include <gtest/gtest.h>

namespace zarvi {
namespace {

using Indices = std::vector<std::size_t>;

TEST(DiscardFrames, SelectionTakesWholeIndicesInsideTheStackOnce)
{
    FrameSelection selection(5);
    double bad = -7.0;
    EXPECT_TRUE(selection.discard({1, 3, 3}, bad));
    EXPECT_EQ(selection.keptCount(), 3u);
    EXPECT_TRUE(selection.isDiscarded(1));
    EXPECT_FALSE(selection.isDiscarded(2));
    EXPECT_EQ(bad, -7.0);

    for (double index : {5.0, -1.0, 1.5}) {
        EXPECT_FALSE(selection.discard({0, index}, bad));
        EXPECT_EQ(bad, index);
        // Nothing of a refused list is taken, not even its good indices.
        EXPECT_FALSE(selection.isDiscarded(0));
    }
}

TEST(DiscardFrames, AutodetectionScalesWithTheSpreadOfADriftingStack)
{
    // Means 1000 to 1400 in steps of 50, a dark frame (mean 2, not black) and a bright one.
    // The 11 means sorted: 2, 1000, ..., 1400, 3000; median 1200; deviations sorted:
    // 0, 50, 50, 100, 100, 150, 150, 200, 200, 1198, 1800, so MAD = 150, the spread
    // 1.4826 x 150 = 222.39 and the limit 1111.95: the drift stays, both outliers go.
    std::vector<FrameSummary> frames;
    for (int k = 0; k < 9; ++k)
        frames.push_back({1000.0 + 50 * k, 2000.0});
    frames.push_back({2, 10});
    frames.push_back({3000, 4000});
    EXPECT_EQ(detectCorruptedFrames(frames), (Indices{9, 10}));

    // A stack of black frames only: every frame goes.
    EXPECT_EQ(detectCorruptedFrames({{0, 0}, {0, 0}}), (Indices{0, 1}));
}

} // namespace
} // namespace zarvi
