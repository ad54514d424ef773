#include "roi/RegionHandler.h"

#include "roi/RectangleROI.h"

namespace zarvi {

RegionHandler::RegionHandler(ZarviGraphicsView* view, const QList<RoiKind>& kinds, const QString& name,
                             QObject* parent)
    : AbstractROIHandler(view, parent), m_kinds(kinds), m_name(name),
      m_kind(kinds.isEmpty() ? RoiKind::Rectangle : kinds.first())
{
}

bool RegionHandler::setShapeKind(RoiKind kind)
{
    if (!acceptsKind(kind))
        return false;
    m_kind = kind;
    return true;
}

RoiShape RegionHandler::region() const
{
    return rois().empty() ? RoiShape{} : rois().front()->toShape();
}

std::shared_ptr<AbstractROI> RegionHandler::beginRoi(const QPointF& scenePos)
{
    std::shared_ptr<AbstractROI> roi = makeRoi(m_kind);
    if (auto* rectangle = dynamic_cast<RectangleROI*>(roi.get()))
        rectangle->setSquare(m_square);
    return roi->startDrawing(scenePos) ? roi : nullptr;
}

void RegionHandler::acceptRoi(std::shared_ptr<AbstractROI> roi)
{
    if (hasRegion())
        removeRoi(rois().front().get());
    roi->setNumber(1);
    roi->setName(m_name);
    insertRoi(std::move(roi));
}

bool RegionHandler::acceptsKind(RoiKind kind) const
{
    return m_kinds.contains(kind);
}

QColor RegionHandler::roiColor() const
{
    return QColor(0, 229, 255);
}

} // namespace zarvi
