#pragma once

#include "datafile/Feedback.h"
#include "signal/operations/KernelOutcome.h"

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
    /// "Bad value for decimation factor." when M < 1. Reports "Decimating signal...".
    static Result apply(std::span<const double> values, std::span<const double> time, int factor,
                        Feedback* feedback);
};

} // namespace zarvi
