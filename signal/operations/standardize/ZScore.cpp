#include "signal/operations/standardize/ZScore.h"

#include "definitions/SignalOperationDefinitions.h"

#include <algorithm>
#include <cmath>

namespace zarvi {

namespace {

struct CentreAndSpread
{
    double centre = 0.0;
    double spread = 0.0;
};

CentreAndSpread meanAndDeviation(const std::vector<double>& values)
{
    const double n = static_cast<double>(values.size());
    double sum = 0.0;
    for (const double v : values)
        sum += v;
    const double mean = sum / n;
    double squares = 0.0;
    for (const double v : values)
        squares += (v - mean) * (v - mean);
    return {mean, values.size() > 1 ? std::sqrt(squares / (n - 1.0)) : 0.0};
}

CentreAndSpread medianAndAbsoluteDeviation(const std::vector<double>& values)
{
    const double centre = ZScore::median(values);
    std::vector<double> deviations(values.size());
    std::transform(values.begin(), values.end(), deviations.begin(),
                   [centre](double v) { return std::fabs(v - centre); });
    return {centre, ZScore::median(std::move(deviations))};
}

} // namespace

double ZScore::median(std::vector<double> values)
{
    if (values.empty())
        return 0.0;
    const std::size_t middle = values.size() / 2;
    std::nth_element(values.begin(), values.begin() + middle, values.end());
    const double upper = values[middle];
    if (values.size() % 2 == 1)
        return upper;
    const double lower = *std::max_element(values.begin(), values.begin() + middle);
    return (lower + upper) / 2.0;
}

KernelOutcome ZScore::apply(const QString& method, std::vector<double>& values, Feedback* feedback)
{
    using Defs = SignalOperationDefinitions;
    CentreAndSpread statistics;
    if (method == Defs::StandardZScore)
        statistics = meanAndDeviation(values);
    else if (method == Defs::ModifiedZScore)
        statistics = medianAndAbsoluteDeviation(values);
    else
        return KernelOutcome::failed(Defs::unknownStandardizeMethodMessage().arg(method));
    if (feedback && feedback->isCanceled())
        return KernelOutcome::cancelled();
    if (!(statistics.spread > 0.0) || !std::isfinite(statistics.spread))
        return KernelOutcome::failed(Defs::constantSignalStandardizeMessage());
    for (double& v : values)
        v = (v - statistics.centre) / statistics.spread;
    return KernelOutcome::completed();
}

} // namespace zarvi
