// The measures of a path, checked against values worked out by hand from the path's
// frames: time in a zone, entries and visits, distance across gaps, time bins, the
// boundary rule of a region and the calibration scale.
#include "behavior/operations/measures/PathMeasures.h"
#include "behavior/OccupancyGrid.h"
#include "behavior/TimeMatching.h"
#include "roi/RoiShape.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace zarvi;

namespace {

const cv::Point gap(-1, -1);

RoiShape rectangle(cv::Point a, cv::Point b)
{
    return RoiShape{RoiKind::Rectangle, {a, b}, 1, QStringLiteral("Zone1")};
}

/// Twelve frames two per second from t = 5 s, around the zone (10, 10)-(20, 20): in on
/// frames 1, 2, 5, 7 and 10 (1 and 10 on its outline), gaps on frames 4 and 6.
struct KnownPath
{
    std::vector<cv::Point> positions{{0, 0}, {10, 15}, {15, 15}, {21, 15}, gap,      {15, 15},
                                     gap,    {16, 16}, {30, 30}, {30, 34}, {20, 20}, {25, 25}};
    std::vector<double> time;
    KnownPath()
    {
        for (int k = 0; k < 12; ++k)
            time.push_back(5.0 + 0.5 * k);
    }
};

} // namespace

TEST(ZoneOccupancy, OutlinePixelsAreInsideAndGapsNever)
{
    const RoiShape zone = rectangle({10, 10}, {20, 20});
    const std::vector<cv::Point> points{{10, 15}, {20, 20}, {15, 15}, {21, 15}, {9, 10}, {15, 21}, gap};
    EXPECT_EQ(zoneMembership(zone, points), (std::vector<std::uint8_t>{1, 1, 1, 0, 0, 0, 0}));

    // A circle of radius 10 about (50, 50): its rim points are in, one pixel beyond is out.
    const RoiShape circle{RoiKind::Circle, {{50, 50}, {50, 60}}, 1, QString()};
    const std::vector<cv::Point> around{{50, 50}, {60, 50}, {50, 40}, {61, 50}, {50, 61}, {58, 58}};
    EXPECT_EQ(zoneMembership(circle, around), (std::vector<std::uint8_t>{1, 1, 1, 0, 0, 0}));

    // A triangle: its vertices and a point inside are in, a point past the slanted side out.
    const RoiShape triangle{RoiKind::Polygon, {{0, 0}, {20, 0}, {0, 20}}, 1, QString()};
    const std::vector<cv::Point> near{{0, 0}, {20, 0}, {5, 5}, {15, 15}};
    EXPECT_EQ(zoneMembership(triangle, near), (std::vector<std::uint8_t>{1, 1, 1, 0}));
}

TEST(ZoneOccupancy, FramesLastUntilTheNextAndTheLastOneTheMeanInterval)
{
    const std::vector<double> time{0.0, 0.1, 0.3, 0.6};
    const std::vector<double> durations = frameDurations(time);
    ASSERT_EQ(durations.size(), 4u);
    EXPECT_DOUBLE_EQ(durations[0], 0.1);
    EXPECT_DOUBLE_EQ(durations[1], 0.2);
    EXPECT_DOUBLE_EQ(durations[2], 0.3);
    EXPECT_DOUBLE_EQ(durations[3], 0.2); // 0.6 s over three intervals
    EXPECT_EQ(frameDurations(std::vector<double>{4.0}), std::vector<double>{0.0});
}

