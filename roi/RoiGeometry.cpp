#include "roi/RoiGeometry.h"

#include <opencv2/imgproc.hpp>

#include <cmath>

namespace zarvi {

namespace {

/// One outline point per degree: the chord between two of them strays from the circle
/// by r (1 - cos 0.5 degree), under half a pixel up to a radius of 13000 pixels, and
/// ellipse2Poly drops the repeats that small radii give.
constexpr int CircleStepDegrees = 1;

std::size_t neededPoints(RoiKind kind)
{
    switch (kind) {
    case RoiKind::Rectangle:
    case RoiKind::Circle:
    case RoiKind::Line:
        return 2;
    case RoiKind::Point:
        return 1;
    case RoiKind::Polygon:
    case RoiKind::Freehand:
        return 3;
    }
    return 0;
}

/// Polygons and freehand paths take any number of points from their minimum on.
bool hasExactCount(RoiKind kind)
{
    return kind != RoiKind::Polygon && kind != RoiKind::Freehand;
}

bool hasNeededPoints(const RoiShape& shape)
{
    const std::size_t needed = neededPoints(shape.kind);
    const std::size_t given = shape.points.size();
    return hasExactCount(shape.kind) ? given == needed : given >= needed;
}

std::vector<cv::Point> circleOutline(cv::Point centre, cv::Point rim)
{
    const int radius = static_cast<int>(std::lround(std::hypot(rim.x - centre.x, rim.y - centre.y)));
    if (radius == 0)
        return {centre};
    std::vector<cv::Point> outline;
    cv::ellipse2Poly(centre, cv::Size(radius, radius), 0, 0, 360, CircleStepDegrees, outline);
    // The arc ends where it began; the outline is closed without the repeat.
    if (outline.size() > 1 && outline.front() == outline.back())
        outline.pop_back();
    return outline;
}

} // namespace

std::vector<cv::Point> roiOutline(const RoiShape& shape)
{
    const std::vector<cv::Point>& p = shape.points;
    if (!hasNeededPoints(shape))
        return {};
    switch (shape.kind) {
    case RoiKind::Rectangle:
        return {p[0], {p[1].x, p[0].y}, p[1], {p[0].x, p[1].y}};
    case RoiKind::Circle:
        return circleOutline(p[0], p[1]);
    case RoiKind::Polygon:
    case RoiKind::Freehand:
    case RoiKind::Point:
    case RoiKind::Line:
        return p;
    }
    return {};
}

cv::Rect roiBounds(const RoiShape& shape)
{
    const std::vector<cv::Point> outline = roiOutline(shape);
    return outline.empty() ? cv::Rect() : cv::boundingRect(outline);
}

void fillRoiMask(const RoiShape& shape, cv::Mat& mask)
{
    mask.create(mask.size(), CV_8UC1);
    mask.setTo(0);
    const std::vector<cv::Point> outline = roiOutline(shape);
    if (outline.empty() || mask.empty())
        return;
    const std::vector<std::vector<cv::Point>> contours{outline};
    cv::drawContours(mask, contours, -1, 255, cv::FILLED, cv::LINE_8);
}

bool isInsideImage(const RoiShape& shape, int width, int height)
{
    const std::vector<cv::Point> outline = roiOutline(shape);
    const cv::Rect image(0, 0, width, height);
    for (const cv::Point& point : outline)
        if (!image.contains(point))
            return false;
    return !outline.empty();
}

double roiArea(const RoiShape& shape)
{
    const std::vector<cv::Point> outline = roiOutline(shape);
    return outline.size() < 3 ? 0.0 : cv::contourArea(outline);
}

bool validateRoi(const RoiShape& shape, int width, int height, QString& error)
{
    // "The <b>Circle</b> <b>ROI3</b>", or without the label when the shape has none yet.
    QString subject = QStringLiteral("The <b>%1</b>").arg(roiKindName(shape.kind));
    if (!shape.name.isEmpty() || shape.number != 0)
        subject += QStringLiteral(" <b>%1</b>").arg(shape.label());
    if (!hasNeededPoints(shape)) {
        const std::size_t needed = neededPoints(shape.kind);
        error = QStringLiteral("%1 needs %2<b>%3</b> %4; it has <b>%5</b>.")
                    .arg(subject, hasExactCount(shape.kind) ? QString() : QStringLiteral("at least "))
                    .arg(needed)
                    .arg(needed == 1 ? QStringLiteral("point") : QStringLiteral("points"))
                    .arg(shape.points.size());
        return false;
    }
    for (const cv::Point& point : roiOutline(shape))
        if (point.x < 0 || point.y < 0 || point.x >= width || point.y >= height) {
            error =
                QStringLiteral("%1 reaches outside the image of <b>%2 x %3</b> pixels at <b>(%4, %5)</b>; "
                               "x must lie in 0 to %6 and y in 0 to %7.")
                    .arg(subject)
                    .arg(width)
                    .arg(height)
                    .arg(point.x)
                    .arg(point.y)
                    .arg(width - 1)
                    .arg(height - 1);
            return false;
        }
    return true;
}

} // namespace zarvi
