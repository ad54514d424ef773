#include "signal/operations/decimation/Decimation.h"

#include "definitions/SignalOperationDefinitions.h"

namespace zarvi {

namespace {

/// Copies every factor-th sample of `source`; false when cancelled.
bool keepEvery(std::span<const double> source, std::size_t factor, std::vector<double>& kept,
               ProgressTracker& progress, std::size_t& done)
{
    kept.reserve((source.size() + factor - 1) / factor);
    for (std::size_t i = 0; i < source.size(); i += factor) {
        if (progress.isCanceled())
            return false;
        kept.push_back(source[i]);
        progress.update(++done);
    }
    return true;
}

} // namespace

Decimation::Result Decimation::apply(std::span<const double> values, std::span<const double> time, int factor,
                                     Feedback* feedback)
{
    if (factor < 1 || isFactorTooLarge(values.size(), factor))
        return {{}, {}, KernelOutcome::failed(SignalOperationDefinitions::badDecimationFactorMessage())};
    if (feedback)
        feedback->setLabel(SignalOperationDefinitions::decimatingSignalLabel());

    const auto m = static_cast<std::size_t>(factor);
    const std::size_t keptCount = (values.size() + m - 1) / m + (time.size() + m - 1) / m;
    ProgressTracker progress(feedback, keptCount);
    std::size_t done = 0;
    Result result;
    if (!keepEvery(values, m, result.values, progress, done) ||
        !keepEvery(time, m, result.time, progress, done))
        return {{}, {}, KernelOutcome::cancelled()};
    return result;
}

} // namespace zarvi
