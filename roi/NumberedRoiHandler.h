#pragma once

#include "roi/AbstractROIHandler.h"

namespace zarvi {

/// ROIs drawn in any number, each numbered 1, 2, ... in the order they were finished (a
/// number stays with its ROI; a removed ROI's number is not given again while a higher
/// one exists), in the shape the user chose among "Rectangle", "Circle", "Polygon" and
/// "Freehand". The cells of an image stack and the zones of a behaviour video are drawn
/// this way; a subclass gives the colour and, if it wants one, the name. GUI thread.
class NumberedRoiHandler : public AbstractROIHandler
{
    Q_OBJECT

public:
    explicit NumberedRoiHandler(ZarviGraphicsView* view, QObject* parent = nullptr);

    /// The shapes such a ROI may have.
    static QList<RoiKind> shapeKinds();
    /// The shape of the next ROIs drawn; false for a kind they cannot have.
    bool setShapeKind(RoiKind kind);
    RoiKind shapeKind() const { return m_kind; }

protected:
    std::shared_ptr<AbstractROI> beginRoi(const QPointF& scenePos) override;
    /// Keeps the ROI's number when it is free, else gives it the next one, then names it.
    void acceptRoi(std::shared_ptr<AbstractROI> roi) override;
    bool acceptsKind(RoiKind kind) const override;
    /// Names a ROI that has just got its number; unnamed by default (the label is the number).
    virtual void nameRoi(AbstractROI&) const {}

private:
    RoiKind m_kind = RoiKind::Rectangle;
};

} // namespace zarvi
