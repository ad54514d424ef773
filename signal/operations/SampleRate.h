#pragma once

#include <span>

namespace zarvi {

/// The sample rate every signal operation derives from a time vector:
/// (n - 1) / (t[n-1] - t[0]), i.e. the reciprocal of the mean sample interval,
/// which is exact for uniformly sampled signals. 0 when there are fewer than two
/// samples or the time span is not positive. The perievent analysis keeps
/// its own n / span rule on purpose.
inline double sampleRateOf(std::span<const double> time)
{
    const std::size_t n = time.size();
    if (n < 2)
        return 0.0;
    const double span = time[n - 1] - time[0];
    return span > 0.0 ? static_cast<double>(n - 1) / span : 0.0;
}

} // namespace zarvi
