#pragma once

#include "datafile/Feedback.h"
#include "signal/operations/VectorResult.h"

#include <QString>

#include <span>

namespace zarvi {

/// Picks and runs the slope (baseline) method named by `RemoveSlopeMethod`:
/// "arPLS", "Running Average" (centred, over `SlopeTimeWindow(sec)`) or
/// "Polynomial" (degree `SlopeOrder`). Stateless; runs on the caller's thread.
class SlopeBaseline
{
public:
    struct Config
    {
        QString method;
        double lambda = 0.0;
        double ratio = 0.0;
        double timeWindow = 0.0;
        int order = 0;
    };

    /// The baseline of `values`; fails on an unknown method name.
    static VectorResult compute(const Config& config, std::span<const double> values,
                                std::span<const double> time, Feedback* feedback);
};

} // namespace zarvi
