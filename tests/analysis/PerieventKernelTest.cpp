// Building blocks of the perievent analysis, checked against hand-computed values.
#include "analysis/operations/perievents/ChunkStatistic.h"
#include "analysis/operations/perievents/PerieventCutter.h"
#include "events/EventArray.h"
#include "events/EventSelector.h"
#include "signal/operations/interpolation/LinearResampler.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace zarvi {
namespace {

TEST(PerieventCutter, SampleRateCountsSamplesNotIntervals)
{
    EXPECT_DOUBLE_EQ(PerieventCutter::sampleRate(std::vector<double>{0, 1, 2, 3, 4}), 5.0 / 4.0);
    EXPECT_DOUBLE_EQ(PerieventCutter::sampleRate(std::vector<double>{2.0, 2.5}), 4.0);
    EXPECT_EQ(PerieventCutter::sampleRate(std::vector<double>{}), 0.0);
    EXPECT_EQ(PerieventCutter::sampleRate(std::vector<double>{7.0}), 0.0);
}

TEST(ChunkStatistic, EveryKindOnHandValues)
{
    using K = ChunkStatistic::Kind;
    const auto compute = [](K kind, const std::vector<double>& values,
                            const std::vector<double>& times = {}) {
        return ChunkStatistic::compute(kind, values, times);
    };
    const std::vector<double> values{0, 2, 2};
    const std::vector<double> times{0, 1, 3};
    // Trapezoids 1 * (0 + 2) / 2 + 2 * (2 + 2) / 2 = 5 over 3 seconds.
    EXPECT_DOUBLE_EQ(compute(K::AUC, values, times), 5.0 / 3.0);
    EXPECT_DOUBLE_EQ(compute(K::Mean, values, times), 4.0 / 3.0);
    EXPECT_DOUBLE_EQ(compute(K::Median, std::vector<double>{4, 1, 3, 2}), 2.5);
    EXPECT_DOUBLE_EQ(compute(K::Median, std::vector<double>{4, 1, 3}), 3.0);
    EXPECT_DOUBLE_EQ(compute(K::Maximum, std::vector<double>{-1, 5, 3}), 5.0);
    EXPECT_DOUBLE_EQ(compute(K::Minimum, std::vector<double>{-1, 5, 3}), -1.0);

    // Spike times 0, 0.5, 1.5, 2: intervals 0.5, 1, 0.5 average 2/3 s.
    const std::vector<double> spikes{0, 0.5, 1.5, 2.0};
    EXPECT_DOUBLE_EQ(compute(K::Frequency, spikes, spikes), 1.5);
    EXPECT_DOUBLE_EQ(compute(K::Count, spikes, spikes), 4.0);
    EXPECT_EQ(compute(K::Frequency, std::vector<double>{1.0}, std::vector<double>{1.0}), 0.0);

    // The area per second runs to the greatest time, even where times are not in order.
    EXPECT_DOUBLE_EQ(compute(K::AUC, std::vector<double>{1, 1, 1}, std::vector<double>{0, 4, 2}), 0.5);
    // AUC of a constant is the constant, whatever the times.
    EXPECT_DOUBLE_EQ(compute(K::AUC, std::vector<double>{2.5, 2.5, 2.5}, std::vector<double>{-3, -1, 4}),
                     2.5);

    for (K kind : {K::AUC, K::Mean, K::Median, K::Maximum, K::Minimum, K::Frequency, K::Count})
        EXPECT_TRUE(std::isnan(compute(kind, {}, {})));
    EXPECT_TRUE(std::isnan(compute(K::Maximum, std::vector<double>{1, NAN, 3})));

    EXPECT_EQ(ChunkStatistic::fromName("Frequency"), K::Frequency);
    for (K kind : {K::AUC, K::Mean, K::Median, K::Maximum, K::Minimum, K::Frequency, K::Count})
        EXPECT_EQ(ChunkStatistic::fromName(ChunkStatistic::nameOf(kind)), kind);
    EXPECT_EQ(ChunkStatistic::nameOf(K::AUC), "AUC");
    EXPECT_FALSE(ChunkStatistic::fromName("auc").has_value());
}

TEST(EventArray, DefaultNamesFollowTheOriginalNumbers)
{
    const EventArray events({2, 4, 6, 8}, {3, 5, 7, 9});
    EXPECT_EQ(events.names(), QStringList({"Event1", "Event2", "Event3", "Event4"}));
    const std::vector<std::size_t> rows{1, 3};
    const EventArray picked = events.subset(rows);
    EXPECT_EQ(picked.names(), QStringList({"Event2", "Event4"}));
    EXPECT_EQ(picked.onsets(), std::vector<double>({4, 8}));
    EXPECT_EQ(picked.offsets(), std::vector<double>({5, 9}));
    EXPECT_FALSE(EventArray({1, 2}, {1}).isValid());
}

TEST(EventSelector, ByNumberCountsFromOneAndByPeriodIncludesBounds)
{
    const EventArray events({2, 4, 6, 8, 10});
    EventSelection selection;
    selection.mode = EventSelection::Mode::ByNumber;
    selection.first = 2;
    selection.last = 3;
    EXPECT_EQ(EventSelector::select(events, selection).indices, std::vector<std::size_t>({1, 2}));
    selection.first = 1;
    selection.last = 5;
    EXPECT_EQ(EventSelector::select(events, selection).indices.size(), 5u);
    selection.first = 0;
    selection.last = 3;
    EXPECT_EQ(EventSelector::select(events, selection).error, "Cannot pick selected events 0-3.");
    selection.first = 4;
    selection.last = 6;
    EXPECT_EQ(EventSelector::select(events, selection).error, "Cannot pick selected events 4-6.");
    selection.first = 3;
    selection.last = 2;
    EXPECT_FALSE(EventSelector::select(events, selection).error.isEmpty());

    selection.mode = EventSelection::Mode::ByTimePeriod;
    selection.periods = {{3.0, 9.5, 9.0}, {6.0, 20.0, 10.0}, {"Light", "Dark", "Light"}};
    selection.periodName = "Light";
    // Onsets 4 and 6 lie in [3, 6] (6 on its end), 10 on the end of [9, 10].
    EXPECT_EQ(EventSelector::select(events, selection).indices, std::vector<std::size_t>({1, 2, 4}));
    selection.periodName = "Night";
    EXPECT_EQ(EventSelector::select(events, selection).error, "Cannot pick selected events Night.");
    selection.periods = {{11.0}, {12.0}, {"Light"}};
    selection.periodName = "Light";
    EXPECT_EQ(EventSelector::select(events, selection).error, "Cannot pick selected events Light.");
}

TEST(PerieventCutter, FrameAndBaselineColumns)
{
    // fs = 20 / 19 with a window [-2, 3] of 6 columns.
    const double fs = 20.0 / 19.0;
    auto columns = PerieventCutter::frameColumns({-1, 1}, -2, fs, 6);
    EXPECT_EQ(columns.first, 1u); // round(1.05)
    EXPECT_EQ(columns.last, 3u);  // + round(2.11)
    columns = PerieventCutter::frameColumns({1, 10}, -2, fs, 6);
    EXPECT_EQ(columns.first, 3u); // round(3.16), length round(9.47) = 9 clipped at 6
    EXPECT_EQ(columns.last, 6u);
    columns = PerieventCutter::frameColumns({-5, -1}, -2, fs, 6);
    EXPECT_EQ(columns.first, 0u); // round(-3.16) raised to 0, keeps length round(4.21) = 4
    EXPECT_EQ(columns.last, 4u);
    columns = PerieventCutter::frameColumns({5, 6}, -2, fs, 6);
    EXPECT_EQ(columns.first, columns.last);
    const auto times = PerieventCutter::frameTimes({-5, -1}, {0, 4}, fs);
    ASSERT_EQ(times.size(), 4u);
    EXPECT_DOUBLE_EQ(times[0], -5.0);
    EXPECT_DOUBLE_EQ(times[3], -5.0 + 3 * 0.95);

    // Baseline [-2, -1] from t0 = -2: (int)(0 + 0.5) = 0 to (int)(1.05 + 0.5) = 1, both kept.
    auto baseline = PerieventCutter::baselineColumns(-2, -1, -2, fs, 1, 6);
    ASSERT_TRUE(baseline.has_value());
    EXPECT_EQ(baseline->first, 0u);
    EXPECT_EQ(baseline->last, 2u);
    // -2.7 s gives (int)(-0.74 + 0.5) = 0: truncated toward zero, not rounded down.
    baseline = PerieventCutter::baselineColumns(-2.7, -2, -2, fs, 1, 6);
    ASSERT_TRUE(baseline.has_value());
    EXPECT_EQ(baseline->first, 0u);
    EXPECT_FALSE(PerieventCutter::baselineColumns(-1, -2, -2, fs, 1, 6).has_value()); // reversed
    EXPECT_FALSE(PerieventCutter::baselineColumns(2, 3.5, -2, fs, 1, 6).has_value()); // column 6 of 6
    EXPECT_FALSE(PerieventCutter::baselineColumns(-2, -1, -2, fs, 0, 6).has_value()); // no row
}

TEST(LinearResampler, InterpolatesOnAUniformAxisFromTheFirstTime)
{
    const std::vector<double> time{0, 1, 3};
    const std::vector<double> values{0, 10, 0};
    auto result = LinearResampler::resample(time, values, 2.0);
    EXPECT_EQ(result.time, std::vector<double>({0, 0.5, 1, 1.5, 2, 2.5, 3}));
    const std::vector<double> expected{0, 5, 10, 7.5, 5, 2.5, 0};
    ASSERT_EQ(result.values.size(), expected.size());
    for (std::size_t k = 0; k < expected.size(); ++k)
        EXPECT_DOUBLE_EQ(result.values[k], expected[k]) << k;

    // 0.8 Hz: 0, 1.25, 2.5; 1.25 is an eighth into [1, 3], 2.5 three quarters.
    result = LinearResampler::resample(time, values, 0.8);
    ASSERT_EQ(result.values.size(), 3u);
    EXPECT_DOUBLE_EQ(result.values[1], 8.75);
    EXPECT_DOUBLE_EQ(result.values[2], 2.5);

    // 0.3 * 10 falls just short of 3 in binary; the sample at 0.3 s is kept.
    const std::vector<double> tenths{0, 0.1, 0.2, 0.3};
    EXPECT_EQ(LinearResampler::resample(tenths, tenths, 10.0).time.size(), 4u);

    EXPECT_TRUE(LinearResampler::resample(time, values, 0.0).time.empty());
    EXPECT_TRUE(LinearResampler::resample(time, std::vector<double>{1, 2}, 1.0).time.empty());
}

} // namespace
} // namespace zarvi
