#pragma once

#include "signal/operations/KernelOutcome.h"

#include <cstddef>
#include <span>
#include <vector>

namespace zarvi {

/// The amplitude spectrum a filter preview draws under the filter's response, from the
/// start of a signal. Stateless; runs wherever the preview is computed.
class SignalSpectrum
{
public:
    /// The preview reads at most this many samples (2^16) from the start of the signal.
    static constexpr std::size_t DefaultSegment = std::size_t{1} << 16;

    struct Result
    {
        std::vector<double> frequencies;  ///< Hz, bin k at k * sampleRate / N, up to the Nyquist frequency
        std::vector<double> magnitudesDb; ///< 20 log10 of the one-sided amplitude, floored at 1e-5
        KernelOutcome outcome;
    };

    /// The one-sided amplitude spectrum of the first N samples, with N the largest length
    /// at most min(values.size(), maxSamples) that the DFT handles fast. A sinusoid of
    /// amplitude A on bin k shows A there (2|X_k| / N; the mean and the Nyquist bin are
    /// |X_k| / N). Nothing is windowed or removed. Amplitudes below the single-precision
    /// 1e-5 are raised to it, as in the filter response. Fails on fewer than two samples
    /// or a rate that is not positive.
    static Result compute(std::span<const double> values, double sampleRate,
                          std::size_t maxSamples = DefaultSegment);
};

} // namespace zarvi
