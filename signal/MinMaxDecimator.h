#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace zarvi {

/// What to reduce: the visible time range and how many pixel columns it spans.
struct MinMaxConfig
{
    double visibleStart = 0.0;
    double visibleEnd = 0.0;
    std::size_t columns = 0;
};

/// The points to draw, in time order.
struct MinMaxResult
{
    std::vector<double> time;
    std::vector<double> values;
    bool reduced = false; ///< false when the visible samples were few enough to keep them all
};

/// Reduces a long signal for drawing: the visible range is split into equal time
/// columns and each column keeps only its minimum and its maximum, in the order
/// they occur, so every peak and trough on screen survives while a plot of 10^7
/// samples draws a few thousand points. The sample just before and just after
/// the range are kept so that lines run to the plot's edges. NaN samples are
/// skipped. `time` must be ascending. Pure function, callable from any thread.
class MinMaxDecimator
{
public:
    static MinMaxResult reduce(std::span<const double> time, std::span<const double> values,
                               const MinMaxConfig& config);
};

} // namespace zarvi
