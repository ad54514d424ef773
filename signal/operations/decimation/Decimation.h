#pragma once

#include "datafile/Feedback.h"
#include "signal/operations/KernelOutcome.h"

#include <cstddef>
#include <span>
#include <vector>

namespace zarvi {

/// Lowers a signal's sample rate by an integer factor by keeping every M-th sample,
/// without anti-alias filtering. Runs on the operation's worker thread.
class Decimation
{
public:
    struct Result
    {
        std::vector<double> values;
        std::vector<double> time;
        KernelOutcome outcome;
    };

    /// Keeps the samples with index i mod M == 0 of both vectors. Fails with
    /// "Bad value for decimation factor." when M < 1 or too large for the signal.
    /// Reports "Decimating signal...".
    static Result apply(std::span<const double> values, std::span<const double> time, int factor,
                        Feedback* feedback);

    /// True when a factor above 1 would leave fewer than two of `sampleCount` samples: a
    /// signal of one sample has no sample rate, so such a factor is a mistake.
    static bool isFactorTooLarge(std::size_t sampleCount, int factor)
    {
        return factor > 1 &&
               (sampleCount + static_cast<std::size_t>(factor) - 1) / static_cast<std::size_t>(factor) < 2;
    }
};

} // namespace zarvi
