#pragma once

#include "analysis/operations/perievents/RowScale.h"

#include <QString>

#include <optional>
#include <span>
#include <vector>

namespace zarvi {

/// One statistic of a signal chunk (values with their times, seconds): the
/// perievent statistic time frames use it, and so do spike trains, whose times are
/// the spike times. Chunks that share a time axis (one time frame of every trial)
/// prepare it once with setTimes() and then pass only their values. An instance
/// keeps its buffers between calls, so a loop reuses one instance per thread.
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

    /// Sets the times of the chunks that follow.
    void setTimes(std::span<const double> times);

    /// The statistic of scaled(values, scale) at the times set last (as many as the
    /// values for AUC and Frequency); the scale is applied on the fly, so a normalised
    /// chunk need not be copied first. NaN for an empty chunk, whatever the kind. Otherwise:
    /// - AUC: trapezoidal integral of the values over the times, divided by the span
    ///   from the first time to the greatest time, i.e. the area per second;
    /// - Mean, Median (mean of the two middle values for an even count), Maximum, Minimum;
    /// - Frequency: 1 / mean interval between consecutive times, 0 for fewer than 2 times;
    /// - Count: the number of values.
    /// A NaN value makes Median, Maximum and Minimum NaN as it does Mean and AUC.
    double compute(Kind kind, std::span<const double> values, const RowScale& scale = {});

    /// setTimes(times), then compute(kind, values): a chunk with its own times.
    double computeAt(Kind kind, std::span<const double> values, std::span<const double> times);

private:
    double median(std::span<const double> values, const RowScale& scale);

    std::vector<double> m_scratch;
    /// Trapezoid weight of each time: half the interval around it, so that the
    /// integral is one weighted sum of the values.
    std::vector<double> m_weights;
    double m_firstTime = 0.0;
    double m_lastTime = 0.0;
    double m_greatestTime = 0.0;
};

} // namespace zarvi
