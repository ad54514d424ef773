#pragma once

#include "datafile/Feedback.h"
#include "signal/operations/KernelOutcome.h"
#include "signal/operations/filter/Butterworth.h"

#include <cstddef>
#include <vector>

namespace zarvi {

/// The magnitude curve a filter preview draws beside the signal's spectrum.
/// Stateless; runs wherever the preview is computed.
class FilterResponse
{
public:
    struct Result
    {
        std::vector<double> frequencies;  ///< Hz, from 0 to the Nyquist frequency
        std::vector<double> magnitudesDb; ///< 20 log10 of the magnitude, floored at 1e-5
        KernelOutcome outcome;
    };

    /// Evaluates the filter at `pointCount` evenly spaced frequencies f from 0 to
    /// sampleRate / 2. Each point reads the filter's response at the normalised
    /// frequency (f / sampleRate) * 0.5, as the preview has always drawn it; magnitudes
    /// below the single-precision 1e-5 are raised to it, so no point is minus infinity.
    /// Reports "Calculating filter response...".
    static Result compute(const Butterworth& filter, double sampleRate, std::size_t pointCount,
                          Feedback* feedback);
};

} // namespace zarvi
