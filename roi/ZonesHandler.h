#pragma once

#include "roi/AbstractROIHandler.h"

namespace zarvi {

/// The zones of the behaviour video: any number of them, each named "Zone%1" with its
/// number (1, 2, ... in the order they were finished; a number stays with its zone and a
/// removed zone's number is not given again while a higher one exists), drawn in the shape
/// chosen under "Select Zones Shape". GUI thread.
class ZonesHandler : public AbstractROIHandler
{
    Q_OBJECT

public:
    explicit ZonesHandler(ZarviGraphicsView* view, QObject* parent = nullptr);

    /// The shapes a zone may have.
    static QList<RoiKind> zoneKinds();
    /// The shape of the next zones drawn; false for a kind a zone cannot have.
    bool setShapeKind(RoiKind kind);
    RoiKind shapeKind() const { return m_kind; }

protected:
    std::shared_ptr<AbstractROI> beginRoi(const QPointF& scenePos) override;
    /// Keeps the zone's number when it is free, else gives it the next; names it after it.
    void acceptRoi(std::shared_ptr<AbstractROI> roi) override;
    bool acceptsKind(RoiKind kind) const override;
    QColor roiColor() const override;

private:
    RoiKind m_kind = RoiKind::Rectangle;
};

} // namespace zarvi
