#include "analysis/operations/perievents/PerieventStatistics.h"

#include "datafile/Feedback.h"

#include <algorithm>
#include <cmath>

namespace zarvi {

PerieventStatistics::Columns PerieventStatistics::frameColumns(const TimeFrame& frame, double windowStart,
                                                               double sampleRate, std::size_t length)
{
    const std::optional<int> span = truncatedIndex(std::round((frame.end - frame.start) * sampleRate));
    const std::optional<int> start = truncatedIndex(std::round((frame.start - windowStart) * sampleRate));
    if (!span || !start || *span <= 0)
        return {};
    const auto first = static_cast<long long>(std::max(0, *start));
    const long long last = std::min(first + *span, static_cast<long long>(length));
    if (last <= first)
        return {};
    return {static_cast<std::size_t>(first), static_cast<std::size_t>(last)};
}

std::vector<double> PerieventStatistics::frameTimes(const TimeFrame& frame, const Columns& columns,
                                                    double sampleRate)
{
    std::vector<double> times(columns.last - columns.first);
    for (std::size_t j = columns.first; j < columns.last; ++j)
        times[j - columns.first] = static_cast<double>(j - columns.first) / sampleRate + frame.start;
    return times;
}

bool PerieventStatistics::compute(std::span<const double> values, const ChunkPlan& plan,
                                  std::span<const RowScale> scales, std::span<const TimeFrame> frames,
                                  double windowStart, double sampleRate,
                                  std::span<const ChunkStatistic::Kind> kinds, std::vector<arma::mat>& out,
                                  Feedback* feedback)
{
    out.resize(kinds.size());
    for (arma::mat& matrix : out)
        matrix.set_size(plan.rows(), frames.size());

    // Frame by frame, so that each frame's times are prepared once for all rows.
    ChunkStatistic statistic;
    for (std::size_t f = 0; f < frames.size(); ++f) {
        const Columns columns = frameColumns(frames[f], windowStart, sampleRate, plan.length);
        statistic.setTimes(frameTimes(frames[f], columns, sampleRate));
        for (std::size_t row = 0; row < plan.rows(); ++row) {
            if (feedback && feedback->isCanceled())
                return false;
            const std::span<const double> chunk =
                values.subspan(plan.sourceStarts[row] + columns.first, columns.last - columns.first);
            const RowScale scale = scales.empty() ? RowScale{} : scales[row];
            for (std::size_t s = 0; s < kinds.size(); ++s)
                out[s](row, f) = statistic.compute(kinds[s], chunk, scale);
        }
    }
    return true;
}

} // namespace zarvi