TEST(PathMeasures, TimeInZoneEntriesAndVisitsOfAKnownPath)
{
    const KnownPath path;
    const RoiShape zone = rectangle({10, 10}, {20, 20});
    const std::vector<MeasuredRegion> regions{
        {QStringLiteral("Zone1"), zoneMembership(zone, path.positions)}};
    const PathMeasuresResult result = measurePath(path.positions, path.time, regions, {});

    ASSERT_EQ(result.rows.size(), 1u);
    const MeasuresRow& whole = result.rows[0];
    EXPECT_DOUBLE_EQ(whole.start, 5.0);
    EXPECT_DOUBLE_EQ(whole.end, 11.0);
    // Ten frames of 0.5 s have a position; five of them lie in the zone.
    EXPECT_DOUBLE_EQ(whole.trackedTime, 5.0);
    ASSERT_EQ(whole.regions.size(), 1u);
    EXPECT_DOUBLE_EQ(whole.regions[0].seconds, 2.5);
    EXPECT_DOUBLE_EQ(whole.regions[0].fraction, 0.5);
    EXPECT_EQ(whole.regions[0].entries, 3);

    // Frames 1-2 (left on frame 3); 5 and 7 with the gap frame 6 between them, one visit;
    // frame 10 alone, ending with its frame.
    ASSERT_EQ(result.visits.size(), 1u);
    const std::vector<ZoneVisit>& visits = result.visits[0];
    ASSERT_EQ(visits.size(), 3u);
    EXPECT_DOUBLE_EQ(visits[0].onset, 5.5);
    EXPECT_DOUBLE_EQ(visits[0].offset, 6.5);
    EXPECT_DOUBLE_EQ(visits[1].onset, 7.5);
    EXPECT_DOUBLE_EQ(visits[1].offset, 9.0);
    EXPECT_DOUBLE_EQ(visits[2].onset, 10.0);
    EXPECT_DOUBLE_EQ(visits[2].offset, 10.5);
}

TEST(PathMeasures, DistanceIsNeverCountedAcrossAGap)
{
    const KnownPath path;
    const PathMeasuresResult result = measurePath(path.positions, path.time, {}, {});
    // The steps between two tracked frames: 0-1, 1-2, 2-3, 7-8, 8-9, 9-10, 10-11.
    const double expected =
        std::sqrt(325.0) + 5.0 + 6.0 + 14.0 * std::sqrt(2.0) + 4.0 + std::sqrt(296.0) + 5.0 * std::sqrt(2.0);
    EXPECT_NEAR(result.rows[0].distance, expected, 1e-12);
    EXPECT_NEAR(result.rows[0].meanSpeed, expected / 3.5, 1e-12);

    // A path that is all gaps but one frame has no step and so no speed.
    const std::vector<cv::Point> lone{gap, {3, 4}, gap};
    const std::vector<double> t{0.0, 1.0, 2.0};
    const MeasuresRow row = measurePath(lone, t, {}, {}).rows[0];
    EXPECT_EQ(row.distance, 0.0);
    EXPECT_TRUE(std::isnan(row.meanSpeed));
    EXPECT_DOUBLE_EQ(row.trackedTime, 1.0);
}

TEST(PathMeasures, TimeBinsSplitEveryMeasure)
{
    const KnownPath path;
    const RoiShape zone = rectangle({10, 10}, {20, 20});
    const std::vector<MeasuredRegion> regions{
        {QStringLiteral("Zone1"), zoneMembership(zone, path.positions)}};
    PathMeasuresConfig config;
    config.binSeconds = 2.0;
    const PathMeasuresResult result = measurePath(path.positions, path.time, regions, config);

    // Bins [5, 7), [7, 9), [9, 11) after the whole recording.
    ASSERT_EQ(result.rows.size(), 4u);
    const double starts[] = {5.0, 7.0, 9.0};
    const double tracked[] = {2.0, 1.0, 2.0};
    const double inZone[] = {1.0, 1.0, 0.5};
    const int entries[] = {1, 1, 1};
    const double distance[] = {std::sqrt(325.0) + 11.0, 0.0, 19.0 * std::sqrt(2.0) + 4.0 + std::sqrt(296.0)};
    for (int b = 0; b < 3; ++b) {
        const MeasuresRow& row = result.rows[b + 1];
        SCOPED_TRACE(b);
        EXPECT_DOUBLE_EQ(row.start, starts[b]);
        EXPECT_DOUBLE_EQ(row.end, starts[b] + 2.0);
        EXPECT_DOUBLE_EQ(row.trackedTime, tracked[b]);
        EXPECT_DOUBLE_EQ(row.regions[0].seconds, inZone[b]);
        EXPECT_DOUBLE_EQ(row.regions[0].fraction, inZone[b] / tracked[b]);
        EXPECT_EQ(row.regions[0].entries, entries[b]);
        EXPECT_NEAR(row.distance, distance[b], 1e-12);
    }
    // The middle bin has no step between two tracked frames.
    EXPECT_TRUE(std::isnan(result.rows[2].meanSpeed));
    EXPECT_NEAR(result.rows[1].meanSpeed, distance[0] / 1.5, 1e-12);

    // A bin longer than the recording gives one bin ending with it.
    config.binSeconds = 100.0;
    const PathMeasuresResult one = measurePath(path.positions, path.time, regions, config);
    ASSERT_EQ(one.rows.size(), 2u);
    EXPECT_DOUBLE_EQ(one.rows[1].end, 11.0);
    EXPECT_DOUBLE_EQ(one.rows[1].regions[0].seconds, 2.5);
}

