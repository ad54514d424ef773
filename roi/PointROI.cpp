#include "roi/PointROI.h"

#include <QPainter>
#include <QPainterPath>

namespace zarvi {

namespace {

// Half the size of the marker, in image pixels.
constexpr int markerRadius = 3;

} // namespace

PointROI::PointROI(int imageWidth, int imageHeight) : AbstractROI(RoiKind::Point, imageWidth, imageHeight) {}

void PointROI::paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget*)
{
    if (m_points.isEmpty())
        return;
    const QPointF p = m_points[0];
    QPainterPath path;
    path.moveTo(p - QPointF(markerRadius, 0));
    path.lineTo(p + QPointF(markerRadius, 0));
    path.moveTo(p - QPointF(0, markerRadius));
    path.lineTo(p + QPointF(0, markerRadius));
    path.addEllipse(p, markerRadius - 1, markerRadius - 1);
    strokeOutline(painter, path);
}

double PointROI::measure() const
{
    return 0.0;
}

void PointROI::setAllPoints(const QList<QPoint>& points)
{
    replacePoints(points);
}

QPointF PointROI::labelAnchor() const
{
    return m_points.isEmpty() ? QPointF(0, 0) : QPointF(m_points[0]) - QPointF(5, 5);
}

void PointROI::enterHoverState(QGraphicsSceneHoverEvent*)
{
    showHovered();
}

void PointROI::updateFromCursor(const QPoint& pixel)
{
    m_points = {pixel};
}

void PointROI::recomputeBounds()
{
    m_boundingRect = pointsBounds().adjusted(-markerRadius, -markerRadius, markerRadius, markerRadius);
}

} // namespace zarvi
