#pragma once

#include "datafile/Feedback.h"
#include "signal/operations/VectorResult.h"

#include <span>

namespace zarvi {

/// Centred moving average with mirrored ends, in one pass with an incremental sum.
/// Serves the "Running Average" smoothing and the running-average slope (baseline).
/// Runs on the operation's worker thread.
class RunningAverage
{
public:
    /// W = int(sampleRate x windowSeconds) samples; see computeSamples().
    /// Fails when W is below one sample or longer than the signal.
    static VectorResult compute(std::span<const double> values, double sampleRate, double windowSeconds,
                                Feedback* feedback);
    /// True when a window of `windowSeconds` holds less than one sample at `sampleRate`;
    /// the kernel refuses such a window and the views say so beside the field.
    static bool isWindowTooShort(double sampleRate, double windowSeconds)
    {
        return !(sampleRate * windowSeconds >= 1.0);
    }

    /// With h = W / 2, output i is the sum of the samples i - h to i + h divided by W;
    /// for even W that is W + 1 samples divided by W, which is how the operation has
    /// always scaled it. Indices outside the signal are mirrored about its ends
    /// (k < 0 reads -k, k >= n reads 2n - 2 - k). Checks for cancel once per sample.
    static VectorResult computeSamples(std::span<const double> values, long long window, Feedback* feedback);

    /// computeSamples() into a caller's buffer of the same length as `values`, for
    /// callers that reuse their memory; `output` must not overlap `values`.
    static KernelOutcome computeInto(std::span<const double> values, long long window,
                                     std::span<double> output, Feedback* feedback);
};

} // namespace zarvi
