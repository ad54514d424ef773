#pragma once

#include "analysis/operations/perievents/ChunkStatistic.h"
#include "analysis/operations/perievents/RowScale.h"

#include <QString>

#include <optional>
#include <span>
#include <vector>

namespace zarvi {

/// Turns a row's baseline samples into the centre and scale that align the row:
/// every value x of the row becomes (x - centre) / scale. Plain functions and a
/// scratch buffer, on the caller's (worker) thread.
class PerieventNormalizer
{
public:
    enum class Method
    {
        /// centre = mean, scale = 1: plain subtraction.
        Mean,
        /// centre = mean, scale = standard deviation with the n - 1 denominator.
        StandardZScore,
        /// centre = median, scale = median of |baseline - centre|: the raw median
        /// absolute deviation, deliberately without a consistency factor such as
        /// 1.4826, so scores are in units of the MAD itself.
        ModifiedZScore
    };

    /// Method from its name ("Mean", "Standard Z-Score", "Modified Z-Score").
    static std::optional<Method> methodFromName(const QString& name);

    /// Inclusive baseline columns inside chunks whose time axis starts at t0:
    /// [(int)((bs - t0) * fs + 0.5), (int)((be - t0) * fs + 0.5)]. nullopt (the
    /// matrix-bounds error) when the matrix has no row or column, the range is
    /// reversed, or either end is not a column of the matrix.
    struct Columns
    {
        std::size_t first = 0;
        std::size_t last = 0;
    };
    static std::optional<Columns> baselineColumns(double baselineStart, double baselineEnd, double t0,
                                                  double sampleRate, std::size_t rows, std::size_t columns);

    /// Centre and scale of one row's baseline. A baseline with a single value has a
    /// standard deviation of 0, and a constant one a MAD of 0: the row then divides
    /// by zero and turns non-finite, which is left visible rather than clamped.
    /// nullopt only for "Modified Z-Score" when the baseline holds a NaN (a median
    /// of NaN is undefined), or for an empty baseline.
    std::optional<RowScale> scaleOf(std::span<const double> baseline, Method method);

private:
    ChunkStatistic m_statistic;
    std::vector<double> m_deviations;
};

} // namespace zarvi
