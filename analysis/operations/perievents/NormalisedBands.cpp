#include "analysis/operations/perievents/NormalisedBands.h"

#include "analysis/operations/perievents/PerieventAnalysis.h"

#include <algorithm>

namespace zarvi {

namespace {

/// Bands in memory at once: the one being written, and the second core up to three
/// ahead of it, which evens out the two threads' uneven steps.
constexpr std::size_t BandBuffers = 4;

} // namespace

NormalisedBands::NormalisedBands(std::span<const double> values, const PerieventSideResult& rows,
                                 const PerieventSideConfig& side, double sampleRate,
                                 std::span<const ChunkStatistic::Kind> kinds, std::size_t bandRows,
                                 std::vector<arma::mat>& statistics)
    : m_values(values), m_rows(rows), m_statistics(statistics),
      m_frames(side, sampleRate, rows.rowLength, kinds), m_bandRows(std::max<std::size_t>(bandRows, 1)),
      m_bandCount((rows.rowStarts.size() + m_bandRows - 1) / m_bandRows),
      m_buffers(std::make_unique_for_overwrite<double[]>(
          std::max<std::size_t>(BandBuffers * m_bandRows * rows.rowLength, 1)))
{
    m_frames.prepare(rows.rowStarts.size(), statistics);
    m_work = std::jthread([this] { cutBands(); });
}

NormalisedBands::~NormalisedBands()
{
    stop();
}

void NormalisedBands::stop()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stopped = true;
    }
    m_changed.notify_all();
}

const double* NormalisedBands::next()
{
    std::unique_lock lock(m_mutex);
    const std::size_t band = m_handed++;
    // Asking for this band hands the one before it back.
    m_changed.notify_all();
    m_changed.wait(lock, [&] { return m_stopped || m_cut > band; });
    if (m_stopped)
        return nullptr;
    return m_buffers.get() + (band % BandBuffers) * m_bandRows * m_rows.rowLength;
}

bool NormalisedBands::finished()
{
    const std::lock_guard lock(m_mutex);
    return !m_stopped && m_cut == m_bandCount && m_handed == m_bandCount;
}

void NormalisedBands::cutBands()
{
    const std::size_t rows = m_rows.rowStarts.size();
    const std::size_t columns = m_rows.rowLength;
    for (std::size_t band = 0; band < m_bandCount; ++band) {
        {
            // The band's buffer is free once the writer holds none of the bands it last took.
            std::unique_lock lock(m_mutex);
            m_changed.wait(lock, [&] { return m_stopped || band + 1 < m_handed + BandBuffers; });
            if (m_stopped)
                return;
        }
        double* rowsOut = m_buffers.get() + (band % BandBuffers) * m_bandRows * columns;
        const std::size_t first = band * m_bandRows;
        const std::size_t count = std::min(m_bandRows, rows - first);
        for (std::size_t k = 0; k < count; ++k) {
            double* row = rowsOut + k * columns;
            m_rows.rowScales[first + k].scoreAll(m_values.subspan(m_rows.rowStarts[first + k], columns), row);
            m_frames.take({row, columns}, first + k, m_statistics);
        }
        {
            const std::lock_guard lock(m_mutex);
            m_cut = band + 1;
        }
        m_changed.notify_all();
    }
}

} // namespace zarvi
