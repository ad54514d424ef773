#include "RecordingFeedback.h"
#include "common/SampleStatistics.h"

#include "definitions/SignalOperationDefinitions.h"
#include "signal/operations/photometry/PhotometryDeltaF.h"
#include "signal/operations/photometry/RansacLineFit.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <numbers>
#include <random>
#include <vector>

namespace zarvi {
namespace {

using Defs = SignalOperationDefinitions;
using Signal = PhotometryDeltaF::Signal;

/// An isosbestic-like signal: a slow decay with a wobble, 100 Hz, 20 s.
Signal isosbesticSignal(std::size_t n = 2000)
{
    Signal s;
    for (std::size_t i = 0; i < n; ++i) {
        const double t = static_cast<double>(i) / 100.0;
        s.time.push_back(t);
        s.values.push_back(2.0 + std::exp(-t / 8.0) + 0.2 * std::sin(2.0 * std::numbers::pi * 0.3 * t));
    }
    return s;
}

/// Twice the isosbestic signal, 5 % higher on samples [from, to).
Signal biosensorOf(const Signal& isosbestic, std::size_t from, std::size_t to)
{
    Signal s = isosbestic;
    for (std::size_t i = 0; i < s.values.size(); ++i)
        s.values[i] = 2.0 * isosbestic.values[i] * (i >= from && i < to ? 1.05 : 1.0);
    return s;
}

TEST(RansacLineFit, FollowsTheIterationRuleAndRejectsInadmissiblePairs)
{
    std::mt19937 generator(7);
    std::normal_distribution<double> noise(0.0, 1.0);
    std::vector<double> x(3000);
    std::vector<double> y(3000);
    for (std::size_t i = 0; i < x.size(); ++i) {
        x[i] = noise(generator);
        y[i] = -0.5 * x[i] + noise(generator);
    }

    // No residual is below a zero threshold: the count stays at its floor of 1000.
    test::RecordingFeedback feedback;
    const RansacLineFit::Result none = RansacLineFit::fit(x, y, 0.0, &feedback);
    ASSERT_TRUE(none.outcome.ok());
    EXPECT_EQ(none.iterations, 1000);
    EXPECT_EQ(none.inlierCount, 0u);
    EXPECT_EQ(feedback.labels.value(0), QStringLiteral("Calculating regression line..."));

    // A negatively correlated pair still gets a flat or rising line, never steeper than sd(y)/sd(x),
    // and never one through two samples that are close in both x and y (those would make nearly
    // every residual tiny, since residuals scale with the distance of the two samples).
    const double sx = test::sampleDeviation(x);
    const double sy = test::sampleDeviation(y);
    for (int run = 0; run < 5; ++run) {
        RansacLineFit::Result fit = RansacLineFit::fit(x, y, 0.3, nullptr);
        ASSERT_TRUE(fit.outcome.ok());
        RansacLineFit::markInliers(fit, x, y, 0.3);
        EXPECT_GE(fit.slope, 0.0);
        EXPECT_LE(fit.slope, sy / sx);
        EXPECT_FALSE(std::fabs(fit.b) < 0.5 * sx && std::fabs(fit.a) < 0.5 * sy);
        EXPECT_GE(fit.iterations, 1000);
        // The mask is the strict threshold on the unnormalised residual.
        std::size_t inliers = 0;
        for (std::size_t i = 0; i < x.size(); ++i) {
            const double r = std::fabs(fit.a * x[i] + fit.b * y[i] + fit.c);
            EXPECT_EQ(fit.inliers[i], r < 0.3 ? 1 : 0);
            inliers += fit.inliers[i];
        }
        EXPECT_EQ(inliers, fit.inlierCount);
    }
}

TEST(RansacLineFit, RefusesDegenerateInputAndStopsWhenCancelled)
{
    const std::vector<double> x{1.0, 2.0, 3.0, 4.0};
    EXPECT_TRUE(RansacLineFit::fit(std::vector<double>{1.0}, std::vector<double>{2.0}, 1.0, nullptr)
                    .outcome.isFailed());
    EXPECT_TRUE(RansacLineFit::fit(x, std::vector<double>(4, 2.0), 1.0, nullptr).outcome.isFailed());
    EXPECT_TRUE(RansacLineFit::fit(x, std::vector<double>{1.0, 2.0}, 1.0, nullptr).outcome.isFailed());
    // A falling line offers no admissible pair at all; the fit gives up instead of looping.
    const RansacLineFit::Result falling =
        RansacLineFit::fit(x, std::vector<double>{4.0, 3.0, 2.0, 1.0}, 1.0, nullptr);
    EXPECT_TRUE(falling.outcome.isFailed());

    std::vector<double> big(200000);
    for (std::size_t i = 0; i < big.size(); ++i)
        big[i] = std::sin(0.001 * static_cast<double>(i));
    test::RecordingFeedback cancel(3);
    const RansacLineFit::Result stopped = RansacLineFit::fit(big, big, 0.01, &cancel);
    EXPECT_TRUE(stopped.outcome.isCancelled());
}

TEST(PhotometryDeltaF, GivesARatioOnRawSignalsAndADifferenceOtherwise)
{
    const Signal isosbestic = isosbesticSignal();
    const Signal biosensor = biosensorOf(isosbestic, 500, 700);

    PhotometryDeltaF::Config config;
    config.residualThreshold = 1e-6;
    test::RecordingFeedback feedback;
    const PhotometryDeltaF::Result raw = PhotometryDeltaF::compute(config, isosbestic, biosensor, &feedback);
    ASSERT_TRUE(raw.outcome.ok()) << raw.outcome.error.toStdString();
    ASSERT_EQ(raw.deltaF.size(), isosbestic.values.size());
    EXPECT_EQ(raw.time, biosensor.time);
    for (std::size_t i = 0; i < raw.deltaF.size(); ++i)
        ASSERT_NEAR(raw.deltaF[i], i >= 500 && i < 700 ? 0.05 : 0.0, 1e-9) << i;
    EXPECT_EQ(raw.fit.inlierCount, 1800u);
    EXPECT_TRUE(feedback.warnings.isEmpty());
    EXPECT_TRUE(feedback.labels.contains(QStringLiteral("Fitting signals...")));
    EXPECT_TRUE(feedback.labels.contains(QStringLiteral("Calculating fitted isosbestic signal...")));

    // Standardised: z-scores by hand, and the result is y - f with no division.
    config.standardizeMethod = Defs::StandardZScore;
    config.residualThreshold = 0.01;
    config.keepPreviewData = true;
    const PhotometryDeltaF::Result z = PhotometryDeltaF::compute(config, isosbestic, biosensor, nullptr);
    ASSERT_TRUE(z.outcome.ok()) << z.outcome.error.toStdString();
    const auto zScores = [](const std::vector<double>& v) {
        double mean = 0.0;
        for (const double x : v)
            mean += x;
        mean /= static_cast<double>(v.size());
        const double sd = test::sampleDeviation(v);
        std::vector<double> out;
        for (const double x : v)
            out.push_back((x - mean) / sd);
        return out;
    };
    const std::vector<double> xz = zScores(isosbestic.values);
    const std::vector<double> yz = zScores(biosensor.values);
    for (std::size_t i = 0; i < yz.size(); ++i) {
        const double f = z.fit.slope * xz[i] + z.fit.intercept;
        ASSERT_NEAR(z.deltaF[i], yz[i] - f, 1e-9) << i;
        ASSERT_NEAR(z.fittedIsosbestic[i], f, 1e-9) << i;
    }
    EXPECT_EQ(z.isosbestic.values, isosbestic.values);
    EXPECT_EQ(z.fit.inliers.size(), yz.size());
}

TEST(PhotometryDeltaF, WarnsWhenNoSampleOrEverySampleIsAnInlier)
{
    const Signal isosbestic = isosbesticSignal();
    const Signal biosensor = biosensorOf(isosbestic, 500, 700);
    PhotometryDeltaF::Config config;
    // No residual is below 0; every residual is below 1e9.
    config.residualThreshold = 0.0;
    test::RecordingFeedback none;
    ASSERT_TRUE(PhotometryDeltaF::compute(config, isosbestic, biosensor, &none).outcome.ok());
    EXPECT_EQ(none.warnings,
              QStringList{QStringLiteral(
                  "Warning: no sample is an inlier of the line fit (0 %): the residual threshold "
                  "<b>0</b> is too small for the scale of these signals.")});
    config.residualThreshold = 1e9;
    test::RecordingFeedback all;
    const PhotometryDeltaF::Result every = PhotometryDeltaF::compute(config, isosbestic, biosensor, &all);
    ASSERT_TRUE(every.outcome.ok());
    EXPECT_EQ(every.fit.inlierCount, biosensor.values.size());
    ASSERT_EQ(all.warnings.size(), 1);
    EXPECT_TRUE(all.warnings.first().startsWith(QStringLiteral(
        "Warning: every sample is an inlier of the line fit (100 %): the residual threshold <b>1e+09</b>")));
}

TEST(RansacLineFit, ProposesHalfTheProductOfTheStandardDeviations)
{
    // sd(1, 2, 3, 4) = sqrt(5/3), sd(2, 4, 6, 8) = 2 sqrt(5/3): half their product is 5/3.
    const std::vector<double> x{1.0, 2.0, 3.0, 4.0};
    const std::vector<double> y{2.0, 4.0, 6.0, 8.0};
    EXPECT_NEAR(RansacLineFit::proposedThreshold(x, y), 5.0 / 3.0, 1e-12);
}

TEST(PhotometryDeltaF, RefusesWindowsAndOrdersTheKeptSamplesCannotHoldBeforeAnyStage)
{
    // 20 s at 100 Hz; 1 s off each end and every 10th sample kept leaves 180 samples at 10 Hz.
    const Signal isosbestic = isosbesticSignal();
    const Signal biosensor = biosensorOf(isosbestic, 0, 0);
    PhotometryDeltaF::Config config;
    config.discardStart = 1.0;
    config.discardEnd = -1.0;
    config.decimationFactor = 10;
    config.residualThreshold = 0.5;

    const auto refusal = [&](const PhotometryDeltaF::Config& c) {
        test::RecordingFeedback feedback;
        const PhotometryDeltaF::Result result =
            PhotometryDeltaF::compute(c, isosbestic, biosensor, &feedback);
        EXPECT_TRUE(result.outcome.isFailed());
        // Nothing ran: not even the discard said its label.
        EXPECT_EQ(feedback.labels, QStringList());
        return result.outcome.error;
    };
    // A 1e9 s smoothing window is 10^10 samples at the decimated rate.
    PhotometryDeltaF::Config smoothing = config;
    smoothing.smoothMethod = Defs::RunningAverage;
    smoothing.smoothTimeFrame = 1e9;
    EXPECT_EQ(refusal(smoothing),
              QStringLiteral("Error: the averaging window (<b>1e+10</b> samples) is longer "
                             "than the signal (<b>180</b> samples)."));
    // 18 s at 10 Hz is exactly 180 samples, which fits; 18.2 s does not.
    PhotometryDeltaF::Config slope = config;
    slope.slope.method = Defs::RunningAverage;
    slope.slope.timeWindow = 18.2;
    EXPECT_EQ(refusal(slope), QStringLiteral("Error: the averaging window (<b>182</b> samples) is longer "
                                             "than the signal (<b>180</b> samples)."));
    slope.slope.timeWindow = 18.0;
    EXPECT_TRUE(PhotometryDeltaF::compute(slope, isosbestic, biosensor, nullptr).outcome.ok());

    PhotometryDeltaF::Config polynomial = config;
    polynomial.slope.method = Defs::Polynomial;
    polynomial.slope.order = 10000;
    EXPECT_TRUE(refusal(polynomial).contains(QStringLiteral("<b>10000</b> is above the highest order")));
    // Without decimation 1800 samples are kept, still too few for an order of 1800.
    polynomial.decimationFactor = 0;
    polynomial.slope.order = 1800;
    EXPECT_TRUE(refusal(polynomial).contains(QStringLiteral("<b>1800</b> is above the highest order")));
    polynomial.decimationFactor = 1000;
    polynomial.slope.order = 2;
    EXPECT_EQ(refusal(polynomial), QStringLiteral("Error: the polynomial order <b>2</b> needs more samples "
                                                  "than the signal holds."));
}

TEST(PhotometryDeltaF, RunsTheStagesInOrderAndSkipsWhatIsNotAsked)
{
    const Signal isosbestic = isosbesticSignal();
    const Signal biosensor = biosensorOf(isosbestic, 0, 0);

    QVariantMap parameters{
        {Defs::DiscardStart, 1.0},           {Defs::DiscardEnd, -1.0},
        {Defs::DecimationFactor, 10},        {Defs::SmoothMethod, Defs::LowPassButterworthFilter},
        {Defs::SmoothFrequency, 6.0},        {Defs::ResidualThreshold, 1e-6},
        {Defs::RemoveSlopeMethod, QString()}};
    PhotometryDeltaF::Config config = PhotometryDeltaF::Config::fromParameters(ParameterValues(parameters));
    config.keepPreviewData = true;
    EXPECT_TRUE(config.slope.method.isEmpty());
    EXPECT_TRUE(config.standardizeMethod.isEmpty());

    test::RecordingFeedback feedback;
    const PhotometryDeltaF::Result result =
        PhotometryDeltaF::compute(config, isosbestic, biosensor, &feedback);
    ASSERT_TRUE(result.outcome.ok()) << result.outcome.error.toStdString();
    // 1 s off the start (t >= 1), 1 s before the last sample (t <= 18.99) off the end,
    // then every 10th sample: 100 Hz becomes 10 Hz.
    ASSERT_EQ(result.time.size(), 180u);
    EXPECT_NEAR(result.time.front(), 1.0, 1e-12);
    EXPECT_NEAR(result.time.back(), 18.9, 1e-12);
    // 6 Hz is above half the decimated rate, so smoothing is skipped with a warning; the
    // biosensor signal is exactly twice the isosbestic one, so every sample is an inlier.
    ASSERT_EQ(feedback.warnings.size(), 2);
    EXPECT_TRUE(feedback.warnings[1].contains(QStringLiteral("every sample is an inlier")));
    EXPECT_EQ(
        feedback.warnings[0],
        QStringLiteral("*The Cutoff Frequency of the Smooth Signals operation must be less than half of the "
                       "sample rate of the decimated signals. Otherwise, Smooth Signals operation won't be "
                       "executed."));
    EXPECT_EQ(result.biosensor.values[0], biosensor.values[100]);
    EXPECT_TRUE(result.isosbesticSlope.empty());
    const QStringList expectedLabels{QStringLiteral("Discarding the beginning of the signals..."),
                                     QStringLiteral("Discarding the end of the signals...")};
    EXPECT_EQ(feedback.labels.mid(0, 2), expectedLabels);
    EXPECT_FALSE(feedback.labels.contains(QStringLiteral("Smoothing signals...")));

    // With a running-average slope the result is a difference again.
    config.slope.method = Defs::RunningAverage;
    config.slope.timeWindow = 2.0;
    config.smoothFrequency = 2.0;
    feedback.labels.clear();
    feedback.warnings.clear();
    const PhotometryDeltaF::Result detrended =
        PhotometryDeltaF::compute(config, isosbestic, biosensor, &feedback);
    ASSERT_TRUE(detrended.outcome.ok()) << detrended.outcome.error.toStdString();
    // Smoothing runs now; only the exact line's every-sample-an-inlier is said.
    EXPECT_EQ(feedback.warnings.filter(QStringLiteral("Cutoff Frequency")), QStringList());
    EXPECT_TRUE(feedback.labels.contains(QStringLiteral("Smoothing signals...")));
    EXPECT_TRUE(feedback.labels.contains(QStringLiteral("Removing slope...")));
    ASSERT_EQ(detrended.biosensorSlope.size(), 180u);
    for (std::size_t i = 0; i < detrended.deltaF.size(); ++i) {
        const double f = detrended.fittedIsosbestic[i];
        ASSERT_NEAR(detrended.deltaF[i], detrended.biosensorForFit[i] - f, 1e-12);
    }

    config.decimationFactor = -1;
    EXPECT_EQ(PhotometryDeltaF::compute(config, isosbestic, biosensor, nullptr).outcome.error,
              QStringLiteral("Bad value for decimation factor."));
}

TEST(PhotometryDeltaF, ComputesBothSignalsTogetherEachAsAloneAndStopsBothOnCancel)
{
    // Lines of time with a small wobble left for the fit: an order-1 polynomial slope is
    // close to each signal's own line, so each slope shows whose samples it came from.
    Signal isosbestic;
    Signal biosensor;
    for (std::size_t i = 0; i < 4000; ++i) {
        const double t = static_cast<double>(i) / 100.0;
        isosbestic.time.push_back(t);
        const double wobble = 0.01 * std::sin(2.0 * std::numbers::pi * 0.7 * t);
        isosbestic.values.push_back(1.0 + 0.01 * t + wobble);
        biosensor.time.push_back(t);
        biosensor.values.push_back(5.0 - 0.02 * t + 2.0 * wobble);
    }
    QVariantMap parameters{{Defs::RemoveSlopeMethod, Defs::Polynomial},
                           {Defs::SlopeOrder, 1},
                           {Defs::ResidualThreshold, 0.5}};
    PhotometryDeltaF::Config config = PhotometryDeltaF::Config::fromParameters(ParameterValues(parameters));
    config.keepPreviewData = true;
    test::RecordingFeedback counting;
    const PhotometryDeltaF::Result result = PhotometryDeltaF::compute(config, isosbestic, biosensor, &counting);
    ASSERT_TRUE(result.outcome.ok()) << result.outcome.error.toStdString();
    for (std::size_t i = 0; i < 4000; i += 100) {
        const double t = isosbestic.time[i];
        EXPECT_NEAR(result.isosbesticSlope[i], 1.0 + 0.01 * t, 0.01) << i;
        EXPECT_NEAR(result.biosensorSlope[i], 5.0 - 0.02 * t, 0.01) << i;
    }

    // A cancel in any stage stops the run, whichever core the stage was on.
    const long long polls = counting.polls();
    ASSERT_GT(polls, 8);
    for (const long long after : {0LL, polls / 8, polls / 4, polls / 2}) {
        test::RecordingFeedback cancel(after);
        EXPECT_TRUE(PhotometryDeltaF::compute(config, isosbestic, biosensor, &cancel).outcome.isCancelled())
            << after;
    }
}

TEST(PhotometryDeltaF, NeedsOnlyTheRatesUnlessAStageWorksOnTimes)
{
    const Signal isosbestic = isosbesticSignal();
    const Signal biosensor = biosensorOf(isosbestic, 500, 700);
    QVariantMap parameters{{Defs::SmoothMethod, Defs::RunningAverage},
                           {Defs::SmoothTimeFrame, 0.25},
                           {Defs::StandardizeMethod, Defs::StandardZScore},
                           {Defs::ResidualThreshold, 0.01}};
    PhotometryDeltaF::Config config = PhotometryDeltaF::Config::fromParameters(ParameterValues(parameters));
    ASSERT_FALSE(config.needsTime());
    Signal isosbesticRate{isosbestic.values, {}, 100.0};
    Signal biosensorRate{biosensor.values, {}, 100.0};
    // The fit draws with rand(): the same seed gives the same draws.
    std::srand(11);
    const PhotometryDeltaF::Result withTimes = PhotometryDeltaF::compute(config, isosbestic, biosensor, nullptr);
    std::srand(11);
    const PhotometryDeltaF::Result withRates =
        PhotometryDeltaF::compute(config, isosbesticRate, biosensorRate, nullptr);
    ASSERT_TRUE(withRates.outcome.ok()) << withRates.outcome.error.toStdString();
    EXPECT_EQ(withRates.deltaF, withTimes.deltaF);
    EXPECT_TRUE(withRates.time.empty());

    // Discard works on times, so a signal without them is refused.
    config.discardStart = 1.0;
    EXPECT_TRUE(config.needsTime());
    EXPECT_EQ(PhotometryDeltaF::compute(config, isosbesticRate, biosensorRate, nullptr).outcome.error,
              Defs::valuesTimeMismatchMessage());
}

} // namespace
} // namespace zarvi
