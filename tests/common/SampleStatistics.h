#pragma once

#include <cmath>
#include <vector>

namespace zarvi::test {

/// Standard deviation with the n - 1 denominator, written out plainly as the
/// independent reference the kernels are checked against.
inline double sampleDeviation(const std::vector<double>& v)
{
    double mean = 0.0;
    for (const double x : v)
        mean += x;
    mean /= static_cast<double>(v.size());
    double squares = 0.0;
    for (const double x : v)
        squares += (x - mean) * (x - mean);
    return std::sqrt(squares / static_cast<double>(v.size() - 1));
}

} // namespace zarvi::test
