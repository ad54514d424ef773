#pragma once

#include "roi/RoiShape.h"

#include <QGraphicsItem>
#include <QList>
#include <QPen>
#include <QPoint>

class QGraphicsSimpleTextItem;

namespace zarvi {

/// One region of interest over an image shown in a ZarviGraphicsView. Its points are integer
/// image pixels; pixel (x, y) has its centre at scene point (x, y), so a scene position is
/// stored as its nearest pixel (halves away from zero). The label shows the name, or the
/// number in base 10 when there is no name. State 0 is idle, 1 hovered (four-way arrow
/// cursor), 2 being drawn or dragged. While drawn, a cursor position is taken only when its
/// pixel lies strictly inside the image (0 < x < width, 0 < y < height); a drag may leave the
/// image and is checked afterwards by the handler. One shape class per kind supplies the
/// drawing rule and the painting. The handler keeps its items in shared pointers; the scene
/// never owns them. GUI thread.
class AbstractROI : public QGraphicsItem
{
public:
    static constexpr int Idle = 0;
    static constexpr int Hovered = 1;
    static constexpr int Active = 2;

    AbstractROI(RoiKind kind, int imageWidth, int imageHeight);

    /// The pixel whose centre is nearest to a scene position, halves away from zero.
    static QPoint toPixel(const QPointF& scenePos);

    QRectF boundingRect() const override;

protected:
    void hoverMoveEvent(QGraphicsSceneHoverEvent* event) override;
    void hoverLeaveEvent(QGraphicsSceneHoverEvent* event) override;
    /// A drag of the item moves all its points by whole pixels.
    void mouseMoveEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseReleaseEvent(QGraphicsSceneMouseEvent* event) override;
    QVariant itemChange(GraphicsItemChange change, const QVariant& value) override;

public:
    /// A size of the shape: the line's length, an area for area shapes, 0 for a point.
    virtual double measure() const = 0;

protected:
    /// Enters the hovered state on a hover event (see showHovered()).
    virtual void enterHoverState(QGraphicsSceneHoverEvent* event) = 0;
    /// Updates the shape from the cursor pixel while drawing; the first call starts the shape.
    virtual void updateFromCursor(const QPoint& pixel) = 0;

public:
    /// Replaces all points (restoring an edit, loading a stored shape).
    virtual void setAllPoints(const QList<QPoint>& points) = 0;

protected:
    /// Recomputes the cached bounding rectangle from the points.
    virtual void recomputeBounds() = 0;

public:
    /// Where the label sits, in scene coordinates (its text runs up and right from there).
    virtual QPointF labelAnchor() const = 0;

    RoiKind kind() const { return m_kind; }
    const QList<QPoint>& points() const { return m_points; }
    int number() const { return m_number; }
    void setNumber(int number);
    QString name() const { return m_name; }
    void setName(const QString& name);
    /// The text shown beside the shape: the name, else the number.
    QString label() const;
    int state() const { return m_state; }
    void setState(int state);
    int imageWidth() const { return m_imageWidth; }
    int imageHeight() const { return m_imageHeight; }
    /// 0 < x < width and 0 < y < height.
    bool isInsideImage(const QPoint& pixel) const;
    QPen pen() const { return m_pen; }
    void setPen(const QPen& pen);

    /// Clears the points and starts drawing at `scenePos` (state 2); false, with nothing
    /// started, when that pixel is not strictly inside the image.
    bool startDrawing(const QPointF& scenePos);
    /// A cursor move while drawing; false when ignored (not drawing, or outside the image).
    bool drawTo(const QPointF& scenePos);
    /// The shape as data, for views and the file.
    RoiShape toShape() const;
    /// Takes points, number and name from `shape`; false when its kind is not this item's.
    bool setFromShape(const RoiShape& shape);

protected:
    /// Sets state 1 and the four-way arrow cursor; what enterHoverState() does once the
    /// shape may be dragged.
    void showHovered();
    /// Announces the change, stores `points`, recomputes the bounds and moves the label.
    void replacePoints(const QList<QPoint>& points);
    /// Draws `path` with a dark halo under the pen, so it reads on light and dark images;
    /// wider when selected or hovered.
    void strokeOutline(QPainter* painter, const QPainterPath& path) const;
    /// The bounding rectangle of the points, with a margin for the pen.
    QRectF pointsBounds() const;
    /// The area enclosed by the points taken as a closed polygon (shoelace formula).
    double enclosedArea() const;

    QList<QPoint> m_points;
    QRectF m_boundingRect;

private:
    void translate(const QPoint& delta);
    void placeLabel();

    RoiKind m_kind;
    int m_number = 0;
    QString m_name;
    int m_state = Idle;
    int m_imageWidth;
    int m_imageHeight;
    QPen m_pen;
    QGraphicsSimpleTextItem* m_label;
};

} // namespace zarvi
