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

    /// The magnitude at `pointCount` evenly spaced frequencies f from 0 to sampleRate / 2,
    /// each drawn at f, so that the -3 dB point sits on the cut-off. The filter is read
    /// at the normalised frequency (e / sampleRate) * 0.5 with the evaluated point
    /// e = 2f running from 0 to sampleRate; magnitudes below the single-precision 1e-5
    /// are raised to it, so no point is minus infinity.
    /// Reports "Calculating filter response...".
    static Result compute(const Butterworth& filter, double sampleRate, std::size_t pointCount,
                          Feedback* feedback);
};

} // namespace zarvi
