#include "signal/operations/photometry/InlierGrid.h"

#include "datafile/TwoHalves.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zarvi {

namespace {

/// Below this many samples a plain count of every sample costs less than sorting them.
constexpr std::size_t FewestSamples = std::size_t{1} << 14;

/// Rows of a column that rounding could put on the wrong side of the band's edge are
/// counted sample by sample; this bounds the rounding, relative to the values' size, that
/// the grid accepts (double arithmetic errs by a few 1e-16 of it).
constexpr double RoundingBound = 1e-12;

/// From this many samples the sort runs on both cores; below it a thread costs more than
/// it saves.
constexpr std::size_t TwoHalvesFrom = std::size_t{1} << 18;

/// The samples' bounds in plain passes the compiler can vectorise; x * 0 turns NaN for a
/// NaN or an infinity, so one sum tells whether every sample is finite.
struct Range
{
    double xMin = 0.0, xMax = 0.0, yMin = 0.0, yMax = 0.0, finite = 0.0;

    Range joined(const Range& other) const
    {
        return {std::min(xMin, other.xMin), std::max(xMax, other.xMax), std::min(yMin, other.yMin),
                std::max(yMax, other.yMax), finite + other.finite};
    }
};

Range rangeOf(std::span<const double> x, std::span<const double> y, std::size_t begin, std::size_t end)
{
    Range r{x[begin], x[begin], y[begin], y[begin], 0.0};
    for (std::size_t i = begin; i < end; ++i) {
        r.xMin = x[i] < r.xMin ? x[i] : r.xMin;
        r.xMax = x[i] > r.xMax ? x[i] : r.xMax;
        r.yMin = y[i] < r.yMin ? y[i] : r.yMin;
        r.yMax = y[i] > r.yMax ? y[i] : r.yMax;
        r.finite += x[i] * 0.0 + y[i] * 0.0;
    }
    return r;
}

} // namespace

inline std::size_t InlierGrid::cellOf(double x, double y) const
{
    const auto column = std::min(m_side - 1, static_cast<std::size_t>((x - m_xMin) * m_xPerColumn));
    const auto row = std::min(m_side - 1, static_cast<std::size_t>((y - m_yMin) * m_yPerRow));
    return column * m_side + row;
}

InlierGrid::InlierGrid(std::span<const double> x, std::span<const double> y)
{
    const std::size_t n = x.size();
    if (n < FewestSamples || y.size() != n || n >= std::numeric_limits<std::uint32_t>::max())
        return;
    // Long signals are sorted in two halves, one on each core; the halves meet only in
    // the running sum, which puts the first half's samples of a cell before the second's,
    // as one pass over all of them would.
    const bool split = n >= TwoHalvesFrom;

    Range lower, upper;
    inTwoHalves(n, split, [&](std::size_t begin, std::size_t end) {
        (begin == 0 ? lower : upper) = rangeOf(x, y, begin, end);
    });
    const Range range = split ? lower.joined(upper) : lower;
    if (range.finite != 0.0)
        return;
    m_xMin = range.xMin;
    m_yMin = range.yMin;
    // About sixteen samples per cell where they spread evenly. Finer cells leave fewer
    // samples to count one by one along a band's edges, but their tables (three of them,
    // a number per cell) outgrow the caches and cost fresh memory: for an hour at 1 kHz
    // the fit took 15 % longer at four samples per cell, and about as long at 64.
    m_side =
        std::clamp<std::size_t>(static_cast<std::size_t>(std::sqrt(static_cast<double>(n)) / 4.0), 16, 1024);
    m_xStep = (range.xMax - m_xMin) / static_cast<double>(m_side);
    m_yStep = (range.yMax - m_yMin) / static_cast<double>(m_side);
    if (!(m_xStep > 0.0) || !(m_yStep > 0.0) || !std::isfinite(m_xStep) || !std::isfinite(m_yStep))
        return;
    m_xPerColumn = 1.0 / m_xStep;
    m_yPerRow = 1.0 / m_yStep;
    m_xMagnitude = std::max(std::fabs(m_xMin), std::fabs(range.xMax));
    m_yMagnitude = std::max(std::fabs(m_yMin), std::fabs(range.yMax));

    // A counting sort by cell: each half's counts, their running sum, then each sample
    // to its place, where the counts become each half's next free place in a cell.
    const std::size_t cells = m_side * m_side;
    std::vector<std::uint32_t> lowerNext(cells, 0), upperNext(split ? cells : 0, 0);
    inTwoHalves(n, split, [&](std::size_t begin, std::size_t end) {
        std::uint32_t* counts = begin == 0 ? lowerNext.data() : upperNext.data();
        for (std::size_t i = begin; i < end; ++i)
            ++counts[cellOf(x[i], y[i])];
    });
    m_cellStart.resize(cells + 1);
    std::uint32_t start = 0;
    for (std::size_t cell = 0; cell < cells; ++cell) {
        m_cellStart[cell] = start;
        const std::uint32_t lowerCount = lowerNext[cell];
        lowerNext[cell] = start;
        start += lowerCount;
        if (split) {
            const std::uint32_t upperCount = upperNext[cell];
            upperNext[cell] = start;
            start += upperCount;
        }
    }
    m_cellStart[cells] = start;
    m_order = std::make_unique_for_overwrite<std::uint32_t[]>(n);
    m_x = x.data();
    m_y = y.data();
    inTwoHalves(n, split, [&](std::size_t begin, std::size_t end) {
        std::uint32_t* next = begin == 0 ? lowerNext.data() : upperNext.data();
        for (std::size_t i = begin; i < end; ++i)
            m_order[next[cellOf(x[i], y[i])]++] = static_cast<std::uint32_t>(i);
    });
    m_count = n;
}

