#include "roi/PolygonROI.h"

#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>

namespace zarvi {

PolygonROI::PolygonROI(int imageWidth, int imageHeight)
    : AbstractROI(RoiKind::Polygon, imageWidth, imageHeight)
{
}

void PolygonROI::paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget*)
{
    if (m_points.isEmpty())
        return;
    QPolygonF outline;
    for (const QPoint& p : m_points)
        outline << QPointF(p);
    QPainterPath path;
    if (m_closed) {
        path.addPolygon(outline);
        path.closeSubpath();
    } else {
        outline << QPointF(m_cursor);
        path.addPolygon(outline);
    }
    strokeOutline(painter, path);
}

double PolygonROI::measure() const
{
    return enclosedArea();
}

void PolygonROI::setAllPoints(const QList<QPoint>& points)
{
    m_closed = true;
    replacePoints(points);
}

QPointF PolygonROI::labelAnchor() const
{
    return m_points.isEmpty() ? QPointF() : QPointF(m_points[0]);
}

bool PolygonROI::addVertex(const QPointF& scenePos)
{
    const QPoint pixel = toPixel(scenePos);
    if (m_closed || state() != Active || m_points.isEmpty() || !isInsideImage(pixel))
        return false;
    QList<QPoint> points = m_points;
    points.append(pixel);
    m_cursor = pixel;
    replacePoints(points);
    return true;
}

void PolygonROI::close(const QPointF& scenePos)
{
    const QPoint pixel = toPixel(scenePos);
    QList<QPoint> points = m_points;
    if (isInsideImage(pixel) && (points.isEmpty() || points.last() != pixel))
        points.append(pixel);
    m_closed = true;
    replacePoints(points);
}

void PolygonROI::enterHoverState(QGraphicsSceneHoverEvent*)
{
    if (m_closed)
        showHovered();
}

void PolygonROI::updateFromCursor(const QPoint& pixel)
{
    if (m_points.isEmpty()) {
        m_points = {pixel};
        m_closed = false;
    }
    m_cursor = pixel;
}

void PolygonROI::recomputeBounds()
{
    m_boundingRect = pointsBounds();
    if (!m_closed && !m_points.isEmpty())
        m_boundingRect |= QRectF(QPointF(m_cursor), QSizeF(0, 0)).adjusted(-1, -1, 1, 1);
}

} // namespace zarvi
