#pragma once

#include "roi/RoiShape.h"

#include <QString>

#include <opencv2/core.hpp>

#include <vector>

namespace zarvi {

/// The geometry every user of a region of interest shares: its outline, extent, area,
/// pixel mask and validity. The mask rule here is the one the image operations (the
/// background of Remove Background, the cells of ROI signals) depend on, so it lives in
/// one place. Plain functions over RoiShape; any thread.

/// The closed outline in image pixels. Rectangle: the four corners spanned by its two
/// opposite corners; Circle: the rim around points[0] with the radius the rounded
/// distance to points[1]; Polygon and Freehand: the vertices; Point: the point; Line:
/// both ends. Empty when the shape lacks the points its kind needs.
std::vector<cv::Point> roiOutline(const RoiShape& shape);

/// The pixel extent of the outline, both ends included (width = max x - min x + 1);
/// an empty rectangle for an empty outline.
cv::Rect roiBounds(const RoiShape& shape);

/// Makes `mask` (which keeps its size, the image's) an 8-bit single-channel image of
/// zeros, then fills the outline with 255: all contours, filled, 8-connected, every
/// nesting level. The pixels of the outline itself are inside.
void fillRoiMask(const RoiShape& shape, cv::Mat& mask);

/// Every point of the outline lies in the image: 0 <= x < width and 0 <= y < height
/// (for a circle, its whole rim).
bool isInsideImage(const RoiShape& shape, int width, int height);

/// The area enclosed by the outline (cv::contourArea, in square pixels between pixel
/// centres, so a 10 x 10 pixel rectangle has 81); 0 for points, lines and shapes that
/// enclose nothing.
double roiArea(const RoiShape& shape);

/// The shape has the points its kind needs (Rectangle, Circle, Line: 2; Point: 1;
/// Polygon, Freehand: at least 3) and lies inside a width x height image; otherwise
/// false and `error` says why, in rich text.
bool validateRoi(const RoiShape& shape, int width, int height, QString& error);

} // namespace zarvi
