#pragma once

#include <QString>

#include <optional>
#include <span>
#include <vector>

namespace zarvi {

/// One statistic of a signal chunk (values with their times, seconds): the
/// perievent statistic time frames use it, and so do spike trains, whose times are
/// the spike times. An instance keeps a scratch buffer for the median, so a loop
/// reuses one instance per thread instead of allocating per chunk.
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
    /// - Mean, Median (mean of the two middle values for an even count), Maximum, Minimum;
    /// - Frequency: 1 / mean interval between consecutive times, 0 for fewer than 2 times;
    /// - Count: the number of values.
    /// A NaN value makes Median, Maximum and Minimum NaN as it does Mean and AUC.
    /// `times` must be as long as `values` for AUC and Frequency.
    double compute(Kind kind, std::span<const double> values, std::span<const double> times);

private:
    double median(std::span<const double> values);

    std::vector<double> m_scratch;
};

} // namespace zarvi
