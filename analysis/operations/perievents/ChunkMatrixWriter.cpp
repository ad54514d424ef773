#include "analysis/operations/perievents/ChunkMatrixWriter.h"

#include "framework/Feedback.h"

#include <algorithm>
#include <array>
#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace zarvi {

namespace {

constexpr std::size_t LineDoubles = 8; // one 64-byte cache line
constexpr std::size_t BandSources = 2 * LineDoubles - 1;

/// Stores one cache line of 8 values. Non-temporal where available: the matrix is
/// far larger than the cache and is not read again here, so the line need not be
/// fetched before it is overwritten.
inline void storeLine(double* line, const double* v)
{
#if defined(__SSE2__)
    for (std::size_t u = 0; u < LineDoubles; u += 2)
        _mm_stream_pd(line + u, _mm_set_pd(v[u + 1], v[u]));
#else
    std::copy(v, v + LineDoubles, line);
#endif
}

inline void finishStores()
{
#if defined(__SSE2__)
    _mm_sfence();
#endif
}

template <bool Scaled>
class Writer
{
public:
    Writer(std::span<const double> values, const ChunkPlan& plan, std::span<const RowScale> scales, double* out)
        : m_values(values.data()), m_starts(plan.sourceStarts.data()), m_scales(scales.data()),
          m_rows(plan.rows()), m_cols(plan.length), m_out(out)
    {
    }

    bool run(ProgressTracker* progress)
    {
        const std::size_t total = m_rows * m_cols;
        const auto address = reinterpret_cast<std::uintptr_t>(m_out);
        m_head = std::min(total, ((64 - address % 64) % 64) / sizeof(double));
        m_lineEnd = m_head + (total - m_head) / LineDoubles * LineDoubles;
        for (std::size_t g = 0; g < m_head; ++g)
            m_out[g] = valueAt(g);
        for (std::size_t g = m_lineEnd; g < total; ++g)
            m_out[g] = valueAt(g);
        for (std::size_t band = 0; band * LineDoubles < m_rows; ++band) {
            if (progress && progress->isCanceled()) {
                finishStores();
                return false;
            }
            writeBand(band * LineDoubles);
            if (progress)
                progress->update(std::min(m_rows, (band + 1) * LineDoubles));
        }
        finishStores();
        return true;
    }

private:
    double value(std::size_t row, std::size_t col) const
    {
        const double v = m_values[m_starts[row] + col];
        if constexpr (Scaled)
            return scaled(v, m_scales[row]);
        else
            return v;
    }

    double valueAt(std::size_t g) const { return value(g % m_rows, g / m_rows); }

    /// Writes every whole line whose first value lies in rows [first, first + 8) of
    /// some column. Such a line holds rows first + offset .. first + offset + 7, with
    /// the offset fixed by the column's alignment; past the last row it wraps into
    /// the next column.
    void writeBand(std::size_t first)
    {
        std::array<const double*, BandSources> source{};
        std::array<RowScale, BandSources> scale{};
        const std::size_t available = std::min(BandSources, m_rows - first);
        for (std::size_t r = 0; r < available; ++r) {
            source[r] = m_values + m_starts[first + r];
            if constexpr (Scaled)
                scale[r] = m_scales[first + r];
        }
        const std::size_t step = m_rows % LineDoubles;
        // Offset of the line start within the band: (head - col * rows) mod 8.
        std::size_t offset = m_head % LineDoubles;
        std::array<double, LineDoubles> line{};
        for (std::size_t col = 0; col < m_cols; ++col, offset = (offset + LineDoubles - step) % LineDoubles) {
            const std::size_t row = first + offset;
            if (row >= m_rows)
                continue; // this line starts in the next column's first band
            const std::size_t g = col * m_rows + row;
            if (g + LineDoubles > m_lineEnd)
                continue; // the tail, already stored value by value
            if (offset + LineDoubles <= available) {
                for (std::size_t u = 0; u < LineDoubles; ++u) {
                    const double v = source[offset + u][col];
                    if constexpr (Scaled)
                        line[u] = scaled(v, scale[offset + u]);
                    else
                        line[u] = v;
                }
            } else {
                for (std::size_t u = 0; u < LineDoubles; ++u)
                    line[u] = valueAt(g + u);
            }
            storeLine(m_out + g, line.data());
        }
    }

    const double* m_values;
    const std::size_t* m_starts;
    const RowScale* m_scales;
    std::size_t m_rows;
    std::size_t m_cols;
    double* m_out;
    std::size_t m_head = 0;
    std::size_t m_lineEnd = 0;
};

} // namespace

bool ChunkMatrixWriter::write(std::span<const double> values, const ChunkPlan& plan,
                              std::span<const RowScale> scales, arma::mat& out, ProgressTracker* progress)
{
    out.set_size(plan.rows(), plan.length);
    if (out.is_empty())
        return !(progress && progress->isCanceled());
    if (scales.empty())
        return Writer<false>(values, plan, scales, out.memptr()).run(progress);
    return Writer<true>(values, plan, scales, out.memptr()).run(progress);
}

} // namespace zarvi
