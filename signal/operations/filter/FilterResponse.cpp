#include "signal/operations/filter/FilterResponse.h"

#include "definitions/SignalOperationDefinitions.h"

#include <algorithm>
#include <cmath>

namespace zarvi {

FilterResponse::Result FilterResponse::compute(const Butterworth& filter, double sampleRate,
                                               std::size_t pointCount, Feedback* feedback)
{
    if (feedback)
        feedback->setLabel(SignalOperationDefinitions::calculatingFilterResponseLabel());
    // The floor is the float literal on purpose: the curve has always bottomed out there.
    const double floor = static_cast<double>(1e-5f);
    const double step = pointCount > 1 ? (sampleRate / 2.0) / static_cast<double>(pointCount - 1) : 0.0;

    Result result;
    result.frequencies.resize(pointCount);
    result.magnitudesDb.resize(pointCount);
    ProgressTracker progress(feedback, pointCount);
    for (std::size_t i = 0; i < pointCount; ++i) {
        if (progress.isCanceled())
            return {{}, {}, KernelOutcome::cancelled()};
        // The response is read at (e / rate) * 0.5, so the point evaluated at e = 2f is
        // the response at f, where it is drawn.
        const double f = step * static_cast<double>(i);
        const double evaluated = 2.0 * f;
        const double magnitude = std::abs(filter.response((evaluated / sampleRate) * 0.5));
        result.frequencies[i] = f;
        result.magnitudesDb[i] = 20.0 * std::log10(std::max(magnitude, floor));
        progress.update(i + 1);
    }
    return result;
}

} // namespace zarvi
