#include "roi/AbstractROIHandler.h"

#include "roi/CircleROI.h"
#include "roi/FreehandROI.h"
#include "roi/LineROI.h"
#include "roi/PointROI.h"
#include "roi/PolygonROI.h"
#include "roi/RectangleROI.h"
#include "roi/ZarviGraphicsView.h"

#include <QGraphicsScene>
#include <QKeyEvent>
#include <QMouseEvent>

#include <algorithm>

namespace zarvi {

namespace {

void takeOutOfScene(AbstractROI& roi)
{
    if (QGraphicsScene* scene = roi.scene())
        scene->removeItem(&roi);
}

} // namespace

AbstractROIHandler::AbstractROIHandler(ZarviGraphicsView* view, QObject* parent)
    : QObject(parent), m_view(view)
{
}

bool AbstractROIHandler::eventFilter(QObject* watched, QEvent* event)
{
    if (!m_active || !m_view)
        return false;
    if (watched == m_view && event->type() == QEvent::KeyPress)
        return keyPress(static_cast<QKeyEvent*>(event));
    if (watched != m_view->viewport())
        return false;
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
        return mousePress(static_cast<QMouseEvent*>(event));
    case QEvent::MouseMove:
        // Never consumed, so that the view still reports the pixel under the cursor.
        mouseMove(static_cast<QMouseEvent*>(event));
        return false;
    case QEvent::MouseButtonRelease:
        return mouseRelease(static_cast<QMouseEvent*>(event));
    default:
        return false;
    }
}

void AbstractROIHandler::finishDrawing()
{
    const std::shared_ptr<AbstractROI> roi = std::move(m_drawing);
    m_drawing.reset();
    if (!roi)
        return;
    roi->setState(AbstractROI::Idle);
    QString error;
    const auto* polygon = dynamic_cast<const PolygonROI*>(roi.get());
    if ((polygon && !polygon->isClosed()) || !isValidRoi(*roi, error)) {
        takeOutOfScene(*roi);
        return;
    }
    acceptRoi(roi);
}

void AbstractROIHandler::checkEdit()
{
    const std::shared_ptr<AbstractROI> roi = std::move(m_edited);
    m_edited.reset();
    if (!roi || roi->points() == m_editedPoints)
        return;
    QString error;
    if (!isValidRoi(*roi, error)) {
        roi->setAllPoints(m_editedPoints);
        return;
    }
    m_editedPoints = roi->points();
    emit roiChanged(roi->toShape());
}

bool AbstractROIHandler::removeRoi(const AbstractROI* roi)
{
    const auto found =
        std::find_if(m_rois.begin(), m_rois.end(), [roi](const auto& r) { return r.get() == roi; });
    if (found == m_rois.end())
        return false;
    const std::shared_ptr<AbstractROI> removed = *found;
    m_rois.erase(found);
    if (m_edited == removed)
        m_edited.reset();
    takeOutOfScene(*removed);
    emit roiRemoved(removed->toShape());
    return true;
}

std::vector<RoiShape> AbstractROIHandler::shapes() const
{
    std::vector<RoiShape> result;
    result.reserve(m_rois.size());
    for (const auto& roi : m_rois)
        result.push_back(roi->toShape());
    return result;
}

bool AbstractROIHandler::addShape(const RoiShape& shape, QString& error)
{
    if (!acceptsKind(shape.kind)) {
        error = tr("A <b>%1</b> cannot be used here.").arg(roiKindName(shape.kind));
        return false;
    }
    const std::shared_ptr<AbstractROI> roi = makeRoi(shape.kind);
    roi->setFromShape(shape);
    if (!isValidRoi(*roi, error))
        return false;
    if (m_view)
        m_view->scene()->addItem(roi.get());
    acceptRoi(roi);
    return true;
}

bool AbstractROIHandler::setRoiName(const AbstractROI* roi, const QString& name)
{
    const auto found =
        std::find_if(m_rois.begin(), m_rois.end(), [roi](const auto& r) { return r.get() == roi; });
    if (found == m_rois.end())
        return false;
    (*found)->setName(name);
    emit roiChanged((*found)->toShape());
    return true;
}

void AbstractROIHandler::removeSelected()
{
    std::vector<const AbstractROI*> selected;
    for (const auto& roi : m_rois)
        if (roi->isSelected())
            selected.push_back(roi.get());
    for (const AbstractROI* roi : selected)
        removeRoi(roi);
}

void AbstractROIHandler::clear()
{
    cancelDrawing();
    while (!m_rois.empty())
        removeRoi(m_rois.back().get());
}

void AbstractROIHandler::setActive(bool active)
{
    m_active = active;
    for (const auto& roi : m_rois) {
        roi->setAcceptHoverEvents(active);
        roi->setAcceptedMouseButtons(active ? Qt::LeftButton : Qt::NoButton);
    }
    if (!active) {
        cancelDrawing();
        m_edited.reset();
        m_pressed = false;
    }
}

ZarviGraphicsView* AbstractROIHandler::view() const
{
    return m_view;
}

