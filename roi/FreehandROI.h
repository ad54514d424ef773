#pragma once

#include "roi/AbstractROI.h"

namespace zarvi {

/// A region traced by hand: while the button is held, each cursor pixel different from the
/// last one is added to the path, which is closed from its end back to its start. GUI
/// thread.
class FreehandROI : public AbstractROI
{
public:
    FreehandROI(int imageWidth, int imageHeight);

    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;
    /// The enclosed area in square pixels.
    double measure() const override;
    void setAllPoints(const QList<QPoint>& points) override;
    /// The start of the path.
    QPointF labelAnchor() const override;

protected:
    void enterHoverState(QGraphicsSceneHoverEvent* event) override;
    void updateFromCursor(const QPoint& pixel) override;
    void recomputeBounds() override;
};

} // namespace zarvi
