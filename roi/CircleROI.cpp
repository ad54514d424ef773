#include "roi/CircleROI.h"

#include <QPainter>
#include <QPainterPath>

#include <cmath>
#include <numbers>

namespace zarvi {

CircleROI::CircleROI(int imageWidth, int imageHeight) : AbstractROI(RoiKind::Circle, imageWidth, imageHeight)
{
}

void CircleROI::paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget*)
{
    if (m_points.size() != 2)
        return;
    QPainterPath path;
    path.addEllipse(QPointF(m_points[0]), radius(), radius());
    strokeOutline(painter, path);
}

double CircleROI::measure() const
{
    const double r = radius();
    return std::numbers::pi * r * r;
}

void CircleROI::setAllPoints(const QList<QPoint>& points)
{
    replacePoints(points);
}

QPointF CircleROI::labelAnchor() const
{
    if (m_points.size() != 2)
        return {};
    const double offset = radius() * std::numbers::sqrt2 / 2.0;
    return QPointF(m_points[0]) - QPointF(offset, offset);
}

int CircleROI::radius() const
{
    if (m_points.size() != 2)
        return 0;
    const QPoint d = m_points[1] - m_points[0];
    return static_cast<int>(std::round(std::hypot(d.x(), d.y())));
}

void CircleROI::enterHoverState(QGraphicsSceneHoverEvent*)
{
    showHovered();
}

void CircleROI::updateFromCursor(const QPoint& pixel)
{
    if (m_points.isEmpty())
        m_points = {pixel, pixel};
    else
        m_points[1] = pixel;
}

void CircleROI::recomputeBounds()
{
    if (m_points.size() != 2) {
        m_boundingRect = pointsBounds();
        return;
    }
    const double r = radius() + 1.0;
    m_boundingRect = QRectF(m_points[0].x() - r, m_points[0].y() - r, 2 * r, 2 * r);
}

} // namespace zarvi
