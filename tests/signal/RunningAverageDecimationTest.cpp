#include "RecordingFeedback.h"

#include "definitions/SignalOperationDefinitions.h"
#include "signal/operations/decimation/Decimation.h"
#include "signal/operations/smooth/RunningAverage.h"

#include <gtest/gtest.h>

#include <vector>

namespace zarvi {
namespace {

std::vector<double> timeAt(double fs, std::size_t n)
{
    std::vector<double> t(n);
    for (std::size_t i = 0; i < n; ++i)
        t[i] = static_cast<double>(i) / fs;
    return t;
}

TEST(RunningAverage, AveragesWithMirroredEndsAndTheEvenWindowScaling)
{
    const std::vector<double> x{1.0, 4.0, 2.0, 8.0, 5.0, 7.0};
    // 128 Hz keeps times and windows exact in binary.
    const double fs = 128.0;
    const double rate = fs;

    // W = 1: h = 0, each output is its own sample.
    const VectorResult one = RunningAverage::compute(x, rate, 1.0 / fs, nullptr);
    ASSERT_TRUE(one.outcome.ok());
    EXPECT_EQ(one.values, x);

    // W = 4: h = 2, five samples summed and divided by 4.
    // Index -1 reads x1, -2 reads x2; index 6 reads x4 and 7 reads x3.
    const VectorResult four = RunningAverage::compute(x, rate, 4.0 / fs, nullptr);
    ASSERT_TRUE(four.outcome.ok());
    const std::vector<double> expected{
        (2.0 + 4.0 + 1.0 + 4.0 + 2.0) / 4.0, // x2 x1 | x0 x1 x2
        (4.0 + 1.0 + 4.0 + 2.0 + 8.0) / 4.0, // x1 | x0 .. x3
        (1.0 + 4.0 + 2.0 + 8.0 + 5.0) / 4.0, //
        (4.0 + 2.0 + 8.0 + 5.0 + 7.0) / 4.0, //
        (2.0 + 8.0 + 5.0 + 7.0 + 5.0) / 4.0, // x2 .. x5 | x4
        (8.0 + 5.0 + 7.0 + 5.0 + 8.0) / 4.0, // x3 .. x5 | x4 x3
    };
    ASSERT_EQ(four.values.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_NEAR(four.values[i], expected[i], 1e-12) << i;

    // W = 3: h = 1, a plain three-point mean.
    const VectorResult three = RunningAverage::computeSamples(x, 3, nullptr);
    ASSERT_TRUE(three.outcome.ok());
    EXPECT_NEAR(three.values[0], (4.0 + 1.0 + 4.0) / 3.0, 1e-12);
    EXPECT_NEAR(three.values[3], (2.0 + 8.0 + 5.0) / 3.0, 1e-12);
    EXPECT_NEAR(three.values[5], (5.0 + 7.0 + 5.0) / 3.0, 1e-12);

    // A window shorter than one sample is refused, and so is one longer than the signal,
    // however long (no conversion of 1e300 samples to a count).
    EXPECT_TRUE(RunningAverage::compute(x, rate, 0.5 / fs, nullptr).outcome.isFailed());
    for (const double seconds : {(x.size() + 1) / fs, 1e300}) {
        const VectorResult tooLong = RunningAverage::compute(x, rate, seconds, nullptr);
        EXPECT_TRUE(tooLong.outcome.isFailed());
        EXPECT_TRUE(tooLong.outcome.error.contains(QStringLiteral("longer than the signal")));
    }
}

TEST(RunningAverage, StopsWhenCancelled)
{
    const std::vector<double> x(100000, 1.0);
    test::RecordingFeedback feedback(500);
    const VectorResult result = RunningAverage::computeSamples(x, 11, &feedback);
    EXPECT_TRUE(result.outcome.isCancelled());
    EXPECT_TRUE(result.values.empty());
    // It polls once per sample and returns at the first "yes".
    EXPECT_EQ(feedback.polls(), 501);

    // A window of 10^12 samples over ten samples: the first window alone would take
    // minutes, so it polls too and stops.
    test::RecordingFeedback early(3);
    const VectorResult huge =
        RunningAverage::computeSamples(std::vector<double>(10, 1.0), 1000000000000LL, &early);
    EXPECT_TRUE(huge.outcome.isCancelled());
    EXPECT_EQ(early.polls(), 4);
}

TEST(Decimation, KeepsEveryMthSampleOfValuesAndTime)
{
    std::vector<double> values(10);
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = 10.0 + static_cast<double>(i);
    const std::vector<double> time = timeAt(10.0, values.size());

    test::RecordingFeedback feedback;
    const Decimation::Result byThree = Decimation::apply(values, time, 3, &feedback);
    ASSERT_TRUE(byThree.outcome.ok());
    EXPECT_EQ(byThree.values, (std::vector<double>{10.0, 13.0, 16.0, 19.0}));
    EXPECT_EQ(byThree.time, (std::vector<double>{time[0], time[3], time[6], time[9]}));
    EXPECT_EQ(feedback.labels.value(0), QStringLiteral("Decimating signal..."));

    const Decimation::Result byOne = Decimation::apply(values, time, 1, nullptr);
    ASSERT_TRUE(byOne.outcome.ok());
    EXPECT_EQ(byOne.values, values);
    EXPECT_EQ(byOne.time, time);

    for (const int bad : {0, -2}) {
        const Decimation::Result refused = Decimation::apply(values, time, bad, nullptr);
        EXPECT_TRUE(refused.outcome.isFailed());
        EXPECT_EQ(refused.outcome.error, QStringLiteral("Bad value for decimation factor."));
    }
}

TEST(Decimation, RefusesAFactorThatLeavesFewerThanTwoSamples)
{
    const std::vector<double> values(10, 1.0);
    const std::vector<double> time = timeAt(10.0, values.size());
    // 10 samples by 9 keep indices 0 and 9; by 10 or more only index 0 would stay.
    const Decimation::Result byNine = Decimation::apply(values, time, 9, nullptr);
    ASSERT_TRUE(byNine.outcome.ok());
    EXPECT_EQ(byNine.time, (std::vector<double>{time[0], time[9]}));
    for (const int tooLarge : {10, 11, 1000}) {
        const Decimation::Result refused = Decimation::apply(values, time, tooLarge, nullptr);
        EXPECT_TRUE(refused.outcome.isFailed()) << tooLarge;
        EXPECT_EQ(refused.outcome.error, QStringLiteral("Bad value for decimation factor.")) << tooLarge;
        EXPECT_TRUE(refused.values.empty());
    }
    // A factor of 1 leaves even a one-sample signal as it is.
    const std::vector<double> one{4.0};
    EXPECT_TRUE(Decimation::apply(one, one, 1, nullptr).outcome.ok());
}

} // namespace
} // namespace zarvi
