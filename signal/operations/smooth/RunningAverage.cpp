#include "signal/operations/smooth/RunningAverage.h"

#include "definitions/SignalOperationDefinitions.h"

namespace zarvi {

namespace {

/// Reflects an index about both ends of a signal of n samples. Windows longer than
/// the signal reflect more than once, so every index lands inside.
inline std::size_t mirrored(long long k, long long n)
{
    if (k >= 0 && k < n)
        return static_cast<std::size_t>(k);
    if (n == 1)
        return 0;
    const long long period = 2 * n - 2;
    long long m = k % period;
    if (m < 0)
        m += period;
    return static_cast<std::size_t>(m < n ? m : period - m);
}

} // namespace

VectorResult RunningAverage::compute(std::span<const double> values, double rate, double windowSeconds,
                                     Feedback* feedback)
{
    if (isWindowTooShort(rate, windowSeconds))
        return {{}, KernelOutcome::failed(SignalOperationDefinitions::windowTooShortMessage())};
    // Checked before the conversion to a count, which a huge window would overflow.
    const double samples = rate * windowSeconds;
    if (samples > static_cast<double>(values.size()))
        return {{},
                KernelOutcome::failed(SignalOperationDefinitions::windowTooLongMessage().arg(
                    QString::number(samples, 'g', 6), QString::number(values.size())))};
    return computeSamples(values, static_cast<long long>(samples), feedback);
}

VectorResult RunningAverage::computeSamples(std::span<const double> values, long long window,
                                            Feedback* feedback)
{
    VectorResult result;
    if (window >= 1)
        result.values.resize(values.size());
    result.outcome = computeInto(values, window, result.values, feedback);
    if (!result.outcome.ok())
        result.values.clear();
    return result;
}

KernelOutcome RunningAverage::computeInto(std::span<const double> values, long long window,
                                          std::span<double> output, Feedback* feedback)
{
    if (window < 1)
        return KernelOutcome::failed(SignalOperationDefinitions::windowTooShortMessage());
    if (output.size() != values.size())
        return KernelOutcome::failed(SignalOperationDefinitions::outputSizeMismatchMessage());
    const long long n = static_cast<long long>(values.size());
    if (n == 0)
        return KernelOutcome::completed();

    const long long half = window / 2;
    const double divisor = static_cast<double>(window);
    ProgressTracker progress(feedback, values.size());
    // The first window alone can be as long as the user typed: it polls cancel too.
    constexpr long long PollEvery = 1 << 16;
    double sum = 0.0;
    for (long long k = -half; k <= half; ++k) {
        if ((k + half) % PollEvery == PollEvery - 1 && progress.isCanceled())
            return KernelOutcome::cancelled();
        sum += values[mirrored(k, n)];
    }
    output[0] = sum / divisor;

    for (long long i = 1; i < n; ++i) {
        if (progress.isCanceled())
            return KernelOutcome::cancelled();
        sum += values[mirrored(i + half, n)] - values[mirrored(i - half - 1, n)];
        output[static_cast<std::size_t>(i)] = sum / divisor;
        progress.update(static_cast<std::size_t>(i));
    }
    progress.update(values.size());
    return KernelOutcome::completed();
}

} // namespace zarvi
