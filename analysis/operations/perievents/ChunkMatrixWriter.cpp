#include "analysis/operations/perievents/ChunkMatrixWriter.h"

#include "datafile/Feedback.h"

#include <algorithm>
#include <array>
#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace zarvi {

namespace {

constexpr std::size_t LineDoubles = 8; // one 64-byte cache line
/// Rows a band may draw from: a line starting on the band's last row reaches 7 rows further.
constexpr std::size_t BandSources = 2 * LineDoubles - 1;

/// The rows of one band: where each row's chunk starts and its scale, in separate
/// arrays so that neighbouring rows load as pairs.
struct BandRows
{
    std::array<const double*, BandSources> source{};
    std::array<double, BandSources> centre{};
    std::array<double, BandSources> inverse{};
};

/// Stores the whole cache line `target` from eight consecutive rows of column `col`,
/// starting at band row `r`: scaled() of each value, computed pairwise. The line is
/// stored past the cache where possible: the matrix is far larger than the cache
/// and is not read again here, so it need not be fetched before being overwritten.
template <bool Scaled>
inline void storeLine(double* target, const BandRows& rows, std::size_t r, std::size_t col)
{
    const double* const* source = rows.source.data() + r;
#if defined(__SSE2__)
    for (std::size_t u = 0; u < LineDoubles; u += 2) {
        __m128d v = _mm_set_pd(source[u + 1][col], source[u][col]);
        if constexpr (Scaled) {
            v = _mm_mul_pd(_mm_sub_pd(v, _mm_loadu_pd(rows.centre.data() + r + u)),
                           _mm_loadu_pd(rows.inverse.data() + r + u));
        }
        _mm_stream_pd(target + u, v);
    }
#else
    for (std::size_t u = 0; u < LineDoubles; ++u) {
        const double v = source[u][col];
        target[u] = Scaled ? scaled(v, RowScale{rows.centre[r + u], rows.inverse[r + u]}) : v;
    }
#endif
}

inline void finishStores()
{
#if defined(__SSE2__)
    _mm_sfence();
#endif
}

template <bool Scaled> class Writer
{
public:
    Writer(std::span<const double> values, const ChunkPlan& plan, std::span<const RowScale> scales,
           double* out)
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
    double valueAt(std::size_t g) const
    {
        const std::size_t row = g % m_rows;
        const double v = m_values[m_starts[row] + g / m_rows];
        if constexpr (Scaled)
            return scaled(v, m_scales[row]);
        else
            return v;
    }

    /// Writes every whole line whose first value lies in rows [first, first + 8) of
    /// some column. Such a line holds rows first + offset .. first + offset + 7, the
    /// offset fixed by the column's alignment; past the last row it wraps into the
    /// next column, and those few lines are gathered value by value.
    void writeBand(std::size_t first)
    {
        BandRows rows;
        const std::size_t available = std::min(BandSources, m_rows - first);
        for (std::size_t r = 0; r < available; ++r) {
            rows.source[r] = m_values + m_starts[first + r];
            if constexpr (Scaled) {
                rows.centre[r] = m_scales[first + r].centre;
                rows.inverse[r] = m_scales[first + r].inverseScale;
            }
        }
        const std::size_t step = m_rows % LineDoubles;
        // Offset of the line start within the band: (head - col * rows) mod 8.
        std::size_t offset = m_head % LineDoubles;
        std::size_t columnStart = first;
        for (std::size_t col = 0; col < m_cols;
             ++col, columnStart += m_rows, offset = (offset + LineDoubles - step) % LineDoubles) {
            const std::size_t g = columnStart + offset;
            if (g + LineDoubles > m_lineEnd)
                continue; // the tail, already stored value by value
            if (offset + LineDoubles <= available) {
                storeLine<Scaled>(m_out + g, rows, offset, col);
            } else if (first + offset < m_rows) {
                std::array<double, LineDoubles> line;
                for (std::size_t u = 0; u < LineDoubles; ++u)
                    line[u] = valueAt(g + u);
                std::copy(line.begin(), line.end(), m_out + g);
            }
            // Otherwise the line starts in the next column's first band.
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
