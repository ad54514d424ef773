#include "analysis/operations/perievents/PerieventCutter.h"

#include "datafile/Feedback.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace zarvi {

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
        // Advance while i < N - 2 and e > t[i + 1]: on an increasing time vector, the last
        // sample at or before e (at most N - 2), searched by bisection among the samples
        // after the index reached so far, so the index never moves back.
        if (i < n - 2 && e > time[i + 1])
            i = std::lower_bound(time.begin() + i + 1, time.begin() + (n - 1), e) - time.begin() - 1;
        if (i + 1 < n && std::abs(time[i + 1] - e) < std::abs(time[i] - e))
            ++i;
        const std::ptrdiff_t first = i + plan.startOffset;
        const std::ptrdiff_t reserve = i + plan.endOffset;
        if (first < 0 || reserve < 0 || reserve > n - 1)
            continue;
        if (std::isnan(values[static_cast<std::size_t>(first)]))
            continue;
        plan.sourceStarts.push_back(static_cast<std::size_t>(first));
        plan.events.push_back(k);
    }
    return plan;
}

std::vector<double> PerieventCutter::timeAxis(double windowStart, double sampleRate, std::size_t length)
{
    std::vector<double> axis(length, windowStart);
    if (sampleRate > 0.0) {
        for (std::size_t j = 0; j < length; ++j)
            axis[j] = windowStart + static_cast<double>(j) / sampleRate;
    }
    return axis;
}

} // namespace zarvi
