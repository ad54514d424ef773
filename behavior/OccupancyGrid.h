#pragma once

#include <opencv2/core.hpp>

#include <span>
#include <vector>

namespace zarvi {

/// Where the animal spent its time over an area of the video, cell by cell: the basis of
/// the occupancy heat map. Plain value, any thread.
struct OccupancyGrid
{
    /// The pixels covered, from the area's top left corner.
    cv::Rect area;
    /// Side of a square cell in pixels.
    int cellSize = 1;
    int columns = 0;
    int rows = 0;
    /// Seconds per cell, row by row.
    std::vector<double> seconds;

    double at(int column, int row) const { return seconds[static_cast<std::size_t>(row) * columns + column]; }

    /// Adds each frame's duration to the cell its position lies in. Frames without a
    /// position, or outside `area`, add nothing. The last column and row may reach past
    /// the area when its sides are not multiples of the cell.
    static OccupancyGrid compute(std::span<const cv::Point> positions, std::span<const double> durations,
                                 const cv::Rect& area, int cellSize);
};

} // namespace zarvi
