#pragma once

#include "signal/operations/KernelOutcome.h"

#include <vector>

namespace zarvi {

/// A kernel's output vector with how the kernel ended; the vector is empty unless
/// the outcome is ok. A plain value.
struct VectorResult
{
    std::vector<double> values;
    KernelOutcome outcome;
};

} // namespace zarvi
