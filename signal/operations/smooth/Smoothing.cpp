#include "signal/operations/smooth/Smoothing.h"

#include "definitions/SignalOperationDefinitions.h"
#include "signal/operations/filter/FilterDesign.h"
#include "signal/operations/filter/ZeroPhaseFilter.h"
#include "signal/operations/smooth/RunningAverage.h"

#include <array>

namespace zarvi {

using Defs = SignalOperationDefinitions;

bool Smoothing::isKnownMethod(const QString& method)
{
    return method == Defs::RunningAverage || method == Defs::LowPassButterworthFilter;
}

KernelOutcome Smoothing::apply(const Config& config, std::vector<double>& values, double sampleRate,
                               Feedback* feedback)
{
    if (config.method == Defs::RunningAverage) {
        VectorResult smoothed = RunningAverage::compute(values, sampleRate, config.timeFrame, feedback);
        if (smoothed.outcome.ok())
            values = std::move(smoothed.values);
        return smoothed.outcome;
    }
    if (config.method == Defs::LowPassButterworthFilter) {
        const std::array<double, 1> cutoff{config.frequency};
        FilterDesign::Result design = FilterDesign::design(Defs::LowPass, cutoff, sampleRate);
        if (!design.outcome.ok())
            return design.outcome;
        return ZeroPhaseFilter::apply(design.filter, values, feedback);
    }
    return KernelOutcome::completed();
}

} // namespace zarvi
