#pragma once

#include <opencv2/core.hpp>

#include <vector>

namespace zarvi {

/// Why a crop rectangle cannot be used on a frame.
enum class CropProblem
{
    None,
    /// Not four whole numbers, or a width or height below one pixel.
    BadCoordinates,
    /// The rectangle does not lie wholly inside the frame.
    OutsideFrame
};

/// Reads `coordinates` = [x, y, width, height] (x, y the top left pixel) into `rectangle`
/// and checks it against a frame of `frameSize`: every value a whole number, width and
/// height at least 1, x, y >= 0, x + width <= frame width and y + height <= frame height.
/// `rectangle` is set only when the answer is None. Any thread.
CropProblem cropRectangle(const std::vector<double>& coordinates, cv::Size frameSize, cv::Rect& rectangle);

} // namespace zarvi