bool AbstractROIHandler::isValidRoi(const AbstractROI& roi, QString& error)
{
    const QList<QPoint>& points = roi.points();
    const RoiKind kind = roi.kind();
    const bool pathKind = kind == RoiKind::Polygon || kind == RoiKind::Freehand;
    const qsizetype needed = kind == RoiKind::Point ? 1 : pathKind ? 3 : 2;
    if (pathKind ? points.size() < needed : points.size() != needed) {
        error = tr("<b>%1</b> does not have the points a %2 needs.").arg(roi.label(), roiKindName(kind));
        return false;
    }
    if (!std::all_of(points.begin(), points.end(),
                     [&roi](const QPoint& p) { return roi.isInsideImage(p); })) {
        error = tr("<b>%1</b> does not lie inside the image of %2 x %3 pixels.")
                    .arg(roi.label())
                    .arg(roi.imageWidth())
                    .arg(roi.imageHeight());
        return false;
    }
    if (kind != RoiKind::Point && roi.measure() <= 0.0) {
        error = kind == RoiKind::Line ? tr("<b>%1</b> has no length.").arg(roi.label())
                                      : tr("<b>%1</b> has no area.").arg(roi.label());
        return false;
    }
    return true;
}

std::shared_ptr<AbstractROI> AbstractROIHandler::makeRoi(RoiKind kind) const
{
    const QSize image = m_view ? m_view->imageSize() : QSize();
    std::shared_ptr<AbstractROI> roi;
    switch (kind) {
    case RoiKind::Rectangle:
        roi = std::make_shared<RectangleROI>(image.width(), image.height());
        break;
    case RoiKind::Circle:
        roi = std::make_shared<CircleROI>(image.width(), image.height());
        break;
    case RoiKind::Polygon:
        roi = std::make_shared<PolygonROI>(image.width(), image.height());
        break;
    case RoiKind::Freehand:
        roi = std::make_shared<FreehandROI>(image.width(), image.height());
        break;
    case RoiKind::Point:
        roi = std::make_shared<PointROI>(image.width(), image.height());
        break;
    case RoiKind::Line:
        roi = std::make_shared<LineROI>(image.width(), image.height());
        break;
    }
    QPen pen = roi->pen();
    pen.setColor(roiColor());
    roi->setPen(pen);
    roi->setAcceptHoverEvents(m_active);
    roi->setAcceptedMouseButtons(m_active ? Qt::LeftButton : Qt::NoButton);
    return roi;
}

void AbstractROIHandler::insertRoi(std::shared_ptr<AbstractROI> roi)
{
    m_rois.push_back(roi);
    emit roiAdded(roi->toShape());
}

bool AbstractROIHandler::mousePress(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return false;
    if (m_locked)
        return true;
    const QPointF position = m_view->scenePosition(event->position());
    if (isDrawingOpenPolygon()) {
        auto* polygon = static_cast<PolygonROI*>(m_drawing.get());
        if (event->type() == QEvent::MouseButtonDblClick) {
            polygon->close(position);
            finishDrawing();
        } else {
            polygon->addVertex(position);
        }
        return true;
    }
    if (m_drawing)
        finishDrawing();
    if (const std::shared_ptr<AbstractROI> roi = roiAt(position)) {
        // The scene selects it and its drag moves it; the release checks the result.
        m_edited = roi;
        m_editedPoints = roi->points();
        return false;
    }
    m_pressed = true;
    m_view->scene()->clearSelection();
    m_drawing = beginRoi(position);
    if (m_drawing)
        m_view->scene()->addItem(m_drawing.get());
    return true;
}

void AbstractROIHandler::mouseMove(QMouseEvent* event)
{
    if (m_drawing)
        m_drawing->drawTo(m_view->scenePosition(event->position()));
}

bool AbstractROIHandler::mouseRelease(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return false;
    if (m_pressed) {
        m_pressed = false;
        if (m_drawing && !isDrawingOpenPolygon())
            finishDrawing();
        return true;
    }
    if (m_edited)
        checkEdit();
    return false;
}

bool AbstractROIHandler::keyPress(QKeyEvent* event)
{
    if (m_locked)
        return false;
    if (event->key() == Qt::Key_Escape && m_drawing) {
        cancelDrawing();
        return true;
    }
    if (event->key() == Qt::Key_Delete || event->key() == Qt::Key_Backspace) {
        removeSelected();
        return true;
    }
    return false;
}

bool AbstractROIHandler::isDrawingOpenPolygon() const
{
    const auto* polygon = dynamic_cast<const PolygonROI*>(m_drawing.get());
    return polygon && !polygon->isClosed();
}

void AbstractROIHandler::cancelDrawing()
{
    if (m_drawing)
        takeOutOfScene(*m_drawing);
    m_drawing.reset();
}

std::shared_ptr<AbstractROI> AbstractROIHandler::roiAt(const QPointF& scenePos) const
{
    // The latest ROI lies on top, as the scene stacks them.
    for (auto it = m_rois.rbegin(); it != m_rois.rend(); ++it)
        if ((*it)->contains((*it)->mapFromScene(scenePos)))
            return *it;
    return nullptr;
}

} // namespace zarvi
