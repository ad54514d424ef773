#pragma once

#include <cstddef>
#include <span>

namespace zarvi {

/// The sample rate of `n` samples timed from `first` to `last`: (n - 1) / (last - first),
/// i.e. the reciprocal of the mean sample interval, which is exact for uniformly sampled
/// signals. 0 when there are fewer than two samples or the time span is not positive.
inline double sampleRateOf(std::size_t n, double first, double last)
{
    if (n < 2)
        return 0.0;
    const double span = last - first;
    return span > 0.0 ? static_cast<double>(n - 1) / span : 0.0;
}

/// The sample rate every signal operation derives from a time vector (see above). The
/// perievent analysis keeps its own n / span rule on purpose.
inline double sampleRateOf(std::span<const double> time)
{
    return time.empty() ? 0.0 : sampleRateOf(time.size(), time.front(), time.back());
}

} // namespace zarvi
