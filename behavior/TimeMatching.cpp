#include "behavior/TimeMatching.h"

#include <algorithm>
#include <cmath>

namespace zarvi {

std::optional<std::size_t> nearestIndex(std::span<const double> times, double t)
{
    if (times.empty())
        return std::nullopt;
    const auto after = std::lower_bound(times.begin(), times.end(), t);
    if (after == times.begin())
        return 0;
    if (after == times.end())
        return times.size() - 1;
    const auto before = after - 1;
    const auto index = static_cast<std::size_t>((t - *before <= *after - t ? before : after) - times.begin());
    return index;
}

std::optional<std::size_t> nearestWithin(std::span<const double> times, double t, double tolerance)
{
    const std::optional<std::size_t> index = nearestIndex(times, t);
    if (!index || std::abs(times[*index] - t) > tolerance)
        return std::nullopt;
    return index;
}

} // namespace zarvi
