#pragma once

#include <QString>

#include <optional>
#include <span>

namespace zarvi {

class FixedTimesTrapezoid;

/// One statistic of a chunk of values taken at the given times (seconds): what the
/// statistic time frames of the perievent analysis report. Plain functions, any thread.
class ChunkStatistic
{
public:
    enum class Kind
    {
        AUC,
        Mean,
        Median,
        Maximum,
        Minimum,
        Frequency,
        Count
    };

    /// Kind from its name ("AUC", "Mean", "Median", "Maximum", "Minimum", "Frequency", "Count").
    static std::optional<Kind> fromName(const QString& name);
    static QString nameOf(Kind kind);

    /// NaN for an empty chunk, whatever the kind. Otherwise:
    /// - AUC: trapezoidal integral of the values over the times, divided by the span
    ///   from the first time to the greatest time, i.e. the area per second;
    /// - Mean, Median, Maximum, Minimum: NaN when a value is NaN;
    /// - Frequency: 1 / mean interval between consecutive times, 0 for fewer than 2 times;
    /// - Count: the number of values.
    /// `times` (as many as the values) are read by AUC and Frequency only. AUC takes its
    /// integral and span from `trapezoid` when given, which must be over the same times.
    static double compute(Kind kind, std::span<const double> values, std::span<const double> times,
                          FixedTimesTrapezoid* trapezoid = nullptr);
};

} // namespace zarvi
