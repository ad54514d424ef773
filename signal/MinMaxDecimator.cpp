#include "signal/MinMaxDecimator.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zarvi {

namespace {

// Minimum and maximum of one column and where they occur.
struct Column
{
    double min = std::numeric_limits<double>::infinity();
    double max = -std::numeric_limits<double>::infinity();
    std::size_t minIndex = 0;
    std::size_t maxIndex = 0;
    bool empty = true;
};

// Extremes of values[from, to) and their first positions. Two interleaved
// accumulator pairs without branches keep the loop free of mispredictions and of
// one long dependency chain; it runs at memory speed.
Column scan(std::span<const double> values, std::size_t from, std::size_t to)
{
    constexpr double inf = std::numeric_limits<double>::infinity();
    double min0 = inf, min1 = inf, max0 = -inf, max1 = -inf;
    std::size_t minAt0 = from, minAt1 = from, maxAt0 = from, maxAt1 = from;
    std::size_t i = from;
    for (; i + 1 < to; i += 2) {
        const double a = values[i];
        const double b = values[i + 1];
        minAt0 = a < min0 ? i : minAt0;
        min0 = a < min0 ? a : min0;
        maxAt0 = a > max0 ? i : maxAt0;
        max0 = a > max0 ? a : max0;
        minAt1 = b < min1 ? i + 1 : minAt1;
        min1 = b < min1 ? b : min1;
        maxAt1 = b > max1 ? i + 1 : maxAt1;
        max1 = b > max1 ? b : max1;
    }
    if (i < to) {
        const double a = values[i];
        minAt0 = a < min0 ? i : minAt0;
        min0 = a < min0 ? a : min0;
        maxAt0 = a > max0 ? i : maxAt0;
        max0 = a > max0 ? a : max0;
    }
    Column column;
    // Equal extremes in both lanes: the earlier sample wins.
    const bool firstMin = min0 < min1 || (min0 == min1 && minAt0 < minAt1);
    const bool firstMax = max0 > max1 || (max0 == max1 && maxAt0 < maxAt1);
    column.min = firstMin ? min0 : min1;
    column.minIndex = firstMin ? minAt0 : minAt1;
    column.max = firstMax ? max0 : max1;
    column.maxIndex = firstMax ? maxAt0 : maxAt1;
    column.empty = !(column.min <= column.max); // only NaN, or nothing
    return column;
}

void appendPoint(MinMaxResult& out, double t, double v)
{
    out.time.push_back(t);
    out.values.push_back(v);
}

void flush(const Column& column, std::span<const double> time, MinMaxResult& out)
{
    if (column.empty)
        return;
    const std::size_t first = std::min(column.minIndex, column.maxIndex);
    const std::size_t second = std::max(column.minIndex, column.maxIndex);
    appendPoint(out, time[first], first == column.minIndex ? column.min : column.max);
    if (second != first)
        appendPoint(out, time[second], second == column.maxIndex ? column.max : column.min);
}

} // namespace

MinMaxResult MinMaxDecimator::reduce(std::span<const double> time, std::span<const double> values,
                                     const MinMaxConfig& config)
{
    MinMaxResult out;
    const std::size_t n = std::min(time.size(), values.size());
    if (n == 0 || !(config.visibleEnd > config.visibleStart) || config.columns == 0)
        return out;
    time = time.first(n);

    // Visible samples are [begin, end); one sample on each side is kept as well.
    const auto begin = static_cast<std::size_t>(
        std::lower_bound(time.begin(), time.end(), config.visibleStart) - time.begin());
    const auto end = static_cast<std::size_t>(std::upper_bound(time.begin(), time.end(), config.visibleEnd) -
                                              time.begin());
    const std::size_t first = begin > 0 ? begin - 1 : 0;
    const std::size_t last = std::min(end + 1, n);
    if (first >= last)
        return out;

    if (last - first <= 2 * config.columns + 2) {
        out.time.reserve(last - first);
        out.values.reserve(last - first);
        for (std::size_t i = first; i < last; ++i)
            if (!std::isnan(values[i]))
                appendPoint(out, time[i], values[i]);
        return out;
    }

    out.reduced = true;
    out.time.reserve(2 * config.columns + 2);
    out.values.reserve(2 * config.columns + 2);
    if (first < begin && !std::isnan(values[first]))
        appendPoint(out, time[first], values[first]);

    // Column c holds the samples from the first at or after start + c * width; finding
    // the borders by bisection leaves a plain min/max scan per column.
    const double width = (config.visibleEnd - config.visibleStart) / static_cast<double>(config.columns);
    std::size_t from = begin;
    for (std::size_t c = 0; c < config.columns && from < end; ++c) {
        std::size_t to = end;
        if (c + 1 < config.columns) {
            const double border = config.visibleStart + static_cast<double>(c + 1) * width;
            to = static_cast<std::size_t>(std::lower_bound(time.begin() + static_cast<std::ptrdiff_t>(from),
                                                           time.begin() + static_cast<std::ptrdiff_t>(end),
                                                           border) -
                                          time.begin());
        }
        Column column = scan(values, from, to);
        flush(column, time, out);
        from = to;
    }

    if (end < last && !std::isnan(values[end]))
        appendPoint(out, time[end], values[end]);
    return out;
}

} // namespace zarvi
