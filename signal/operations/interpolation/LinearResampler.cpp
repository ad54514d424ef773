#include "signal/operations/interpolation/LinearResampler.h"

#include <cmath>
#include <cstddef>

namespace zarvi {

LinearResampler::Result LinearResampler::resample(std::span<const double> time,
                                                  std::span<const double> values, double frequency)
{
    Result result;
    const std::size_t n = time.size();
    if (n == 0 || values.size() != n || !(frequency > 0.0))
        return result;
    const double steps = std::floor((time[n - 1] - time[0]) * frequency + 1e-9);
    if (!(steps >= 0.0 && steps < 2147483647.0))
        return result;
    const auto count = static_cast<std::size_t>(steps) + 1;
    result.time.resize(count);
    result.values.resize(count);
    if (n == 1) {
        result.time[0] = time[0];
        result.values[0] = values[0];
        return result;
    }
    std::size_t j = 0;
    for (std::size_t k = 0; k < count; ++k) {
        const double t = time[0] + static_cast<double>(k) / frequency;
        while (j + 2 < n && time[j + 1] < t)
            ++j;
        const double fraction = (t - time[j]) / (time[j + 1] - time[j]);
        result.time[k] = t;
        result.values[k] = values[j] + (values[j + 1] - values[j]) * fraction;
    }
    return result;
}

} // namespace zarvi
