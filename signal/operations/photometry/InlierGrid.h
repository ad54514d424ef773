#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace zarvi {

/// The samples of a line fit sorted into a grid of cells over their range, so that the
/// inliers of a line (the samples with |a x + b y + c| < threshold) are counted from
/// whole cells where the band around the line clearly holds a cell, and sample by sample
/// only in the cells along the band's edges. The count is exactly that of a pass over
/// every sample: the cells taken whole lie a full row inside the band, further than any
/// rounding could move a sample. Keeps the samples' addresses, so it lives no longer than
/// they do. Built once per fit, on the fit's thread, which sorts long signals with a second
/// thread; counted from then on by either.
class InlierGrid
{
public:
    /// Sorts the samples into cells; leaves the grid unusable for few samples, samples
    /// that are not all finite, or more samples than its offsets hold.
    InlierGrid(std::span<const double> x, std::span<const double> y);

    bool usable() const { return m_count > 0; }

    /// The inlier count of the line when it is at least `needed`; otherwise some count
    /// below `needed`, often found from the cells alone.
    std::size_t count(double a, double b, double c, double threshold, std::size_t needed) const;

private:
    struct RowRange
    {
        long long first = 0;
        long long last = -1;
    };

    std::size_t cellOf(double x, double y) const;
    std::size_t samplesIn(std::size_t column, RowRange rows) const;
    std::size_t inliersIn(std::size_t column, RowRange rows, double a, double b, double c,
                          double threshold) const;
    std::size_t countEverySample(double a, double b, double c, double threshold) const;

    std::size_t m_side = 0;
    double m_xMin = 0.0;
    double m_yMin = 0.0;
    double m_xStep = 0.0;
    double m_yStep = 0.0;
    /// The inverse steps: a sample's cell is found by multiplying.
    double m_xPerColumn = 0.0;
    double m_yPerRow = 0.0;
    /// The largest |x| and |y|, for the size of rounding errors.
    double m_xMagnitude = 0.0;
    double m_yMagnitude = 0.0;
    /// Offset in m_points of each cell's first sample, cell = column * side + row, and the
    /// sample count at the end.
    std::vector<std::uint32_t> m_cellStart;
    /// The samples' indices, cell after cell; left unset until sorted in, as every one is
    /// written. The samples themselves stay where the caller keeps them.
    std::unique_ptr<std::uint32_t[]> m_order;
    const double* m_x = nullptr;
    const double* m_y = nullptr;
    std::size_t m_count = 0;
};

} // namespace zarvi
