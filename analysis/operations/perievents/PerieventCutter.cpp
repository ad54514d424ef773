#include "analysis/operations/perievents/PerieventCutter.h"

#include "datafile/Feedback.h"

#include <algorithm>
#include <climits>
#include <cmath>

namespace zarvi {

namespace {

/// The (int) conversion, truncating toward zero, that all chunk index arithmetic uses;
/// nullopt for NaN or a value outside the range of int, where the cast is undefined.
std::optional<int> truncatedIndex(double value)
{
    if (!(value > static_cast<double>(INT_MIN) - 1.0 && value < static_cast<double>(INT_MAX) + 1.0))
        return std::nullopt;
    return static_cast<int>(value);
}

} // namespace

double PerieventCutter::sampleRate(std::span<const double> time)
{
    const double span = time.empty() ? 0.0 : time.back() - time.front();
    return span > 0.0 ? static_cast<double>(time.size()) / span : 0.0;
}

std::optional<ChunkPlan> PerieventCutter::plan(std::span<const double> time, std::span<const double> values,
                                               std::span<const double> eventTimes, double windowStart,
                                               double windowEnd, double sampleRate, Feedback* feedback)
{
    ChunkPlan plan;
    const std::optional<int> startOffset = truncatedIndex(std::round(sampleRate * windowStart));
    const std::optional<int> endOffset = truncatedIndex(std::round(sampleRate * windowEnd) + 1.0);
    const auto n = static_cast<std::ptrdiff_t>(time.size());
    // A window too wide to index cannot fit in any recording: no rows.
    if (!startOffset || !endOffset)
        return plan;
    plan.startOffset = *startOffset;
    plan.endOffset = *endOffset;
    if (plan.endOffset <= plan.startOffset || n == 0)
        return plan;
    plan.length = static_cast<std::size_t>(static_cast<long long>(plan.endOffset) - plan.startOffset);

    std::ptrdiff_t i = 0;
    for (std::size_t k = 0; k < eventTimes.size(); ++k) {
        if (feedback && feedback->isCanceled())
            return std::nullopt;
        const double e = eventTimes[k];
        // The last sample at or before e (at most N - 2), searched among the samples
        // after the index reached so far, so the index never moves back.
        if (i < n - 2 && e > time[i + 1])
            i = std::lower_bound(time.begin() + i + 1, time.begin() + (n - 1), e) - time.begin() - 1;
        if (i + 1 < n && std::abs(time[i + 1] - e) < std::abs(time[i] - e))
            ++i;
        const std::ptrdiff_t first = i + plan.startOffset;
        const std::ptrdiff_t reserve = i + plan.endOffset;
        if (first < 0 || reserve < 0 || reserve > n - 1 ||
            std::isnan(values[static_cast<std::size_t>(first)]))
            continue;
        plan.sourceStarts.push_back(static_cast<std::size_t>(first));
        plan.events.push_back(k);
    }
    return plan;
}

std::vector<double> PerieventCutter::timeAxis(double windowStart, double sampleRate, std::size_t length)
{
    std::vector<double> axis(length, windowStart);
    for (std::size_t j = 0; sampleRate > 0.0 && j < length; ++j)
        axis[j] = windowStart + static_cast<double>(j) / sampleRate;
    return axis;
}

PerieventCutter::Columns PerieventCutter::frameColumns(const TimeFrame& frame, double windowStart,
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

std::vector<double> PerieventCutter::frameTimes(const TimeFrame& frame, const Columns& columns,
                                                double sampleRate)
{
    std::vector<double> times(columns.last - columns.first);
    for (std::size_t j = 0; j < times.size(); ++j)
        times[j] = static_cast<double>(j) / sampleRate + frame.start;
    return times;
}

std::optional<PerieventCutter::Columns> PerieventCutter::baselineColumns(double baselineStart,
                                                                         double baselineEnd, double t0,
                                                                         double sampleRate, std::size_t rows,
                                                                         std::size_t columns)
{
    // Truncation toward zero after adding one half (not rounding: -0.7 gives column 0).
    const std::optional<int> first = truncatedIndex((baselineStart - t0) * sampleRate + 0.5);
    const std::optional<int> last = truncatedIndex((baselineEnd - t0) * sampleRate + 0.5);
    if (!first || !last || rows == 0 || columns == 0 || *last < *first || *first < 0 ||
        static_cast<std::size_t>(*last) >= columns)
        return std::nullopt;
    return Columns{static_cast<std::size_t>(*first), static_cast<std::size_t>(*last) + 1};
}

} // namespace zarvi
