#pragma once

#include "roi/AbstractROI.h"

namespace zarvi {

/// A rectangle given by two opposite corners: the press pixel and the pixel the cursor
/// reached. With the square constraint (Crop's "Square") the second corner is pulled in so
/// that width and height are equal, towards the first corner, so it stays inside the image.
/// GUI thread.
class RectangleROI : public AbstractROI
{
public:
    RectangleROI(int imageWidth, int imageHeight);

    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;
    /// The area |x1 - x0| * |y1 - y0| in square pixels.
    double measure() const override;
    void setAllPoints(const QList<QPoint>& points) override;
    /// The top left corner.
    QPointF labelAnchor() const override;

    void setSquare(bool square) { m_square = square; }
    bool isSquare() const { return m_square; }
    /// The rectangle between the corners; empty without two points.
    QRectF rect() const;

protected:
    void enterHoverState(QGraphicsSceneHoverEvent* event) override;
    void updateFromCursor(const QPoint& pixel) override;
    void recomputeBounds() override;

private:
    bool m_square = false;
};

} // namespace zarvi
