#include "behavior/operations/tracking/TrackCleanup.h"

#include <gtest/gtest.h>

namespace zarvi {
namespace {

using Track = std::vector<cv::Point>;
const cv::Point Missing{-1, -1};

TEST(Outliers, ClosedExcursionBecomesMissing)
{
    // Size 10: jumps of 30 and more count. Frame 2 jumps 49 away, frame 4 comes back.
    Track track{{100, 100}, {101, 100}, {150, 100}, {151, 101}, {100, 100}, {102, 100}};
    removeOutliers(track, 10);
    EXPECT_EQ(track, (Track{{100, 100}, {101, 100}, Missing, Missing, {100, 100}, {102, 100}}));
}

TEST(Outliers, ExcursionThatNeverClosesIsLeftAlone)
{
    const Track away{{0, 0}, {50, 0}, {51, 0}, {52, 3}};
    Track track = away;
    removeOutliers(track, 10);
    EXPECT_EQ(track, away);
}

TEST(Outliers, JumpOfExactlyThreeSizesCounts)
{
    // (18, 24) has length 30 = 3 x 10; (18, 23) has length 29.2, truncated 29.
    Track track{{50, 50}, {68, 74}, {50, 50}};
    removeOutliers(track, 10);
    EXPECT_EQ(track, (Track{{50, 50}, Missing, {50, 50}}));
    const Track shorter{{50, 50}, {68, 73}, {50, 50}};
    track = shorter;
    removeOutliers(track, 10);
    EXPECT_EQ(track, shorter);
}

TEST(Outliers, LaterJumpTheSameWayReplacesTheOpeningOne)
{
    // Frame 2 jumps on in the direction of frame 1's jump and becomes the opening; frame 3 closes.
    Track track{{0, 0}, {40, 0}, {80, 0}, {40, 0}};
    removeOutliers(track, 10);
    EXPECT_EQ(track, (Track{{0, 0}, {40, 0}, Missing, {40, 0}}));
}

TEST(Outliers, MissingFramesAreGapsNotJumps)
{
    // A jump to or from (-1, -1) is no jump. Were the marker a position in the corner, the
    // jumps to it would open an excursion that the last jump closes, removing (10, 10).
    const Track gaps{{100, 100}, Missing, {100, 100}, Missing, {10, 10}, {100, 100}};
    Track track = gaps;
    removeOutliers(track, 1);
    EXPECT_EQ(track, gaps);
}

TEST(Interpolation, FillsGapsRoundingHalfAwayFromZero)
{
    // From (10, 20) to (13, 10) over 5 steps: x + 0.6, 1.2, 1.8, 2.4 and y − 2, 4, 6, 8.
    Track track{{10, 20}, Missing, Missing, Missing, Missing, {13, 10}};
    interpolateGaps(track);
    EXPECT_EQ(track, (Track{{10, 20}, {11, 18}, {11, 16}, {12, 14}, {12, 12}, {13, 10}}));
    // Halves: +0.5 rounds to +1, −0.5 to −1.
    track = {{10, 10}, Missing, {11, 9}};
    interpolateGaps(track);
    EXPECT_EQ(track, (Track{{10, 10}, {11, 9}, {11, 9}}));
}

TEST(Interpolation, GapsAtTheEndsStayMissing)
{
    Track track{Missing, Missing, {5, 5}, Missing, {7, 9}, Missing};
    interpolateGaps(track);
    EXPECT_EQ(track, (Track{Missing, Missing, {5, 5}, {6, 7}, {7, 9}, Missing}));
    Track none{Missing, Missing};
    interpolateGaps(none);
    EXPECT_EQ(none, (Track{Missing, Missing}));
}

TEST(Smoothing, RunningAverageMirroredAtTheEnds)
{
    // Window 3. x: frame 0 reads (10 + 0 + 10) / 3 = 6.67; frame 4 reads (60 + 40 + 60) / 3 = 53.33.
    Track track{{0, 5}, {10, 5}, {20, 5}, {60, 5}, {40, 5}};
    ASSERT_TRUE(smoothPositions(track, 3));
    EXPECT_EQ(track, (Track{{7, 5}, {10, 5}, {30, 5}, {40, 5}, {53, 5}}));
}

TEST(Smoothing, EvenWindowReachesFurtherBackAndHalvesRoundUp)
{
    // Window 2: frames k − 1 and k. y: (2 + 1) / 2, (1 + 2) / 2, (2 + 4) / 2, (4 + 7) / 2.
    Track track{{0, 1}, {0, 2}, {0, 4}, {0, 7}};
    ASSERT_TRUE(smoothPositions(track, 2));
    EXPECT_EQ(track, (Track{{0, 2}, {0, 2}, {0, 3}, {0, 6}}));
}

TEST(Smoothing, MissingFramesTakeNoPartAndStayMissing)
{
    // Window 3: frame 0 sees only itself; frame 2 (30 + 60) / 2; frame 3 (30 + 60 + 30) / 3.
    Track track{{0, 0}, Missing, {30, 30}, {60, 60}};
    ASSERT_TRUE(smoothPositions(track, 3));
    EXPECT_EQ(track, (Track{{0, 0}, Missing, {45, 45}, {40, 40}}));
}

TEST(Smoothing, WindowLongerThanTheSeriesMirrorsAgain)
{
    // Window 5 over two frames: frame 0 reads 0, 10, 0, 10, 0; frame 1 reads 10, 0, 10, 0, 10.
    Track track{{0, 0}, {10, 20}};
    ASSERT_TRUE(smoothPositions(track, 5));
    EXPECT_EQ(track, (Track{{4, 8}, {6, 12}}));
}

TEST(Smoothing, CancelLeavesThePositions)
{
    class Cancelled : public Feedback
    {
    public:
        bool isCanceled() const override { return true; }
    } cancelled;
    const Track original{{0, 0}, {10, 10}, {20, 20}};
    Track track = original;
    EXPECT_FALSE(smoothPositions(track, 3, &cancelled));
    EXPECT_EQ(track, original);
}

} // namespace
} // namespace zarvi
