#pragma once

#include "analysis/operations/perievents/ChunkStatistic.h"
#include "analysis/operations/perievents/PerieventCutter.h"
#include "numeric/FixedTimesTrapezoid.h"

#include <armadillo>

#include <span>
#include <vector>

namespace zarvi {

struct PerieventSideConfig;

/// The statistics of a side's time frames taken one normalised row at a time: each
/// frame's columns, times and trapezoid are worked out once for every row. Keeps the
/// trapezoids' scratch, so one object per thread.
class FrameStatistics
{
public:
    FrameStatistics(const PerieventSideConfig& side, double sampleRate, std::size_t rowLength,
                    std::span<const ChunkStatistic::Kind> kinds);

    /// Sizes `out` for `rows` rows: one matrix per kind, a column per time frame.
    void prepare(std::size_t rows, std::vector<arma::mat>& out) const;
    /// Row `row` of each matrix of `out` from the frames of `normalisedRow` (a whole row
    /// of the matrix, rowLength values).
    void take(std::span<const double> normalisedRow, std::size_t row, std::vector<arma::mat>& out);

private:
    struct Frame
    {
        PerieventCutter::Columns columns;
        std::vector<double> times;
        FixedTimesTrapezoid trapezoid;
    };

    std::span<const ChunkStatistic::Kind> m_kinds;
    std::vector<Frame> m_frames;
};

} // namespace zarvi
