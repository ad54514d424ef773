#include "roi/NumberedRoiHandler.h"

#include "roi/AbstractROI.h"

#include <algorithm>

namespace zarvi {

NumberedRoiHandler::NumberedRoiHandler(ZarviGraphicsView* view, QObject* parent)
    : AbstractROIHandler(view, parent)
{
}

QList<RoiKind> NumberedRoiHandler::shapeKinds()
{
    return {RoiKind::Rectangle, RoiKind::Circle, RoiKind::Polygon, RoiKind::Freehand};
}

bool NumberedRoiHandler::setShapeKind(RoiKind kind)
{
    if (!acceptsKind(kind))
        return false;
    m_kind = kind;
    return true;
}

std::shared_ptr<AbstractROI> NumberedRoiHandler::beginRoi(const QPointF& scenePos)
{
    std::shared_ptr<AbstractROI> roi = makeRoi(m_kind);
    return roi->startDrawing(scenePos) ? roi : nullptr;
}

void NumberedRoiHandler::acceptRoi(std::shared_ptr<AbstractROI> roi)
{
    int highest = 0;
    bool taken = false;
    for (const auto& other : rois()) {
        highest = std::max(highest, other->number());
        taken = taken || other->number() == roi->number();
    }
    if (roi->number() <= 0 || taken)
        roi->setNumber(highest + 1);
    nameRoi(*roi);
    insertRoi(std::move(roi));
}

bool NumberedRoiHandler::acceptsKind(RoiKind kind) const
{
    return shapeKinds().contains(kind);
}

} // namespace zarvi
