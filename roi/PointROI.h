#pragma once

#include "roi/AbstractROI.h"

namespace zarvi {

/// A single pixel, set by a click (and following the cursor while the button is held),
/// marked by a cross in a small ring. GUI thread.
class PointROI : public AbstractROI
{
public:
    PointROI(int imageWidth, int imageHeight);

    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;
    /// Always 0: a point has no size.
    double measure() const override;
    void setAllPoints(const QList<QPoint>& points) override;
    /// (x - 5, y - 5), or (0, 0) without a point.
    QPointF labelAnchor() const override;

protected:
    void enterHoverState(QGraphicsSceneHoverEvent* event) override;
    void updateFromCursor(const QPoint& pixel) override;
    void recomputeBounds() override;
};

} // namespace zarvi
