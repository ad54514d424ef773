#include "roi/RoiShape.h"

#include <array>
#include <utility>

namespace zarvi {

namespace {

const std::array<std::pair<RoiKind, const char*>, 6> kindNames{{
    {RoiKind::Rectangle, "Rectangle"},
    {RoiKind::Circle, "Circle"},
    {RoiKind::Polygon, "Polygon"},
    {RoiKind::Freehand, "Freehand"},
    {RoiKind::Point, "Point"},
    {RoiKind::Line, "Line"},
}};

} // namespace

QString RoiShape::label() const
{
    return name.isEmpty() ? QString::number(number) : name;
}

QString roiKindName(RoiKind kind)
{
    for (const auto& [k, text] : kindNames)
        if (k == kind)
            return QString::fromLatin1(text);
    return {};
}

bool roiKindFromName(const QString& name, RoiKind& kind)
{
    for (const auto& [k, text] : kindNames)
        if (name == QLatin1String(text)) {
            kind = k;
            return true;
        }
    return false;
}

bool roiKindFromCode(int code, RoiKind& kind)
{
    for (const auto& [k, text] : kindNames)
        if (static_cast<int>(k) == code) {
            kind = k;
            return true;
        }
    return false;
}

} // namespace zarvi
