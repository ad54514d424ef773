#pragma once

#include "datafile/Feedback.h"
#include "signal/operations/KernelOutcome.h"

#include <QString>

#include <vector>

namespace zarvi {

/// Standardises a signal in place: "Standard Z Score" is (x - mean) / sd with the
/// n - 1 standard deviation, "Modified Z Score" is (x - median) / MAD with MAD the
/// median of |x - median|. Stateless; runs on the caller's thread.
class ZScore
{
public:
    /// Applies the method named by `StandardizeMethod`. Fails on an unknown name and on
    /// a signal without spread (sd or MAD of zero), leaving the values unchanged.
    static KernelOutcome apply(const QString& method, std::vector<double>& values, Feedback* feedback);

    /// The middle value; the mean of the two middle values for an even count, 0 when empty.
    static double median(std::vector<double> values);
};

} // namespace zarvi
