#include "signal/operations/slope/SlopeBaseline.h"

#include "definitions/SignalOperationDefinitions.h"
#include "signal/operations/SampleRate.h"
#include "signal/operations/slope/ArplsBaseline.h"
#include "signal/operations/slope/PolynomialBaseline.h"
#include "signal/operations/smooth/RunningAverage.h"

namespace zarvi {

VectorResult SlopeBaseline::compute(const Config& config, std::span<const double> values,
                                    std::span<const double> time, Feedback* feedback)
{
    using Defs = SignalOperationDefinitions;
    if (config.method == Defs::Arpls)
        return ArplsBaseline::compute(values, config.lambda, config.ratio, feedback);
    if (config.method == Defs::RunningAverage)
        return RunningAverage::compute(values, sampleRateOf(time), config.timeWindow, feedback);
    if (config.method == Defs::Polynomial)
        return PolynomialBaseline::compute(values, time, config.order, feedback);
    return {{}, KernelOutcome::failed(Defs::unknownSlopeMethodMessage().arg(config.method))};
}

} // namespace zarvi
