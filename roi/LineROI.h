#pragma once

#include "roi/AbstractROI.h"

#include <QCoreApplication>

namespace zarvi {

/// The calibration line: a start (the press pixel) and an end that follows the cursor, drawn
/// rightwards or downwards only and forced onto the axis the cursor is nearer to, so its
/// length in pixels is simply the larger coordinate difference. Each end carries a tick of
/// 10 pixels across it. Labelled "Calibration". GUI thread.
class LineROI : public AbstractROI
{
    Q_DECLARE_TR_FUNCTIONS(LineROI)

public:
    LineROI(int imageWidth, int imageHeight);

    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;
    /// max(|x1 - x0|, |y1 - y0|) in pixels.
    double measure() const override;
    void setAllPoints(const QList<QPoint>& points) override;
    /// Just above the start.
    QPointF labelAnchor() const override;

protected:
    void enterHoverState(QGraphicsSceneHoverEvent* event) override;
    /// With dx = x - x0 and dy = y - y0: a cursor left of or above the start is ignored;
    /// |dx| > |dy| keeps the start's y, |dx| < |dy| the start's x, equal keeps both.
    void updateFromCursor(const QPoint& pixel) override;
    void recomputeBounds() override;
};

} // namespace zarvi
