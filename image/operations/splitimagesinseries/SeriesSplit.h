#pragma once

#include <QString>

#include <cstddef>
#include <optional>
#include <vector>

namespace zarvi {

/// How Split Images in Series cuts a stack.
enum class SplitMethod
{
    /// A new series wherever the step between two consecutive times is at least the duration.
    DetectTimeGaps,
    /// Consecutive series, each holding the frames whose time lies less than the duration
    /// after the series' first frame; the first frame at or beyond starts the next series.
    SplitByDuration
};

/// Times closer than this (seconds) count as equal when they are compared with the
/// duration, so that rounding in a stored time vector does not move a cut. Well below
/// the millisecond resolution of the duration.
inline constexpr double splitTimeTolerance = 1e-6;

/// The duration written as "HH:mm:ss:zzz" (two-digit hours, minutes below 60, seconds
/// below 60, three-digit milliseconds), in seconds; nothing when the text is not in that
/// form or the duration is zero. Any thread.
std::optional<double> parseSplitDuration(const QString& text);

/// The index of the first frame of each series of a stack with times `time` (in
/// seconds, one per frame), in increasing order and starting with 0; `duration` in
/// seconds, above 0. Empty for an empty stack. Any thread.
std::vector<std::size_t> seriesStarts(const std::vector<double>& time, SplitMethod method, double duration);

} // namespace zarvi
