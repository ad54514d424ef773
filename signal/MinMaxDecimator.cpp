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

    const double scale = static_cast<double>(config.columns) / (config.visibleEnd - config.visibleStart);
    const std::size_t lastColumn = config.columns - 1;
    Column column;
    std::size_t current = 0;
    for (std::size_t i = begin; i < end; ++i) {
        const auto c =
            std::min(static_cast<std::size_t>((time[i] - config.visibleStart) * scale), lastColumn);
        if (c != current) {
            flush(column, time, out);
            column = Column{};
            current = c;
        }
        const double v = values[i];
        if (v < column.min) {
            column.min = v;
            column.minIndex = i;
            column.empty = false;
        }
        if (v > column.max) {
            column.max = v;
            column.maxIndex = i;
            column.empty = false;
        }
    }
    flush(column, time, out);

    if (end < last && !std::isnan(values[end]))
        appendPoint(out, time[end], values[end]);
    return out;
}

} // namespace zarvi
