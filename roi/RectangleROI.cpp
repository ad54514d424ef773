#include "roi/RectangleROI.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cstdlib>

namespace zarvi {

RectangleROI::RectangleROI(int imageWidth, int imageHeight)
    : AbstractROI(RoiKind::Rectangle, imageWidth, imageHeight)
{
}

void RectangleROI::paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget*)
{
    if (m_points.size() != 2)
        return;
    QPainterPath path;
    path.addRect(rect());
    strokeOutline(painter, path);
}

double RectangleROI::measure() const
{
    if (m_points.size() != 2)
        return 0.0;
    return static_cast<double>(std::abs(m_points[1].x() - m_points[0].x())) *
           std::abs(m_points[1].y() - m_points[0].y());
}

void RectangleROI::setAllPoints(const QList<QPoint>& points)
{
    replacePoints(points);
}

QPointF RectangleROI::labelAnchor() const
{
    return m_points.size() == 2 ? rect().topLeft() : QPointF();
}

QRectF RectangleROI::rect() const
{
    if (m_points.size() != 2)
        return {};
    return QRectF(QPointF(m_points[0]), QPointF(m_points[1])).normalized();
}

void RectangleROI::enterHoverState(QGraphicsSceneHoverEvent*)
{
    showHovered();
}

void RectangleROI::updateFromCursor(const QPoint& pixel)
{
    if (m_points.isEmpty()) {
        m_points = {pixel, pixel};
        return;
    }
    QPoint corner = pixel;
    if (m_square) {
        const QPoint start = m_points[0];
        const int side = std::min(std::abs(pixel.x() - start.x()), std::abs(pixel.y() - start.y()));
        corner = QPoint(start.x() + (pixel.x() < start.x() ? -side : side),
                        start.y() + (pixel.y() < start.y() ? -side : side));
    }
    m_points[1] = corner;
}

void RectangleROI::recomputeBounds()
{
    m_boundingRect = pointsBounds();
}

} // namespace zarvi
