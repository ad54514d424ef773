#include "signal/MinMaxDecimator.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include <gtest/gtest.h>

using zarvi::MinMaxConfig;
using zarvi::MinMaxDecimator;
using zarvi::MinMaxResult;

namespace {

bool containsPoint(const MinMaxResult& r, double t, double v)
{
    for (std::size_t i = 0; i < r.time.size(); ++i)
        if (r.time[i] == t && r.values[i] == v)
            return true;
    return false;
}

} // namespace

TEST(MinMaxDecimator, WorkedExampleKeepsExtremesInTheirOrder)
{
    // Ten samples at t = 0..9 in two columns [0, 5) and [5, 10).
    const std::vector<double> t = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
    const std::vector<double> v = {0, 5, 1, -3, 2, 4, -1, 0, 7, 3};
    const MinMaxResult r = MinMaxDecimator::reduce(t, v, {0.0, 10.0, 2});
    // Column 0: maximum 5 at t=1 before minimum -3 at t=3; column 1: -1 at t=6 before 7 at t=8.
    EXPECT_TRUE(r.reduced);
    EXPECT_EQ(r.time, std::vector<double>({1, 3, 6, 8}));
    EXPECT_EQ(r.values, std::vector<double>({5, -3, -1, 7}));
}

TEST(MinMaxDecimator, EverySpikeSurvivesTheReduction)
{
    // 100 s at 1 kHz: a slow wave with small noise and 36 spikes of +-10, far
    // enough apart (2.7 s) that no two share one of the 500 columns (0.2 s).
    const std::size_t n = 100000;
    std::vector<double> t(n);
    std::vector<double> v(n);
    std::mt19937 random(7);
    std::uniform_real_distribution<double> noise(-0.05, 0.05);
    for (std::size_t i = 0; i < n; ++i) {
        t[i] = static_cast<double>(i) * 0.001;
        v[i] = std::sin(2.0 * 3.141592653589793 * 0.5 * t[i]) + noise(random);
    }
    std::vector<std::size_t> spikes;
    for (std::size_t k = 0; k < 36; ++k) {
        const std::size_t i = 1000 + k * 2700 + static_cast<std::size_t>(random() % 500);
        v[i] = k % 2 == 0 ? 10.0 + static_cast<double>(k) : -10.0 - static_cast<double>(k);
        spikes.push_back(i);
    }

    const MinMaxResult r = MinMaxDecimator::reduce(t, v, {0.0, 100.0, 500});
    ASSERT_TRUE(r.reduced);
    EXPECT_LE(r.time.size(), 2u * 500u + 2u);
    EXPECT_GE(r.time.size(), 500u);
    EXPECT_TRUE(std::is_sorted(r.time.begin(), r.time.end()));
    for (std::size_t i : spikes)
        EXPECT_TRUE(containsPoint(r, t[i], v[i])) << "spike at sample " << i;
    // Nothing is invented: every point drawn is a sample.
    for (std::size_t k = 0; k < r.time.size(); ++k) {
        const auto i = static_cast<std::size_t>(std::llround(r.time[k] * 1000.0));
        ASSERT_LT(i, n);
        EXPECT_EQ(r.values[k], v[i]);
    }
}

TEST(MinMaxDecimator, ZoomedRangeKeepsItsExtremesAndItsNeighbours)
{
    const std::size_t n = 200000;
    std::vector<double> t(n);
    std::vector<double> v(n);
    std::mt19937 random(11);
    std::normal_distribution<double> gauss(0.0, 1.0);
    for (std::size_t i = 0; i < n; ++i) {
        t[i] = static_cast<double>(i) * 0.0005;
        v[i] = gauss(random);
    }
    const MinMaxConfig view{20.00025, 35.30025, 300};
    const MinMaxResult r = MinMaxDecimator::reduce(t, v, view);

    double highest = -std::numeric_limits<double>::infinity();
    double lowest = std::numeric_limits<double>::infinity();
    for (std::size_t i = 0; i < n; ++i) {
        if (t[i] >= view.visibleStart && t[i] <= view.visibleEnd) {
            highest = std::max(highest, v[i]);
            lowest = std::min(lowest, v[i]);
        }
    }
    EXPECT_NE(std::find(r.values.begin(), r.values.end(), highest), r.values.end());
    EXPECT_NE(std::find(r.values.begin(), r.values.end(), lowest), r.values.end());
    // The lines run to the edges: the last sample before and the first after the view.
    EXPECT_DOUBLE_EQ(r.time.front(), 20.0);
    EXPECT_DOUBLE_EQ(r.time.back(), 35.3005);
    EXPECT_LE(r.time.size(), 2u * 300u + 2u);
}

TEST(MinMaxDecimator, FewSamplesAreKeptAsTheyAreAndBadInputGivesNothing)
{
    std::vector<double> t(1000);
    std::vector<double> v(1000);
    for (std::size_t i = 0; i < t.size(); ++i) {
        t[i] = static_cast<double>(i);
        v[i] = static_cast<double>(i % 7);
    }
    v[102] = std::numeric_limits<double>::quiet_NaN();
    // Samples 100..120 visible (21), one neighbour each side, the NaN left out.
    const MinMaxResult r = MinMaxDecimator::reduce(t, v, {100.0, 120.0, 800});
    EXPECT_FALSE(r.reduced);
    ASSERT_EQ(r.time.size(), 22u);
    EXPECT_EQ(r.time.front(), 99.0);
    EXPECT_EQ(r.time.back(), 121.0);
    EXPECT_TRUE(std::none_of(r.values.begin(), r.values.end(), [](double x) { return std::isnan(x); }));

    EXPECT_TRUE(MinMaxDecimator::reduce(t, v, {100.0, 120.0, 0}).time.empty());
    EXPECT_TRUE(MinMaxDecimator::reduce(t, v, {120.0, 100.0, 10}).time.empty());
    EXPECT_TRUE(MinMaxDecimator::reduce({}, {}, {0.0, 1.0, 10}).time.empty());
    // A view past the end still shows the last sample, so the line reaches the edge.
    const MinMaxResult after = MinMaxDecimator::reduce(t, v, {2000.0, 3000.0, 10});
    ASSERT_EQ(after.time.size(), 1u);
    EXPECT_EQ(after.time.front(), 999.0);
}
