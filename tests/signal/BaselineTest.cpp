#include "RecordingFeedback.h"

#include "definitions/SignalOperationDefinitions.h"
#include "signal/operations/slope/ArplsBaseline.h"
#include "signal/operations/slope/PolynomialBaseline.h"
#include "signal/operations/slope/SlopeBaseline.h"
#include "signal/operations/standardize/ZScore.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

namespace zarvi {
namespace {

using Defs = SignalOperationDefinitions;

TEST(ArplsBaseline, RecoversASmoothBaselineUnderSparsePeaks)
{
    const std::size_t n = 4000;
    std::vector<double> baseline(n);
    std::vector<double> signal(n);
    for (std::size_t i = 0; i < n; ++i) {
        const double t = static_cast<double>(i) / static_cast<double>(n);
        baseline[i] = 1.0 + 0.5 * t + 0.3 * std::sin(2.0 * std::numbers::pi * t);
        double peaks = 0.0;
        for (const double centre : {0.15, 0.4, 0.62, 0.85}) {
            const double d = (t - centre) / 0.004;
            peaks += 2.0 * std::exp(-0.5 * d * d);
        }
        // A small deterministic ripple stands in for noise.
        signal[i] = baseline[i] + peaks + 0.01 * std::sin(1.3 * static_cast<double>(i));
    }
    test::RecordingFeedback feedback;
    const VectorResult result = ArplsBaseline::compute(signal, 1e7, 0.001, &feedback);
    ASSERT_TRUE(result.outcome.ok());
    ASSERT_EQ(result.values.size(), n);
    double worst = 0.0;
    for (std::size_t i = 0; i < n; ++i)
        worst = std::max(worst, std::fabs(result.values[i] - baseline[i]));
    // Peaks of height 2 are ignored; the baseline is found to within a few ripples.
    EXPECT_LT(worst, 0.05);

    test::RecordingFeedback cancel(1);
    EXPECT_TRUE(ArplsBaseline::compute(signal, 1e7, 0.001, &cancel).outcome.isCancelled());
    EXPECT_TRUE(ArplsBaseline::compute(signal, -1.0, 0.001, nullptr).outcome.isFailed());
}

TEST(PolynomialBaseline, ReproducesAPolynomialFarFromTimeZero)
{
    std::vector<double> time(5000);
    std::vector<double> values(5000);
    for (std::size_t i = 0; i < time.size(); ++i) {
        // An hour into a recording: raw powers of t would be badly conditioned.
        time[i] = 3600.0 + 0.01 * static_cast<double>(i);
        const double u = time[i] - 3600.0;
        values[i] = 3.0 - 2.0 * u + 0.5 * u * u - 0.01 * u * u * u;
    }
    const VectorResult cubic = PolynomialBaseline::compute(values, time, 3, nullptr);
    ASSERT_TRUE(cubic.outcome.ok());
    for (std::size_t i = 0; i < values.size(); ++i)
        ASSERT_NEAR(cubic.values[i], values[i], 1e-7) << i;

    const VectorResult constant = PolynomialBaseline::compute(values, time, 0, nullptr);
    ASSERT_TRUE(constant.outcome.ok());
    double mean = 0.0;
    for (const double v : values)
        mean += v / static_cast<double>(values.size());
    EXPECT_NEAR(constant.values[17], mean, 1e-9);

    EXPECT_TRUE(PolynomialBaseline::compute(values, time, -1, nullptr).outcome.isFailed());
    EXPECT_TRUE(
        PolynomialBaseline::compute(std::vector<double>{1.0, 2.0}, std::vector<double>{0.0, 1.0}, 2, nullptr)
            .outcome.isFailed());
    // An order of 10000 would cost 5·10^7 multiply-adds a sample and a 10001-wide solve:
    // refused at once, naming the highest order.
    const VectorResult huge = PolynomialBaseline::compute(values, time, 10000, nullptr);
    EXPECT_EQ(huge.outcome.error,
              QStringLiteral("Error: the polynomial order <b>10000</b> is above the highest order offered, "
                             "<b>20</b>."));
}

TEST(SlopeBaseline, DispatchesByMethodName)
{
    const std::vector<double> time{0.0, 0.5, 1.0, 1.5, 2.0};
    const std::vector<double> values{1.0, 2.0, 3.0, 4.0, 5.0};
    SlopeBaseline::Config config;
    config.method = Defs::Polynomial;
    config.order = 1;
    const VectorResult line = SlopeBaseline::compute(config, values, time, nullptr);
    ASSERT_TRUE(line.outcome.ok());
    EXPECT_NEAR(line.values[3], 4.0, 1e-12);

    // A 1.5 s window at 2 Hz is W = 3: the centred mean, mirrored at the start.
    config.method = Defs::RunningAverage;
    config.timeWindow = 1.5;
    const VectorResult average = SlopeBaseline::compute(config, values, time, nullptr);
    ASSERT_TRUE(average.outcome.ok());
    EXPECT_NEAR(average.values[0], (2.0 + 1.0 + 2.0) / 3.0, 1e-12);
    EXPECT_NEAR(average.values[2], 3.0, 1e-12);

    config.method = QStringLiteral("Spline");
    EXPECT_TRUE(SlopeBaseline::compute(config, values, time, nullptr).outcome.isFailed());
}

TEST(ZScore, StandardAndModifiedScores)
{
    std::vector<double> standard{1.0, 2.0, 3.0, 4.0};
    ASSERT_TRUE(ZScore::apply(Defs::StandardZScore, standard, nullptr).ok());
    const double sd = std::sqrt(5.0 / 3.0);
    EXPECT_NEAR(standard[0], -1.5 / sd, 1e-12);
    EXPECT_NEAR(standard[3], 1.5 / sd, 1e-12);

    // Median 3, absolute deviations 2 1 0 1 97, so MAD 1.
    std::vector<double> modified{1.0, 2.0, 3.0, 4.0, 100.0};
    ASSERT_TRUE(ZScore::apply(Defs::ModifiedZScore, modified, nullptr).ok());
    EXPECT_EQ(modified, (std::vector<double>{-2.0, -1.0, 0.0, 1.0, 97.0}));

    std::vector<double> flat(5, 2.0);
    EXPECT_TRUE(ZScore::apply(Defs::StandardZScore, flat, nullptr).isFailed());
    EXPECT_EQ(flat, std::vector<double>(5, 2.0));
    EXPECT_TRUE(ZScore::apply(QStringLiteral("Robust"), flat, nullptr).isFailed());

    // A NaN leaves the median, like the mean, undefined: both methods refuse the signal.
    const std::vector<double> holed{1.0, NAN, 3.0, 4.0};
    for (const QString& method : {Defs::StandardZScore, Defs::ModifiedZScore}) {
        std::vector<double> values = holed;
        EXPECT_TRUE(ZScore::apply(method, values, nullptr).isFailed()) << method.toStdString();
        EXPECT_EQ(values[0], 1.0);
    }
}

} // namespace
} // namespace zarvi
