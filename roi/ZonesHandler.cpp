#include "roi/ZonesHandler.h"

#include "definitions/FileDefinitions.h"
#include "roi/AbstractROI.h"

#include <algorithm>

namespace zarvi {

ZonesHandler::ZonesHandler(ZarviGraphicsView* view, QObject* parent) : AbstractROIHandler(view, parent) {}

QList<RoiKind> ZonesHandler::zoneKinds()
{
    return {RoiKind::Rectangle, RoiKind::Circle, RoiKind::Polygon, RoiKind::Freehand};
}

bool ZonesHandler::setShapeKind(RoiKind kind)
{
    if (!acceptsKind(kind))
        return false;
    m_kind = kind;
    return true;
}

std::shared_ptr<AbstractROI> ZonesHandler::beginRoi(const QPointF& scenePos)
{
    std::shared_ptr<AbstractROI> roi = makeRoi(m_kind);
    return roi->startDrawing(scenePos) ? roi : nullptr;
}

void ZonesHandler::acceptRoi(std::shared_ptr<AbstractROI> roi)
{
    int highest = 0;
    bool taken = false;
    for (const auto& zone : rois()) {
        highest = std::max(highest, zone->number());
        taken = taken || zone->number() == roi->number();
    }
    if (roi->number() <= 0 || taken)
        roi->setNumber(highest + 1);
    roi->setName(FileDefinitions::ZonePattern.arg(roi->number()));
    insertRoi(std::move(roi));
}

bool ZonesHandler::acceptsKind(RoiKind kind) const
{
    return zoneKinds().contains(kind);
}

QColor ZonesHandler::roiColor() const
{
    return QColor(255, 145, 0);
}

} // namespace zarvi
