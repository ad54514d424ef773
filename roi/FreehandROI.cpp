#include "roi/FreehandROI.h"

#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>

namespace zarvi {

FreehandROI::FreehandROI(int imageWidth, int imageHeight)
    : AbstractROI(RoiKind::Freehand, imageWidth, imageHeight)
{
}

void FreehandROI::paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget*)
{
    if (m_points.isEmpty())
        return;
    QPolygonF outline;
    for (const QPoint& p : m_points)
        outline << QPointF(p);
    QPainterPath path;
    path.addPolygon(outline);
    path.closeSubpath();
    strokeOutline(painter, path);
}

double FreehandROI::measure() const
{
    return enclosedArea();
}

void FreehandROI::setAllPoints(const QList<QPoint>& points)
{
    replacePoints(points);
}

QPointF FreehandROI::labelAnchor() const
{
    return m_points.isEmpty() ? QPointF() : QPointF(m_points[0]);
}

void FreehandROI::enterHoverState(QGraphicsSceneHoverEvent*)
{
    showHovered();
}

void FreehandROI::updateFromCursor(const QPoint& pixel)
{
    if (m_points.isEmpty() || m_points.last() != pixel)
        m_points.append(pixel);
}

void FreehandROI::recomputeBounds()
{
    m_boundingRect = pointsBounds();
}

} // namespace zarvi