std::size_t InlierGrid::samplesIn(std::size_t column, RowRange rows) const
{
    if (rows.first > rows.last)
        return 0;
    const std::size_t base = column * m_side;
    return m_cellStart[base + static_cast<std::size_t>(rows.last) + 1] -
           m_cellStart[base + static_cast<std::size_t>(rows.first)];
}

std::size_t InlierGrid::inliersIn(std::size_t column, RowRange rows, double a, double b, double c,
                                  double threshold) const
{
    if (rows.first > rows.last)
        return 0;
    const std::size_t base = column * m_side;
    const std::uint32_t end = m_cellStart[base + static_cast<std::size_t>(rows.last) + 1];
    std::size_t count = 0;
    for (std::uint32_t k = m_cellStart[base + static_cast<std::size_t>(rows.first)]; k < end; ++k) {
        const std::uint32_t i = m_order[k];
        count += std::fabs(a * m_x[i] + b * m_y[i] + c) < threshold ? 1 : 0;
    }
    return count;
}

std::size_t InlierGrid::countEverySample(double a, double b, double c, double threshold) const
{
    std::size_t count = 0;
    for (std::size_t i = 0; i < m_count; ++i)
        count += std::fabs(a * m_x[i] + b * m_y[i] + c) < threshold ? 1 : 0;
    return count;
}

std::size_t InlierGrid::count(double a, double b, double c, double threshold, std::size_t needed) const
{
    // The inliers lie in the band |y - (slope x + intercept)| < half.
    const double slope = -a / b;
    const double intercept = -c / b;
    const double half = threshold / std::fabs(b);
    // Where rounding could move the band's edges by a sizeable part of a row (a nearly
    // vertical line, values far from zero for their spread), every sample is counted.
    const double size = std::fabs(slope) * m_xMagnitude + std::fabs(intercept) + m_yMagnitude + half;
    if (!std::isfinite(size) || !(RoundingBound * size < 0.25 * m_yStep))
        return countEverySample(a, b, c, threshold);

    const auto row = [this](double y) {
        // Truncating a value kept above zero floors it, without a call to floor().
        const double r = std::clamp((y - m_yMin) * m_yPerRow, -4.0, static_cast<double>(m_side) + 4.0);
        return static_cast<long long>(r + 8.0) - 8;
    };
    const auto lastRow = static_cast<long long>(m_side) - 1;
    // Rows of a column that the band reaches at all, and rows it covers whole; both kept a
    // row away from the computed edges, so that rounding cannot misplace a sample.
    const auto rowsOf = [&](std::size_t column, RowRange& touched, RowRange& covered) {
        const double x0 = m_xMin + static_cast<double>(column) * m_xStep;
        const double y0 = slope * x0 + intercept;
        const double y1 = slope * (x0 + m_xStep) + intercept;
        const double low = std::min(y0, y1), high = std::max(y0, y1);
        touched = {std::max(0LL, row(low - half) - 1), std::min(lastRow, row(high + half) + 1)};
        covered = {std::max(touched.first, row(high - half) + 2),
                   std::min(touched.last, row(low + half) - 2)};
    };

    // Most lines lose on the cells alone: even every sample of every reached cell is too few.
    std::size_t possible = 0;
    RowRange touched, covered;
    for (std::size_t column = 0; column < m_side; ++column) {
        rowsOf(column, touched, covered);
        possible += samplesIn(column, touched);
    }
    if (possible < needed)
        return possible;

    std::size_t count = 0;
    for (std::size_t column = 0; column < m_side; ++column) {
        rowsOf(column, touched, covered);
        RowRange below = touched, above{0, -1};
        if (covered.first <= covered.last) {
            below.last = covered.first - 1;
            above = {covered.last + 1, touched.last};
        }
        const std::size_t edgeSamples = samplesIn(column, below) + samplesIn(column, above);
        const std::size_t edgeInliers =
            inliersIn(column, below, a, b, c, threshold) + inliersIn(column, above, a, b, c, threshold);
        count += samplesIn(column, covered) + edgeInliers;
        possible -= edgeSamples - edgeInliers;
        if (possible < needed)
            return possible;
    }
    return count;
}

} // namespace zarvi
