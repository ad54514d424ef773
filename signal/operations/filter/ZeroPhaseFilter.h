#pragma once

#include "datafile/Feedback.h"
#include "signal/operations/KernelOutcome.h"
#include "signal/operations/filter/Butterworth.h"

#include <vector>

namespace zarvi {

/// Filters a signal forward and backward with the same filter, so the result has no
/// phase shift and the magnitude response squared. Runs on the operation's worker thread.
class ZeroPhaseFilter
{
public:
    /// Filters `values` in place. With pad = int(0.1 * n), the signal is extended by pad
    /// copies of its first sample before the start and by its last pad samples in
    /// reverse order after the end, filtered forward, then backward with the state the
    /// forward pass left in the filter (no reset between the passes), and cut back to n
    /// samples. Reports "Applying filter..." from 0 to 100. Filters the signal where it
    /// lies, so on cancel the values are partly filtered and must be discarded.
    static KernelOutcome apply(Butterworth& filter, std::vector<double>& values, Feedback* feedback);
};

} // namespace zarvi
