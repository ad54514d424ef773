#include "image/operations/crop/FrameCrop.h"

#include <climits>
#include <cmath>

namespace zarvi {

namespace {

bool isWholeInt(double value)
{
    return std::isfinite(value) && std::floor(value) == value && value >= INT_MIN && value <= INT_MAX;
}

} // namespace

CropProblem cropRectangle(const std::vector<double>& coordinates, cv::Size frameSize, cv::Rect& rectangle)
{
    if (coordinates.size() != 4)
        return CropProblem::BadCoordinates;
    for (double value : coordinates) {
        if (!isWholeInt(value))
            return CropProblem::BadCoordinates;
    }
    const double x = coordinates[0];
    const double y = coordinates[1];
    const double width = coordinates[2];
    const double height = coordinates[3];
    if (width < 1 || height < 1)
        return CropProblem::BadCoordinates;
    // Compared in double, so that a huge x + width cannot wrap around.
    if (x < 0 || y < 0 || x + width > frameSize.width || y + height > frameSize.height)
        return CropProblem::OutsideFrame;
    rectangle =
        cv::Rect(static_cast<int>(x), static_cast<int>(y), static_cast<int>(width), static_cast<int>(height));
    return CropProblem::None;
}

} // namespace zarvi
