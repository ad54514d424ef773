#pragma once

#include <QString>

#include <opencv2/core.hpp>

#include <vector>

namespace zarvi {

/// The kind of a region of interest. The numbers are the `Shape` attribute of an ROI
/// stored in a data file: never renumber them.
enum class RoiKind
{
    Rectangle = 1,
    Circle = 2,
    Polygon = 3,
    Freehand = 4,
    Point = 5,
    Line = 6
};

/// One region of interest as data: its kind, its defining points in image pixels (in
/// drawing order), its number and its name. The points mean, per kind: Rectangle, two
/// opposite corners; Circle, the centre and a point on the rim; Polygon and Freehand,
/// the vertices in order (closed implicitly); Point, one point; Line, start and end.
/// Widget-free, so the command line, the operations and the views share it. Plain
/// value, any thread.
struct RoiShape
{
    RoiKind kind = RoiKind::Rectangle;
    std::vector<cv::Point> points;
    int number = 0;
    QString name;

    /// The name, or the number in base 10 when there is no name.
    QString label() const;
};

/// "Rectangle", "Circle", "Polygon", "Freehand", "Point", "Line".
QString roiKindName(RoiKind kind);
/// The kind named `name` (as roiKindName gives it); false for any other text.
bool roiKindFromName(const QString& name, RoiKind& kind);
/// The kind stored as `code`; false for a code no kind has.
bool roiKindFromCode(int code, RoiKind& kind);

} // namespace zarvi
