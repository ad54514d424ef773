#pragma once

#include "roi/AbstractROI.h"

namespace zarvi {

/// A circle given by two points: the centre (the press pixel) and a point on the rim (the
/// pixel the cursor reached). The radius is the Euclidean distance between them rounded to
/// whole pixels, the rule the masks of the stored shape use too. GUI thread.
class CircleROI : public AbstractROI
{
public:
    CircleROI(int imageWidth, int imageHeight);

    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;
    /// The area pi r^2 in square pixels.
    double measure() const override;
    void setAllPoints(const QList<QPoint>& points) override;
    /// The upper left point of the rim.
    QPointF labelAnchor() const override;

    /// The rounded radius in pixels; 0 without two points.
    int radius() const;

protected:
    void enterHoverState(QGraphicsSceneHoverEvent* event) override;
    void updateFromCursor(const QPoint& pixel) override;
    void recomputeBounds() override;
};

} // namespace zarvi
