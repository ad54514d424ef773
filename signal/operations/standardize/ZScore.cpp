#include "signal/operations/standardize/ZScore.h"

#include "definitions/SignalOperationDefinitions.h"
#include "numeric/Statistics.h"

#include <cmath>

namespace zarvi {

KernelOutcome ZScore::apply(const QString& method, std::vector<double>& values, Feedback* feedback)
{
    using Defs = SignalOperationDefinitions;
    Statistics::Scale scale;
    if (method == Defs::StandardZScore)
        scale = Statistics::standardScore(values);
    else if (method == Defs::ModifiedZScore)
        scale = Statistics::modifiedScore(values);
    else
        return KernelOutcome::failed(Defs::unknownStandardizeMethodMessage().arg(method));
    if (feedback && feedback->isCanceled())
        return KernelOutcome::cancelled();
    if (!(scale.scale > 0.0) || !std::isfinite(scale.scale))
        return KernelOutcome::failed(Defs::constantSignalStandardizeMessage());
    scale.scoreAll(values, values.data());
    return KernelOutcome::completed();
}

} // namespace zarvi
