#include "analysis/operations/perievents/FrameStatistics.h"

#include "analysis/operations/perievents/PerieventAnalysis.h"

namespace zarvi {

FrameStatistics::FrameStatistics(const PerieventSideConfig& side, double sampleRate, std::size_t rowLength,
                                 std::span<const ChunkStatistic::Kind> kinds)
    : m_kinds(kinds)
{
    m_frames.reserve(side.timeFrames.size());
    for (const TimeFrame& frame : side.timeFrames) {
        const PerieventCutter::Columns columns =
            PerieventCutter::frameColumns(frame, side.windowStart, sampleRate, rowLength);
        std::vector<double> times = PerieventCutter::frameTimes(frame, columns, sampleRate);
        FixedTimesTrapezoid trapezoid(times);
        m_frames.push_back({columns, std::move(times), std::move(trapezoid)});
    }
}

void FrameStatistics::prepare(std::size_t rows, std::vector<arma::mat>& out) const
{
    out.assign(m_kinds.size(), arma::mat(rows, m_frames.size()));
}

void FrameStatistics::take(std::span<const double> normalisedRow, std::size_t row,
                           std::vector<arma::mat>& out)
{
    for (std::size_t f = 0; f < m_frames.size(); ++f) {
        Frame& frame = m_frames[f];
        const std::span<const double> chunk =
            normalisedRow.subspan(frame.columns.first, frame.columns.last - frame.columns.first);
        for (std::size_t s = 0; s < m_kinds.size(); ++s)
            out[s](row, f) = ChunkStatistic::compute(m_kinds[s], chunk, frame.times, &frame.trapezoid);
    }
}

} // namespace zarvi
