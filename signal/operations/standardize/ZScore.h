#pragma once

#include "datafile/Feedback.h"
#include "signal/operations/KernelOutcome.h"

#include <QString>

#include <vector>

namespace zarvi {

/// Standardises a signal in place: "Standard Z Score" is (x - mean) / sd with the
/// n - 1 standard deviation, "Modified Z Score" is (x - median) / MAD with MAD the
/// median of |x - median| (Statistics). Stateless; runs on the caller's thread.
class ZScore
{
public:
    /// Applies the method named by `StandardizeMethod`. Fails on an unknown name and on
    /// a signal without spread (sd or MAD of zero, or NaN), leaving the values unchanged.
    static KernelOutcome apply(const QString& method, std::vector<double>& values, Feedback* feedback);
};

} // namespace zarvi
