#pragma once

#include "analysis/operations/perievents/ChunkPlan.h"
#include "analysis/operations/perievents/ChunkStatistic.h"
#include "analysis/operations/perievents/RowScale.h"

#include <armadillo>

#include <span>
#include <vector>

namespace zarvi {

class Feedback;

/// A statistic time frame: start and end in signed seconds relative to the event.
struct TimeFrame
{
    double start = 0.0;
    double end = 0.0;
};

/// Computes the statistics of every kept chunk inside the statistic time frames.
/// Runs on the caller's (worker) thread.
class PerieventStatistics
{
public:
    /// Columns [first, last) of a chunk (window starting at windowStart, `length`
    /// columns) that a time frame [a, b] covers: len = (int) round((b - a) * fs),
    /// first = max(0, (int) round((a - windowStart) * fs)), last = min(first + len, length).
    /// A frame reaching past the window end is clipped to the last column; one starting
    /// before the window start begins at column 0 and keeps its length. Empty
    /// (first == last) when nothing is left.
    struct Columns
    {
        std::size_t first = 0;
        std::size_t last = 0;
    };
    static Columns frameColumns(const TimeFrame& frame, double windowStart, double sampleRate,
                                std::size_t length);

    /// Times handed to the statistic with the columns of a frame: (j - first) / fs + a.
    static std::vector<double> frameTimes(const TimeFrame& frame, const Columns& columns, double sampleRate);

    /// One matrix per statistic in `kinds`, with a row per planned chunk and a column
    /// per frame; each entry is the statistic of the chunk's (normalised) values in the
    /// frame's columns, NaN when the frame holds none. Values are read from the signal
    /// with the rows' scales (empty: unchanged), so they equal the matrix built from the
    /// same plan. Polls `feedback` per row; false when cancelled.
    static bool compute(std::span<const double> values, const ChunkPlan& plan,
                        std::span<const RowScale> scales, std::span<const TimeFrame> frames,
                        double windowStart, double sampleRate, std::span<const ChunkStatistic::Kind> kinds,
                        std::vector<arma::mat>& out, Feedback* feedback);
};

} // namespace zarvi