TEST(PathMeasures, CalibrationScaleTurnsPixelsIntoCentimetres)
{
    // 100 pixels drawn along 20 cm: 5 px/cm, whichever axis the line follows.
    EXPECT_DOUBLE_EQ(pixelsPerCentimetre({10, 20}, {110, 20}, 20.0), 5.0);
    EXPECT_DOUBLE_EQ(pixelsPerCentimetre({30, 10}, {30, 60}, 10.0), 5.0);
    EXPECT_DOUBLE_EQ(pixelsPerCentimetre({0, 0}, {30, 40}, 25.0), 2.0);
    EXPECT_EQ(pixelsPerCentimetre({5, 5}, {5, 5}, 10.0), 0.0);
    EXPECT_EQ(pixelsPerCentimetre({0, 0}, {10, 0}, 0.0), 0.0);

    // Two steps of 50 px in one second each: 20 cm at 10 cm/s.
    const std::vector<cv::Point> positions{{0, 0}, {30, 40}, {30, 90}};
    const std::vector<double> time{0.0, 1.0, 2.0};
    PathMeasuresConfig config;
    config.pixelsPerUnit = 5.0;
    const MeasuresRow row = measurePath(positions, time, {}, config).rows[0];
    EXPECT_DOUBLE_EQ(row.distance, 20.0);
    EXPECT_DOUBLE_EQ(row.meanSpeed, 10.0);
}

TEST(OccupancyGrid, EachFrameAddsItsDurationToItsCell)
{
    // Area (10, 20) 25 x 10 in cells of 10: three columns (the last reaching past it) and one row.
    const std::vector<cv::Point> positions{{10, 20}, {19, 29}, {20, 20}, gap, {34, 25}, {35, 25}, {9, 20}};
    const std::vector<double> durations{0.5, 0.25, 1.0, 7.0, 2.0, 3.0, 4.0};
    const OccupancyGrid grid = OccupancyGrid::compute(positions, durations, cv::Rect(10, 20, 25, 10), 10);
    ASSERT_EQ(grid.columns, 3);
    ASSERT_EQ(grid.rows, 1);
    EXPECT_DOUBLE_EQ(grid.at(0, 0), 0.75);
    EXPECT_DOUBLE_EQ(grid.at(1, 0), 1.0);
    EXPECT_DOUBLE_EQ(grid.at(2, 0), 2.0); // (35, 25) and (9, 20) lie outside the area
}

TEST(TimeMatching, NearestEntryAndItsTolerance)
{
    const std::vector<double> times{0.0, 0.1, 0.2, 0.4};
    EXPECT_EQ(nearestIndex(times, -3.0), 0u);
    EXPECT_EQ(nearestIndex(times, 0.14), 1u);
    EXPECT_EQ(nearestIndex(times, 0.3), 2u); // halfway: the earlier
    EXPECT_EQ(nearestIndex(times, 0.31), 3u);
    EXPECT_EQ(nearestIndex(times, 9.0), 3u);
    EXPECT_FALSE(nearestIndex(std::vector<double>{}, 1.0).has_value());
    EXPECT_EQ(nearestWithin(times, 0.42, 0.05), 3u);
    EXPECT_FALSE(nearestWithin(times, 0.5, 0.05).has_value());
    EXPECT_FALSE(nearestWithin(times, -0.1, 0.05).has_value());
}
