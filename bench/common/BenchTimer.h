#pragma once

#include <algorithm>
#include <chrono>
#include <functional>
#include <vector>

namespace zarvi::bench {

/// Median wall time in seconds of `repeats` runs of `work`.
inline double medianSeconds(int repeats, const std::function<void()>& work)
{
    std::vector<double> times;
    for (int i = 0; i < repeats; ++i) {
        const auto start = std::chrono::steady_clock::now();
        work();
        times.push_back(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

} // namespace zarvi::bench
