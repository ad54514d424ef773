#pragma once

#include <cstddef>
#include <future>
#include <system_error>

namespace zarvi {

/// Runs `step(begin, end)` over [0, count) in two halves, the upper one on a second
/// thread, when `split` is true, and over the whole range on this thread otherwise. For
/// loops whose items are independent: the results are those of one pass. Returns where
/// the upper half starts (count when not split). When no second thread can be started,
/// this thread runs both halves. Called from any thread.
template <typename Step> std::size_t inTwoHalves(std::size_t count, bool split, Step&& step)
{
    const std::size_t half = split ? count / 2 : count;
    if (half == count) {
        step(std::size_t{0}, count);
        return count;
    }
    std::future<void> upper;
    try {
        upper = std::async(std::launch::async, [&] { step(half, count); });
    } catch (const std::system_error&) {
        // No second thread to be had: this one takes both halves, in order.
        step(std::size_t{0}, half);
        step(half, count);
        return half;
    }
    step(std::size_t{0}, half);
    upper.get();
    return half;
}

} // namespace zarvi
