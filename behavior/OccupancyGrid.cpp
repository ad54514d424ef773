#include "behavior/OccupancyGrid.h"

#include "behavior/operations/measures/ZoneOccupancy.h"

#include <algorithm>

namespace zarvi {

OccupancyGrid OccupancyGrid::compute(std::span<const cv::Point> positions, std::span<const double> durations,
                                     const cv::Rect& area, int cellSize)
{
    OccupancyGrid grid;
    grid.area = area;
    grid.cellSize = std::max(cellSize, 1);
    grid.columns = (area.width + grid.cellSize - 1) / grid.cellSize;
    grid.rows = (area.height + grid.cellSize - 1) / grid.cellSize;
    grid.seconds.assign(static_cast<std::size_t>(grid.columns) * grid.rows, 0.0);
    const std::size_t n = std::min(positions.size(), durations.size());
    for (std::size_t k = 0; k < n; ++k) {
        const cv::Point& p = positions[k];
        if (isMissingPosition(p) || !area.contains(p))
            continue;
        const int column = (p.x - area.x) / grid.cellSize;
        const int row = (p.y - area.y) / grid.cellSize;
        grid.seconds[static_cast<std::size_t>(row) * grid.columns + column] += durations[k];
    }
    return grid;
}

} // namespace zarvi
