#include "roi/LineROI.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cstdlib>

namespace zarvi {

namespace {

constexpr int tickHalfLength = 5;

} // namespace

LineROI::LineROI(int imageWidth, int imageHeight) : AbstractROI(RoiKind::Line, imageWidth, imageHeight)
{
    setName(tr("Calibration"));
}

void LineROI::paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget*)
{
    if (m_points.size() != 2)
        return;
    const QPoint start = m_points[0];
    const QPoint end = m_points[1];
    QPainterPath path;
    path.moveTo(start);
    path.lineTo(end);
    // A vertical line gets horizontal ticks and a horizontal line vertical ones.
    const bool horizontalTicks = std::abs(end.x() - start.x()) <= std::abs(end.y() - start.y());
    const QPoint across = horizontalTicks ? QPoint(tickHalfLength, 0) : QPoint(0, tickHalfLength);
    for (const QPoint& p : {start, end}) {
        path.moveTo(p - across);
        path.lineTo(p + across);
    }
    strokeOutline(painter, path);
}

double LineROI::measure() const
{
    if (m_points.size() != 2)
        return 0.0;
    return std::max(std::abs(m_points[1].x() - m_points[0].x()), std::abs(m_points[1].y() - m_points[0].y()));
}

void LineROI::setAllPoints(const QList<QPoint>& points)
{
    replacePoints(points);
}

QPointF LineROI::labelAnchor() const
{
    return m_points.isEmpty() ? QPointF() : QPointF(m_points[0]) - QPointF(0, tickHalfLength + 1);
}

void LineROI::enterHoverState(QGraphicsSceneHoverEvent*)
{
    showHovered();
}

void LineROI::updateFromCursor(const QPoint& pixel)
{
    if (m_points.isEmpty()) {
        m_points = {pixel, pixel};
        return;
    }
    const QPoint start = m_points[0];
    const int dx = pixel.x() - start.x();
    const int dy = pixel.y() - start.y();
    if (dx < 0 || dy < 0)
        return;
    if (dx > dy)
        m_points[1] = QPoint(pixel.x(), start.y());
    else if (dx < dy)
        m_points[1] = QPoint(start.x(), pixel.y());
    else
        m_points[1] = pixel;
}

void LineROI::recomputeBounds()
{
    m_boundingRect =
        pointsBounds().adjusted(-tickHalfLength, -tickHalfLength, tickHalfLength, tickHalfLength);
}

} // namespace zarvi
