#include "signal/operations/photometry/PhotometryDeltaF.h"

#include "datafile/Feedback.h"
#include "datafile/SecondCoreWork.h"
#include "definitions/SignalOperationDefinitions.h"
#include "signal/operations/SampleRate.h"
#include "signal/operations/decimation/Decimation.h"
#include "signal/operations/slope/PolynomialBaseline.h"
#include "signal/operations/smooth/RunningAverage.h"
#include "signal/operations/smooth/Smoothing.h"
#include "signal/operations/standardize/ZScore.h"

#include <algorithm>
#include <functional>

namespace zarvi {

namespace {

using Defs = SignalOperationDefinitions;
using Signal = PhotometryDeltaF::Signal;
constexpr std::size_t BlockSize = std::size_t{1} << 16;

void setLabel(Feedback* feedback, const QString& label)
{
    if (feedback)
        feedback->setLabel(label);
}

/// Runs one stage on both signals at once, the isosbestic on a second thread: the two
/// are independent, so each comes out as it would alone. The biosensor's stage reports
/// progress and polls the user's cancel, and passes a cancel or failure on to the
/// isosbestic's. An isosbestic failure is reported first, as when the stages ran in turn.
KernelOutcome forBoth(Signal& isosbestic, Signal& biosensor, Feedback* feedback,
                      const std::function<KernelOutcome(Signal&, Feedback*)>& stage)
{
    SecondCoreWork<KernelOutcome> isosbesticStage([&](Feedback* f) { return stage(isosbestic, f); });
    const KernelOutcome biosensorOutcome = stage(biosensor, feedback);
    if (!biosensorOutcome.ok())
        isosbesticStage.stop();
    const KernelOutcome isosbesticOutcome = isosbesticStage.wait(feedback);
    if (isosbesticOutcome.isFailed() || biosensorOutcome.ok())
        return isosbesticOutcome;
    return biosensorOutcome;
}

void eraseFront(Signal& s, std::size_t count)
{
    s.values.erase(s.values.begin(), s.values.begin() + count);
    s.time.erase(s.time.begin(), s.time.begin() + count);
}

void keepFront(Signal& s, std::size_t count)
{
    s.values.resize(count);
    s.time.resize(count);
}

/// Removes the samples less than `seconds` after the first one.
KernelOutcome discardStart(Signal& s, double seconds, Feedback* feedback)
{
    if (feedback && feedback->isCanceled())
        return KernelOutcome::cancelled();
    if (!s.time.empty()) {
        const auto first = std::lower_bound(s.time.begin(), s.time.end(), s.time.front() + seconds);
        eraseFront(s, static_cast<std::size_t>(first - s.time.begin()));
    }
    return KernelOutcome::completed();
}

/// Removes the samples later than the last time plus `seconds` (a negative offset).
KernelOutcome discardEnd(Signal& s, double seconds, Feedback* feedback)
{
    if (feedback && feedback->isCanceled())
        return KernelOutcome::cancelled();
    if (!s.time.empty()) {
        const auto end = std::upper_bound(s.time.begin(), s.time.end(), s.time.back() + seconds);
        keepFront(s, static_cast<std::size_t>(end - s.time.begin()));
    }
    return KernelOutcome::completed();
}

KernelOutcome decimate(Signal& s, int factor, Feedback* feedback)
{
    Decimation::Result kept = Decimation::apply(s.values, s.time, factor, feedback);
    if (kept.outcome.ok()) {
        s.values = std::move(kept.values);
        s.time = std::move(kept.time);
    }
    return kept.outcome;
}

/// The sample rate of a signal, from its time when it has one.
double rateOf(const Signal& s)
{
    return s.time.empty() ? s.rate : sampleRateOf(s.time);
}

KernelOutcome smooth(Signal& s, const PhotometryDeltaF::Config& config, Feedback* feedback)
{
    return Smoothing::apply({config.smoothMethod, config.smoothTimeFrame, config.smoothFrequency}, s.values,
                            rateOf(s), feedback);
}

/// Subtracts the slope of the chosen method and keeps it in `slope`.
KernelOutcome subtractSlope(Signal& s, const SlopeBaseline::Config& config, std::vector<double>& slope,
                            Feedback* feedback)
{
    ScaledFeedback baselinePart(feedback, 0, 90);
    VectorResult baseline =
        SlopeBaseline::compute(config, s.values, s.time, feedback ? &baselinePart : nullptr);
    if (!baseline.outcome.ok())
        return baseline.outcome;
    ScaledFeedback subtractPart(feedback, 90, 100);
    ProgressTracker progress(feedback ? &subtractPart : nullptr, s.values.size());
    for (std::size_t start = 0; start < s.values.size(); start += BlockSize) {
        if (progress.isCanceled())
            return KernelOutcome::cancelled();
        const std::size_t end = std::min(start + BlockSize, s.values.size());
        for (std::size_t i = start; i < end; ++i)
            s.values[i] -= baseline.values[i];
        progress.update(end);
    }
    slope = std::move(baseline.values);
    return KernelOutcome::completed();
}

/// The samples of `s` that discard and decimation will keep, and their rate, found
/// without changing the signal.
struct KeptSamples
{
    std::size_t count = 0;
    double rate = 0.0;
};

KeptSamples keptSamples(const Signal& s, const PhotometryDeltaF::Config& config)
{
    if (s.time.empty()) // left out: nothing is discarded or decimated
        return {s.values.size(), s.values.size() >= 2 ? s.rate : 0.0};
    auto first = s.time.begin();
    auto last = s.time.end();
    if (config.discardStart && !s.time.empty())
        first = std::lower_bound(s.time.begin(), s.time.end(), s.time.front() + *config.discardStart);
    if (config.discardEnd && !s.time.empty())
        last = std::upper_bound(first, s.time.end(), s.time.back() + *config.discardEnd);
    const auto kept = static_cast<std::size_t>(std::max<std::ptrdiff_t>(0, last - first));
    const std::size_t step =
        config.decimationFactor > 0 ? static_cast<std::size_t>(config.decimationFactor) : 1;
    KeptSamples result;
    result.count = (kept + step - 1) / step;
    if (result.count >= 2)
        result.rate = sampleRateOf(result.count, *first, *(first + (result.count - 1) * step));
    return result;
}

KernelOutcome checkWindow(double windowSeconds, const KeptSamples& kept)
{
    if (RunningAverage::isWindowTooShort(kept.rate, windowSeconds))
        return KernelOutcome::failed(Defs::windowTooShortMessage());
    const double samples = kept.rate * windowSeconds;
    if (samples > static_cast<double>(kept.count))
        return KernelOutcome::failed(
            Defs::windowTooLongMessage().arg(QString::number(samples, 'g', 6), QString::number(kept.count)));
    return KernelOutcome::completed();
}

/// Refuses, before any stage runs, the windows and the polynomial order that the
/// signals left after discard and decimation cannot hold.
KernelOutcome checkAgainstSignals(const PhotometryDeltaF::Config& config, const Signal& isosbestic,
                                  const Signal& biosensor)
{
    for (const Signal* s : {&isosbestic, &biosensor}) {
        const KeptSamples kept = keptSamples(*s, config);
        if (kept.count == 0)
            return KernelOutcome::failed(Defs::emptySignalMessage());
        KernelOutcome outcome;
        if (config.smoothMethod == Defs::RunningAverage)
            outcome = checkWindow(config.smoothTimeFrame, kept);
        if (outcome.ok() && config.slope.method == Defs::RunningAverage)
            outcome = checkWindow(config.slope.timeWindow, kept);
        if (outcome.ok() && config.slope.method == Defs::Polynomial) {
            if (const QString problem = PolynomialBaseline::orderProblem(config.slope.order, kept.count);
                !problem.isEmpty())
                outcome = KernelOutcome::failed(problem);
        }
        if (!outcome.ok())
            return outcome;
    }
    return KernelOutcome::completed();
}

PhotometryDeltaF::Result failure(KernelOutcome outcome)
{
    PhotometryDeltaF::Result result;
    result.outcome = std::move(outcome);
    return result;
}

} // namespace

PhotometryDeltaF::Config PhotometryDeltaF::Config::fromParameters(const ParameterValues& parameters)
{
    Config config;
    config.discardStart = parameters.optionalNumber(Defs::DiscardStart);
    config.discardEnd = parameters.optionalNumber(Defs::DiscardEnd);
    config.decimationFactor = parameters.integer(Defs::DecimationFactor);
    config.smoothMethod = parameters.text(Defs::SmoothMethod);
    config.smoothTimeFrame = parameters.number(Defs::SmoothTimeFrame);
    config.smoothFrequency = parameters.number(Defs::SmoothFrequency);
    config.slope.method = parameters.text(Defs::RemoveSlopeMethod);
    config.slope.lambda = parameters.number(Defs::SlopeLambda);
    config.slope.ratio = parameters.number(Defs::SlopeRatio);
    config.slope.timeWindow = parameters.number(Defs::SlopeTimeWindow);
    config.slope.order = parameters.integer(Defs::SlopeOrder);
    config.standardizeMethod = parameters.text(Defs::StandardizeMethod);
    config.residualThreshold = parameters.number(Defs::ResidualThreshold);
    return config;
}

bool PhotometryDeltaF::Config::needsTime() const
{
    return discardStart || discardEnd || decimationFactor != 0 || !slope.method.isEmpty();
}

PhotometryDeltaF::Result PhotometryDeltaF::compute(const Config& config, Signal isosbestic, Signal biosensor,
                                                   Feedback* feedback)
{
    for (const Signal* s : {&isosbestic, &biosensor}) {
        const bool timeLeftOut = s->time.empty() && !config.needsTime();
        if (s->values.size() != s->time.size() && !timeLeftOut)
            return failure(KernelOutcome::failed(Defs::valuesTimeMismatchMessage()));
    }
    KernelOutcome outcome = checkAgainstSignals(config, isosbestic, biosensor);
    if (!outcome.ok())
        return failure(outcome);
    // Runs a stage on both signals under its progress label (none when empty).
    const auto run = [&](const QString& label, const auto& stage) {
        if (!label.isEmpty())
            setLabel(feedback, label);
        outcome = forBoth(isosbestic, biosensor, feedback, stage);
        return outcome.ok();
    };

    if (config.discardStart && !run(Defs::discardingBeginningLabel(), [&](Signal& s, Feedback* f) {
            return discardStart(s, *config.discardStart, f);
        }))
        return failure(outcome);
    if (config.discardEnd && !run(Defs::discardingEndLabel(), [&](Signal& s, Feedback* f) {
            return discardEnd(s, *config.discardEnd, f);
        }))
        return failure(outcome);
    if (isosbestic.values.empty() || biosensor.values.empty())
        return failure(KernelOutcome::failed(Defs::emptySignalMessage()));

    if (config.decimationFactor != 0 && !run(Defs::decimatingSignalLabel(), [&](Signal& s, Feedback* f) {
            return decimate(s, config.decimationFactor, f);
        }))
        return failure(outcome);

    Result result;
    const bool lowPass = config.smoothMethod == Defs::LowPassButterworthFilter;
    const bool smoothing = Smoothing::isKnownMethod(config.smoothMethod);
    const double decimatedRate = rateOf(biosensor);
    if (lowPass && isSmoothingCutoffTooHigh(config.smoothFrequency, decimatedRate)) {
        if (feedback)
            feedback->warn(Defs::smoothingCutoffTooHighMessage().arg(Defs::SmoothSignals));
    } else if (smoothing && !run(Defs::smoothingSignalsLabel(),
                                 [&](Signal& s, Feedback* f) { return smooth(s, config, f); })) {
        return failure(outcome);
    }
    if (config.keepPreviewData) {
        result.isosbestic = isosbestic;
        result.biosensor = biosensor;
    }

    const bool slopeRemoved = !config.slope.method.isEmpty();
    if (slopeRemoved) {
        if (!run(Defs::removingSlopeLabel(), [&](Signal& s, Feedback* f) {
                return subtractSlope(s, config.slope,
                                     &s == &isosbestic ? result.isosbesticSlope : result.biosensorSlope, f);
            }))
            return failure(outcome);
        if (!config.keepPreviewData) {
            result.isosbesticSlope.clear();
            result.biosensorSlope.clear();
        }
    }
    const bool standardized = !config.standardizeMethod.isEmpty();
    if (standardized && !run(QString(), [&](Signal& s, Feedback* f) {
            return ZScore::apply(config.standardizeMethod, s.values, f);
        }))
        return failure(outcome);

    setLabel(feedback, Defs::fittingSignalsLabel());
    result.fit = RansacLineFit::fit(isosbestic.values, biosensor.values, config.residualThreshold, feedback);
    if (!result.fit.outcome.ok())
        return failure(result.fit.outcome);
    // With no inlier, or every sample one, the threshold does not suit the signals' scale.
    const QString threshold = QString::number(config.residualThreshold, 'g', 6);
    if (feedback && result.fit.inlierCount == 0)
        feedback->warn(Defs::noInlierWarning().arg(threshold));
    else if (feedback && result.fit.inlierCount == biosensor.values.size())
        feedback->warn(Defs::allInliersWarning().arg(threshold));

    setLabel(feedback, Defs::calculatingFittedIsosbesticLabel());
    // Detrended or standardised signals sit near zero, so only raw signals are divided.
    const bool ratio = !slopeRemoved && !standardized;
    const double slope = result.fit.slope;
    const double intercept = result.fit.intercept;
    const std::size_t n = biosensor.values.size();
    result.time = std::move(biosensor.time);
    if (!config.keepPreviewData) {
        // A run needs only the difference: it replaces the biosensor's values where they
        // are, without a buffer of fitted values.
        for (std::size_t i = 0; i < n; ++i) {
            const double fitted = slope * isosbestic.values[i] + intercept;
            const double difference = biosensor.values[i] - fitted;
            biosensor.values[i] = ratio ? difference / fitted : difference;
        }
        result.deltaF = std::move(biosensor.values);
        return result;
    }
    RansacLineFit::markInliers(result.fit, isosbestic.values, biosensor.values, config.residualThreshold);
    std::vector<double> fitted(n);
    for (std::size_t i = 0; i < n; ++i)
        fitted[i] = slope * isosbestic.values[i] + intercept;
    result.deltaF.resize(n);
    for (std::size_t i = 0; i < n; ++i) {
        const double difference = biosensor.values[i] - fitted[i];
        result.deltaF[i] = ratio ? difference / fitted[i] : difference;
    }
    result.isosbesticForFit = std::move(isosbestic.values);
    result.biosensorForFit = std::move(biosensor.values);
    result.fittedIsosbestic = std::move(fitted);
    return result;
}

} // namespace zarvi
