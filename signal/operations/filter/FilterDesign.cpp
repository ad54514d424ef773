#include "signal/operations/filter/FilterDesign.h"

#include "definitions/SignalOperationDefinitions.h"

#include <algorithm>

namespace zarvi {

using Defs = SignalOperationDefinitions;

FilterDesign::Result FilterDesign::design(const QString& filterType, std::span<const double> cutoffs,
                                          double rate)
{
    const std::optional<FilterKind> kind = kindFromName(filterType);
    if (!kind)
        return {Butterworth{}, KernelOutcome::failed(Defs::unknownFilterTypeMessage().arg(filterType))};

    Result result{Butterworth(*kind), KernelOutcome::completed()};
    const bool outside =
        std::any_of(cutoffs.begin(), cutoffs.end(), [rate](double f) { return !isBelowNyquist(f, rate); });
    const bool lowOrHigh = *kind == FilterKind::LowPass || *kind == FilterKind::HighPass;
    bool designed = false;
    if (!cutoffs.empty() && !outside && lowOrHigh) {
        designed = result.filter.setup(rate, cutoffs.back());
    } else if (!cutoffs.empty() && !outside) {
        const double low = cutoffs.front();
        const double high = cutoffs.back();
        designed = low < high && result.filter.setup(rate, (low + high) / 2.0, high - low);
    }
    if (!designed)
        result.outcome = KernelOutcome::failed(Defs::wrongFilterFrequenciesMessage());
    return result;
}

std::vector<double> FilterDesign::cutoffsFromParameters(const ParameterValues& parameters)
{
    std::vector<double> cutoffs;
    for (const QString& key : {Defs::LowCutoffFrequency, Defs::HighCutoffFrequency}) {
        if (parameters.has(key))
            cutoffs.push_back(parameters.number(key));
    }
    return cutoffs;
}

std::optional<FilterKind> FilterDesign::kindFromName(const QString& filterType)
{
    if (filterType == Defs::LowPass)
        return FilterKind::LowPass;
    if (filterType == Defs::HighPass)
        return FilterKind::HighPass;
    if (filterType == Defs::BandPass)
        return FilterKind::BandPass;
    if (filterType == Defs::BandStop)
        return FilterKind::BandStop;
    return std::nullopt;
}

} // namespace zarvi
