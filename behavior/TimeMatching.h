#pragma once

#include <cstddef>
#include <optional>
#include <span>

namespace zarvi {

/// How the behaviour page puts its clocks side by side: the video's frames, the tracked
/// coordinates and the signals all carry times in seconds on the recording's clock (the
/// link's "Time", the coordinates' "Time", the signals' "Time"), so a time on one is
/// matched to the sample of another whose time is nearest. Plain functions, any thread.

/// The index of the entry of `times` (increasing) nearest to `t`; of two equally near, the
/// earlier. Nothing for empty times.
std::optional<std::size_t> nearestIndex(std::span<const double> times, double t);

/// The nearest entry, when it lies within `tolerance` seconds of `t`; nothing otherwise
/// (a time outside the series, or in a hole of it).
std::optional<std::size_t> nearestWithin(std::span<const double> times, double t, double tolerance);

} // namespace zarvi
