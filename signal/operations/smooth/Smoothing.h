#pragma once

#include "datafile/Feedback.h"
#include "signal/operations/KernelOutcome.h"

#include <QString>

#include <span>
#include <vector>

namespace zarvi {

/// The smoothing shared by the "Smooth Signals" operation and the ΔF/F pre-processing:
/// a running average over a time frame, or a zero-phase low-pass Butterworth filter,
/// chosen by method name. Stateless; runs on the worker thread of the operation that
/// calls it, or a preview's.
class Smoothing
{
public:
    struct Config
    {
        QString method;         ///< "Running Average" or "Low-pass Butterworth Filter"
        double timeFrame = 0.0; ///< seconds, window of the running average
        double frequency = 0.0; ///< Hz, cut-off of the low-pass filter
    };

    /// True when `method` names one of the two smoothing methods.
    static bool isKnownMethod(const QString& method);

    /// Smooths `values`, sampled at `sampleRate`, in place. An empty or unknown method
    /// leaves the values as they are. Fails when the window is shorter than one sample
    /// or the cut-off is not below half the sample rate. On cancel the values may be
    /// partly smoothed and must be discarded.
    static KernelOutcome apply(const Config& config, std::vector<double>& values, double sampleRate,
                               Feedback* feedback);
};

} // namespace zarvi
