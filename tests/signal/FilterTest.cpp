#include "RecordingFeedback.h"

#include "definitions/SignalOperationDefinitions.h"
#include "signal/operations/filter/Butterworth.h"
#include "signal/operations/filter/FilterDesign.h"
#include "signal/operations/filter/FilterResponse.h"
#include "signal/operations/filter/SectionCascade.h"
#include "signal/operations/filter/ZeroPhaseFilter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <utility>
#include <vector>

namespace zarvi {
namespace {

using Defs = SignalOperationDefinitions;
constexpr double pi = std::numbers::pi;

double magnitude(const Butterworth& filter, double f, double fs)
{
    return std::abs(filter.response(f / fs));
}

/// |H|^2 of an order-10 bilinear Butterworth low-pass, 1 / (1 + (tan(pi f/fs) / tan(pi fc/fs))^20).
double closedFormLowPass(double f, double fc, double fs)
{
    return 1.0 / std::sqrt(1.0 + std::pow(std::tan(pi * f / fs) / std::tan(pi * fc / fs), 20.0));
}

Butterworth designed(FilterKind kind, double fs, double f, double width = 0.0)
{
    Butterworth filter(kind);
    EXPECT_TRUE(filter.setup(fs, f, width));
    return filter;
}

TEST(Butterworth, LowAndHighPassAreHalfPowerAtTheCutoffAtAnyRate)
{
    for (const double fs : {100.0, 1000.0, 1017.25, 48000.0}) {
        for (const double fraction : {0.01, 0.1, 0.3, 0.45}) {
            const double fc = fraction * fs;
            const Butterworth low = designed(FilterKind::LowPass, fs, fc);
            const Butterworth high = designed(FilterKind::HighPass, fs, fc);
            EXPECT_NEAR(magnitude(low, fc, fs), 1.0 / std::sqrt(2.0), 1e-9) << fs << " " << fc;
            EXPECT_NEAR(magnitude(high, fc, fs), 1.0 / std::sqrt(2.0), 1e-9) << fs << " " << fc;
            EXPECT_NEAR(magnitude(low, 0.0, fs), 1.0, 1e-12);
            EXPECT_NEAR(magnitude(high, fs / 2.0, fs), 1.0, 1e-12);
            EXPECT_EQ(low.sections().size(), 5u);
            EXPECT_EQ(high.sections().size(), 5u);
        }
    }
}

TEST(Butterworth, LowPassFollowsTheClosedFormOverTheWholeBand)
{
    const double fs = 1000.0;
    const double fc = 40.0;
    const Butterworth low = designed(FilterKind::LowPass, fs, fc);
    const Butterworth high = designed(FilterKind::HighPass, fs, fc);
    for (double f = 0.5; f < fs / 2.0; f += 0.5) {
        const double expected = closedFormLowPass(f, fc, fs);
        EXPECT_NEAR(magnitude(low, f, fs), expected, 1e-9) << f;
        // The high-pass is the same curve with tan(pi f/fs) inverted around the cut-off.
        const double highExpected =
            1.0 / std::sqrt(1.0 + std::pow(std::tan(pi * fc / fs) / std::tan(pi * f / fs), 20.0));
        EXPECT_NEAR(magnitude(high, f, fs), highExpected, 1e-9) << f;
    }
}

TEST(Butterworth, BandDesignsUseCentreAndWidthAroundThePrewarpedCentre)
{
    const double fs = 100.0;
    const std::vector<double> cutoffs{1.0, 5.0};
    const FilterDesign::Result pass = FilterDesign::design(Defs::BandPass, cutoffs, fs);
    ASSERT_TRUE(pass.outcome.ok());
    EXPECT_EQ(pass.filter.parameters(), (std::vector<double>{10.0, fs, 3.0, 4.0}));
    EXPECT_EQ(pass.filter.sections().size(), 10u);

    // The digital centre is where tan(pi f/fs) is the geometric mean of the warped edges.
    const double centre = fs / pi * std::atan(std::sqrt(std::tan(pi * 1.0 / fs) * std::tan(pi * 5.0 / fs)));
    EXPECT_NEAR(magnitude(pass.filter, centre, fs), 1.0, 1e-9);
    EXPECT_NEAR(magnitude(pass.filter, 1.0, fs), 1.0 / std::sqrt(2.0), 1e-9);
    EXPECT_NEAR(magnitude(pass.filter, 5.0, fs), 1.0 / std::sqrt(2.0), 1e-9);
    EXPECT_LT(magnitude(pass.filter, 0.1, fs), 1e-6);
    EXPECT_LT(magnitude(pass.filter, 30.0, fs), 1e-6);

    const FilterDesign::Result stop = FilterDesign::design(Defs::BandStop, cutoffs, fs);
    ASSERT_TRUE(stop.outcome.ok());
    EXPECT_EQ(stop.filter.sections().size(), 10u);
    EXPECT_LT(magnitude(stop.filter, centre, fs), 1e-9);
    EXPECT_NEAR(magnitude(stop.filter, 0.0, fs), 1.0, 1e-12);
    EXPECT_NEAR(magnitude(stop.filter, 30.0, fs), 1.0, 1e-6);
}

TEST(FilterDesign, TakesCutoffsInOrderAndRefusesInconsistentOnes)
{
    QVariantMap parameters{{Defs::HighCutoffFrequency, 5.0}, {Defs::LowCutoffFrequency, 1.0}};
    EXPECT_EQ(FilterDesign::cutoffsFromParameters(ParameterValues(parameters)),
              (std::vector<double>{1.0, 5.0}));
    // An empty value is a cut-off that was not given, never 0 Hz.
    parameters.insert(Defs::HighCutoffFrequency, QString());
    EXPECT_EQ(FilterDesign::cutoffsFromParameters(ParameterValues(parameters)), (std::vector<double>{1.0}));

    // A low-pass given both values uses the last one.
    const FilterDesign::Result low =
        FilterDesign::design(Defs::LowPass, std::vector<double>{1.0, 5.0}, 100.0);
    ASSERT_TRUE(low.outcome.ok());
    EXPECT_EQ(low.filter.parameters(), (std::vector<double>{10.0, 100.0, 5.0}));

    const QString wrong = Defs::wrongFilterFrequenciesMessage();
    const auto refused = [&](const QString& type, std::vector<double> cutoffs, double fs) {
        const FilterDesign::Result r = FilterDesign::design(type, cutoffs, fs);
        return r.outcome.isFailed() && r.outcome.error == wrong;
    };
    EXPECT_EQ(wrong, QStringLiteral("Wrong low-high filter frequencies."));
    EXPECT_TRUE(refused(Defs::BandPass, {5.0, 1.0}, 100.0));
    EXPECT_TRUE(refused(Defs::BandStop, {3.0, 3.0}, 100.0));
    EXPECT_TRUE(refused(Defs::BandPass, {3.0}, 100.0));
    EXPECT_TRUE(refused(Defs::LowPass, {0.0}, 100.0));
    EXPECT_TRUE(refused(Defs::LowPass, {-2.0, 10.0}, 100.0));
    EXPECT_TRUE(refused(Defs::HighPass, {50.0}, 100.0));
    EXPECT_TRUE(refused(Defs::BandPass, {1.0, 60.0}, 100.0));
    EXPECT_TRUE(refused(Defs::LowPass, {600.0}, 1000.0));
    EXPECT_TRUE(refused(Defs::LowPass, {}, 100.0));
    EXPECT_TRUE(
        FilterDesign::design(QStringLiteral("Notch"), std::vector<double>{1.0}, 100.0).outcome.isFailed());
}

TEST(ZeroPhaseFilter, KeepsConstantsAndInBandSinusoidsUnchanged)
{
    // Long enough for the pads to absorb the filter's start-up from a zero state.
    std::vector<double> constant(10000, 3.7);
    FilterDesign::Result design = FilterDesign::design(Defs::LowPass, std::vector<double>{5.0}, 100.0);
    test::RecordingFeedback feedback;
    ASSERT_TRUE(ZeroPhaseFilter::apply(design.filter, constant, &feedback).ok());
    ASSERT_EQ(constant.size(), 10000u);
    for (const double v : constant)
        EXPECT_NEAR(v, 3.7, 1e-9);
    EXPECT_EQ(feedback.labels.value(0), QStringLiteral("Applying filter..."));
    EXPECT_EQ(feedback.lastProgress, 100);

    // 5 Hz at 1 kHz through a 50 Hz low-pass: |H|^2 differs from 1 by 1e-20 and the
    // forward-backward pass has no phase, so the middle is the input.
    const double fs = 1000.0;
    std::vector<double> wave(10000);
    for (std::size_t i = 0; i < wave.size(); ++i)
        wave[i] = std::sin(2.0 * pi * 5.0 * static_cast<double>(i) / fs + 0.3);
    std::vector<double> filtered = wave;
    design = FilterDesign::design(Defs::LowPass, std::vector<double>{50.0}, fs);
    ASSERT_TRUE(ZeroPhaseFilter::apply(design.filter, filtered, nullptr).ok());
    for (std::size_t i = 2000; i < 8000; ++i)
        ASSERT_NEAR(filtered[i], wave[i], 1e-6) << i;

    // A tone far into the stop band is removed.
    std::vector<double> high(10000);
    for (std::size_t i = 0; i < high.size(); ++i)
        high[i] = std::sin(2.0 * pi * 200.0 * static_cast<double>(i) / fs);
    ASSERT_TRUE(ZeroPhaseFilter::apply(design.filter, high, nullptr).ok());
    for (std::size_t i = 2000; i < 8000; ++i)
        ASSERT_NEAR(high[i], 0.0, 1e-6) << i;

    test::RecordingFeedback cancel(2);
    EXPECT_TRUE(ZeroPhaseFilter::apply(design.filter, filtered, &cancel).isCancelled());
}

/// The zero-phase rule spelled out step by step with a textbook direct-form-II cascade.
std::vector<double> zeroPhaseByTheRule(const Butterworth& filter, const std::vector<double>& x)
{
    const std::size_t n = x.size();
    const std::size_t pad = static_cast<std::size_t>(0.1 * static_cast<double>(n));
    std::vector<double> extended;
    for (std::size_t k = 0; k < pad; ++k)
        extended.push_back(x[0]);
    extended.insert(extended.end(), x.begin(), x.end());
    for (std::size_t k = 1; k <= pad; ++k)
        extended.push_back(x[n - k]);

    std::vector<std::array<double, 2>> state(filter.sections().size(), {0.0, 0.0});
    const auto run = [&](std::vector<double>& v) {
        for (double& sample : v) {
            for (std::size_t s = 0; s < state.size(); ++s) {
                const Butterworth::Section& c = filter.sections()[s];
                const double w = sample - c.a1 * state[s][0] - c.a2 * state[s][1];
                sample = c.b0 * w + c.b1 * state[s][0] + c.b2 * state[s][1];
                state[s] = {w, state[s][0]};
            }
        }
    };
    run(extended);
    std::reverse(extended.begin(), extended.end());
    run(extended); // the state of the forward pass carries on
    std::reverse(extended.begin(), extended.end());
    return {extended.begin() + static_cast<std::ptrdiff_t>(pad),
            extended.begin() + static_cast<std::ptrdiff_t>(pad + n)};
}

TEST(ZeroPhaseFilter, FollowsThePaddingAndStateRuleExactly)
{
    // A short, strongly sloped signal, so the pads and the carried state shape every sample.
    std::vector<double> x(237);
    for (std::size_t i = 0; i < x.size(); ++i)
        x[i] =
            0.05 * static_cast<double>(i) + std::sin(0.3 * static_cast<double>(i)) + (i % 7 == 0 ? 1.0 : 0.0);
    for (const auto& [type, cutoffs] : {std::pair{Defs::LowPass, std::vector<double>{4.0}},
                                        std::pair{Defs::HighPass, std::vector<double>{10.0}},
                                        std::pair{Defs::BandPass, std::vector<double>{2.0, 8.0}},
                                        std::pair{Defs::BandStop, std::vector<double>{5.0, 15.0}}}) {
        FilterDesign::Result design = FilterDesign::design(type, cutoffs, 100.0);
        ASSERT_TRUE(design.outcome.ok());
        const std::vector<double> expected = zeroPhaseByTheRule(design.filter, x);
        std::vector<double> filtered = x;
        ASSERT_TRUE(ZeroPhaseFilter::apply(design.filter, filtered, nullptr).ok());
        ASSERT_EQ(filtered.size(), x.size());
        for (std::size_t i = 0; i < x.size(); ++i)
            ASSERT_NEAR(filtered[i], expected[i], 1e-9 * (1.0 + std::fabs(expected[i])))
                << type.toStdString() << i;
    }
}

/// The largest difference between two signals, relative to the largest magnitude of the second.
double relativeDifference(const std::vector<double>& a, const std::vector<double>& b)
{
    double difference = 0.0;
    double scale = 0.0;
    for (std::size_t i = 0; i < b.size(); ++i) {
        difference = std::max(difference, std::fabs(a[i] - b[i]));
        scale = std::max(scale, std::fabs(b[i]));
    }
    return difference / scale;
}

/// The zero-phase rule with the extended signal built in full and run through the plain
/// scalar cascade, the reference for the pipelined one.
std::vector<double> zeroPhaseByThePlainCascade(const Butterworth& filter, const std::vector<double>& x)
{
    const std::size_t n = x.size();
    const std::size_t pad = static_cast<std::size_t>(0.1 * static_cast<double>(n));
    std::vector<double> extended(pad, x[0]);
    extended.insert(extended.end(), x.begin(), x.end());
    extended.insert(extended.end(), x.rbegin(), x.rbegin() + static_cast<std::ptrdiff_t>(pad));
    SectionCascade::CoefficientArray coefficients{};
    for (std::size_t k = 0; k < filter.sections().size(); ++k) {
        const Butterworth::Section& s = filter.sections()[k];
        coefficients[k] = {s.b0, s.b1 - s.b0 * s.a1, s.b2 - s.b0 * s.a2, s.a1, s.a2};
    }
    SectionCascade::StateArray state{};
    const std::size_t sections = filter.sections().size();
    SectionCascade::runPlain(coefficients, state, sections, extended.data(), extended.size(), 1);
    SectionCascade::runPlain(coefficients, state, sections, &extended.back(), extended.size(), -1);
    return {extended.begin() + static_cast<std::ptrdiff_t>(pad),
            extended.begin() + static_cast<std::ptrdiff_t>(pad + n)};
}

TEST(ZeroPhaseFilter, LongSignalsMatchThePlainCascadeToRounding)
{
    // Long enough for many blocks, a front pad whose state settles, odd lengths so the
    // pipeline ends on either step, and both section counts.
    for (const std::size_t n : {std::size_t{400'001}, std::size_t{123'457}}) {
        std::vector<double> x(n);
        for (std::size_t i = 0; i < n; ++i) {
            const double t = static_cast<double>(i) / 1000.0;
            x[i] = 2.0 + std::sin(2.0 * pi * 1.5 * t) + 0.5 * std::sin(2.0 * pi * 70.0 * t) +
                   (i % 13 == 0 ? 0.25 : 0.0);
        }
        for (const auto& [type, cutoffs] : {std::pair{Defs::LowPass, std::vector<double>{5.0}},
                                            std::pair{Defs::HighPass, std::vector<double>{0.5}},
                                            std::pair{Defs::BandPass, std::vector<double>{1.0, 20.0}},
                                            std::pair{Defs::BandStop, std::vector<double>{50.0, 90.0}}}) {
            FilterDesign::Result design = FilterDesign::design(type, cutoffs, 1000.0);
            ASSERT_TRUE(design.outcome.ok());
            const std::vector<double> expected = zeroPhaseByThePlainCascade(design.filter, x);
            std::vector<double> filtered = x;
            ASSERT_TRUE(ZeroPhaseFilter::apply(design.filter, filtered, nullptr).ok());
            EXPECT_LT(relativeDifference(filtered, expected), 1e-12) << type.toStdString() << " n=" << n;
        }
    }
}

TEST(SectionCascade, PipelineContinuesLikeThePlainCascadeInBothDirections)
{
    // Runs of many lengths one after the other, so each continues from the state the
    // last one left, through five and ten sections.
    for (const FilterKind kind : {FilterKind::LowPass, FilterKind::BandPass}) {
        Butterworth filter = designed(kind, 1000.0, 40.0, 30.0);
        SectionCascade::CoefficientArray coefficients{};
        for (std::size_t k = 0; k < filter.sections().size(); ++k) {
            const Butterworth::Section& s = filter.sections()[k];
            coefficients[k] = {s.b0, s.b1 - s.b0 * s.a1, s.b2 - s.b0 * s.a2, s.a1, s.a2};
        }
        std::vector<double> x(20000);
        for (std::size_t i = 0; i < x.size(); ++i)
            x[i] = std::cos(0.01 * static_cast<double>(i * i % 10007)) + (i % 97 == 0 ? 3.0 : 0.0);
        for (const std::ptrdiff_t stride : {std::ptrdiff_t{1}, std::ptrdiff_t{-1}}) {
            std::vector<double> plain = x;
            std::vector<double> piped = x;
            SectionCascade::StateArray plainState{};
            SectionCascade::StateArray pipedState{};
            std::size_t offset = 0;
            for (const std::size_t length : {300u, 257u, 1u, 5000u, 4097u, 10345u}) {
                const std::size_t start = stride > 0 ? offset : x.size() - 1 - offset;
                SectionCascade::runPlain(coefficients, plainState, filter.sections().size(), &plain[start],
                                         length, stride);
                SectionCascade::run(coefficients, pipedState, filter.sections().size(), &piped[start], length,
                                    stride);
                offset += length;
            }
            ASSERT_EQ(offset, x.size());
            // The same products and sums in the same order: the same bits, not just close.
            EXPECT_EQ(piped, plain);
        }
    }
}

TEST(FilterResponse, DrawsEachMagnitudeAtItsOwnFrequencyWithAFloor)
{
    const double fs = 1000.0;
    const Butterworth low = designed(FilterKind::LowPass, fs, 50.0);
    test::RecordingFeedback feedback;
    const FilterResponse::Result curve = FilterResponse::compute(low, fs, 501, &feedback);
    ASSERT_TRUE(curve.outcome.ok());
    ASSERT_EQ(curve.frequencies.size(), 501u);
    EXPECT_DOUBLE_EQ(curve.frequencies.front(), 0.0);
    EXPECT_DOUBLE_EQ(curve.frequencies.back(), 500.0);
    EXPECT_EQ(feedback.labels.value(0), QStringLiteral("Calculating filter response..."));
    // Every point is the closed-form response at the frequency it is drawn at (floored).
    const double floor = static_cast<double>(1e-5f);
    for (std::size_t i = 1; i < 500; ++i)
        ASSERT_NEAR(curve.magnitudesDb[i],
                    20.0 * std::log10(std::max(closedFormLowPass(curve.frequencies[i], 50.0, fs), floor)),
                    1e-4)
            << curve.frequencies[i];
    EXPECT_NEAR(curve.magnitudesDb[0], 0.0, 1e-9);

    // A high-pass has a zero at DC, which the floor turns into 20 log10(1e-5f).
    const Butterworth high = designed(FilterKind::HighPass, fs, 50.0);
    const FilterResponse::Result highCurve = FilterResponse::compute(high, fs, 501, nullptr);
    EXPECT_DOUBLE_EQ(highCurve.magnitudesDb[0], 20.0 * std::log10(static_cast<double>(1e-5f)));
    for (const double db : highCurve.magnitudesDb)
        EXPECT_TRUE(std::isfinite(db));
}

TEST(FilterResponse, TheMinus3DbPointReadOffTheCurveIsTheCutoff)
{
    // A 2 Hz low-pass on a 100 Hz signal, as a user would set it up.
    const double fs = 100.0;
    const Butterworth low = designed(FilterKind::LowPass, fs, 2.0);
    const FilterResponse::Result curve = FilterResponse::compute(low, fs, 2000, nullptr);
    ASSERT_TRUE(curve.outcome.ok());
    // Where the plotted curve first falls below -3.0103 dB (half power), interpolated.
    const double halfPower = 20.0 * std::log10(1.0 / std::sqrt(2.0));
    double knee = -1.0;
    for (std::size_t i = 1; i < curve.magnitudesDb.size(); ++i) {
        if (curve.magnitudesDb[i] < halfPower) {
            const double a = curve.magnitudesDb[i - 1];
            const double b = curve.magnitudesDb[i];
            knee = curve.frequencies[i - 1] +
                   (halfPower - a) / (b - a) * (curve.frequencies[i] - curve.frequencies[i - 1]);
            break;
        }
    }
    EXPECT_NEAR(knee, 2.0, 0.01);
}

} // namespace
} // namespace zarvi
