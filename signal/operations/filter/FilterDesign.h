#pragma once

#include "framework/ParameterValues.h"
#include "signal/operations/KernelOutcome.h"
#include "signal/operations/filter/Butterworth.h"

#include <QString>

#include <optional>
#include <span>
#include <vector>

namespace zarvi {

/// Builds the Butterworth filter an operation asks for, from its filter type name,
/// its list of cut-offs and a sample rate, and refuses inconsistent cut-offs.
/// Stateless; called on the operation's worker thread or by a view's preview.
class FilterDesign
{
public:
    struct Result
    {
        Butterworth filter;
        KernelOutcome outcome;
    };

    /// Designs the order-10 filter. Low- and high-pass use the last cut-off; band
    /// filters span the first to the last one (centre = (low + high) / 2,
    /// width = high - low). Fails with "Wrong low-high filter frequencies." when a
    /// cut-off is not strictly between 0 and half the sample rate, or a band is empty.
    static Result design(const QString& filterType, std::span<const double> cutoffs, double sampleRate);

    /// The cut-off list of a parameter map: LowCutoffFrequency first when present,
    /// then HighCutoffFrequency when present.
    static std::vector<double> cutoffsFromParameters(const ParameterValues& parameters);

    /// True when a cut-off lies strictly between 0 and half the sample rate; the
    /// view's messages beside the fields and the design ask the same question.
    static bool isBelowNyquist(double cutoff, double sampleRate)
    {
        return cutoff > 0.0 && cutoff < sampleRate / 2.0;
    }

    /// The filter kind named by a FilterType value, if it is one of the four.
    static std::optional<FilterKind> kindFromName(const QString& filterType);
};

} // namespace zarvi
