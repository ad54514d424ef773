#pragma once

#include "roi/AbstractROIHandler.h"

namespace zarvi {

/// The cell ROIs drawn over an image stack: any number of them, each numbered 1, 2, ... in
/// the order they were finished (a number stays with its cell; a removed cell's number is
/// not given again while a higher one exists), drawn in the shape the user chose among
/// "Rectangle", "Circle", "Polygon" and "Freehand". GUI thread.
class CellsHandler : public AbstractROIHandler
{
    Q_OBJECT

public:
    explicit CellsHandler(ZarviGraphicsView* view, QObject* parent = nullptr);

    /// The shapes a cell may have.
    static QList<RoiKind> cellKinds();
    /// The shape of the next cells drawn; false for a kind cells cannot have.
    bool setShapeKind(RoiKind kind);
    RoiKind shapeKind() const { return m_kind; }

protected:
    std::shared_ptr<AbstractROI> beginRoi(const QPointF& scenePos) override;
    /// Keeps the ROI's number when it has a free one, else gives it the next number.
    void acceptRoi(std::shared_ptr<AbstractROI> roi) override;
    bool acceptsKind(RoiKind kind) const override;
    QColor roiColor() const override;

private:
    RoiKind m_kind = RoiKind::Rectangle;
};

} // namespace zarvi
