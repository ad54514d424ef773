#pragma once

#include "roi/AbstractROI.h"

namespace zarvi {

/// A polygon drawn vertex by vertex: each click appends a vertex, a line runs from the last
/// vertex to the cursor, and a double-click appends the cursor pixel (unless it is the last
/// vertex already) and closes the polygon. Only a closed polygon shows the hover cursor and
/// counts as finished. A polygon set from stored points is closed. GUI thread.
class PolygonROI : public AbstractROI
{
public:
    PolygonROI(int imageWidth, int imageHeight);

    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;
    /// The enclosed area in square pixels.
    double measure() const override;
    void setAllPoints(const QList<QPoint>& points) override;
    /// The first vertex.
    QPointF labelAnchor() const override;

    /// Appends the click's pixel while drawing; false when not drawing an open polygon or
    /// the pixel is not strictly inside the image.
    bool addVertex(const QPointF& scenePos);
    /// The double-click: appends its pixel unless it equals the last vertex or lies
    /// outside the image, then closes the polygon.
    void close(const QPointF& scenePos);
    bool isClosed() const { return m_closed; }

protected:
    void enterHoverState(QGraphicsSceneHoverEvent* event) override;
    /// The first call places the first vertex; later ones move the line to the cursor.
    void updateFromCursor(const QPoint& pixel) override;
    void recomputeBounds() override;

private:
    bool m_closed = false;
    QPoint m_cursor;
};

} // namespace zarvi
