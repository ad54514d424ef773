#include "roi/CellsHandler.h"

#include "roi/AbstractROI.h"

#include <algorithm>

namespace zarvi {

CellsHandler::CellsHandler(ZarviGraphicsView* view, QObject* parent) : AbstractROIHandler(view, parent) {}

QList<RoiKind> CellsHandler::cellKinds()
{
    return {RoiKind::Rectangle, RoiKind::Circle, RoiKind::Polygon, RoiKind::Freehand};
}

bool CellsHandler::setShapeKind(RoiKind kind)
{
    if (!acceptsKind(kind))
        return false;
    m_kind = kind;
    return true;
}

std::shared_ptr<AbstractROI> CellsHandler::beginRoi(const QPointF& scenePos)
{
    std::shared_ptr<AbstractROI> roi = makeRoi(m_kind);
    return roi->startDrawing(scenePos) ? roi : nullptr;
}

void CellsHandler::acceptRoi(std::shared_ptr<AbstractROI> roi)
{
    int highest = 0;
    bool taken = false;
    for (const auto& cell : rois()) {
        highest = std::max(highest, cell->number());
        taken = taken || cell->number() == roi->number();
    }
    if (roi->number() <= 0 || taken)
        roi->setNumber(highest + 1);
    insertRoi(std::move(roi));
}

bool CellsHandler::acceptsKind(RoiKind kind) const
{
    return cellKinds().contains(kind);
}

QColor CellsHandler::roiColor() const
{
    return QColor(255, 214, 0);
}

} // namespace zarvi
