#include "roi/AbstractROI.h"

#include <QCursor>
#include <QGraphicsSceneHoverEvent>
#include <QGraphicsSceneMouseEvent>
#include <QGraphicsSimpleTextItem>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace zarvi {

namespace {

// A strong yellow reads on dark frames, and its dark halo on light ones.
const QColor defaultColor(255, 214, 0);
constexpr double defaultPenWidth = 1.5;

} // namespace

AbstractROI::AbstractROI(RoiKind kind, int imageWidth, int imageHeight)
    : m_kind(kind), m_imageWidth(imageWidth), m_imageHeight(imageHeight),
      m_pen(defaultColor, defaultPenWidth), m_label(new QGraphicsSimpleTextItem(this))
{
    m_pen.setCosmetic(true);
    setFlag(ItemIsSelectable);
    setAcceptHoverEvents(true);
    // The label keeps its screen size at every zoom.
    m_label->setFlag(ItemIgnoresTransformations);
    m_label->setAcceptedMouseButtons(Qt::NoButton);
    QFont font = m_label->font();
    font.setBold(true);
    m_label->setFont(font);
    m_label->setBrush(m_pen.color());
    m_label->setPen(QPen(QColor(0, 0, 0), 0));
    m_label->setText(label());
}

QPoint AbstractROI::toPixel(const QPointF& scenePos)
{
    return {static_cast<int>(std::round(scenePos.x())), static_cast<int>(std::round(scenePos.y()))};
}

QRectF AbstractROI::boundingRect() const
{
    return m_boundingRect;
}

void AbstractROI::hoverMoveEvent(QGraphicsSceneHoverEvent* event)
{
    if (m_state != Active)
        enterHoverState(event);
}

void AbstractROI::hoverLeaveEvent(QGraphicsSceneHoverEvent*)
{
    if (m_state == Active)
        return;
    setState(Idle);
    unsetCursor();
}

void AbstractROI::mouseMoveEvent(QGraphicsSceneMouseEvent* event)
{
    if (!(event->buttons() & Qt::LeftButton))
        return;
    setState(Active);
    // Rounded positions telescope: the points move by exactly the pixels the cursor crossed.
    const QPoint delta = toPixel(event->scenePos()) - toPixel(event->lastScenePos());
    if (!delta.isNull())
        translate(delta);
}

void AbstractROI::mouseReleaseEvent(QGraphicsSceneMouseEvent* event)
{
    QGraphicsItem::mouseReleaseEvent(event);
    setState(Idle);
}

QVariant AbstractROI::itemChange(GraphicsItemChange change, const QVariant& value)
{
    if (change == ItemSelectedHasChanged)
        update();
    return QGraphicsItem::itemChange(change, value);
}

void AbstractROI::setNumber(int number)
{
    m_number = number;
    m_label->setText(label());
    placeLabel();
}

void AbstractROI::setName(const QString& name)
{
    m_name = name;
    m_label->setText(label());
    placeLabel();
}

QString AbstractROI::label() const
{
    return m_name.isEmpty() ? QString::number(m_number) : m_name;
}

void AbstractROI::setState(int state)
{
    m_state = state;
    update();
}

bool AbstractROI::isInsideImage(const QPoint& pixel) const
{
    return pixel.x() > 0 && pixel.x() < m_imageWidth && pixel.y() > 0 && pixel.y() < m_imageHeight;
}

void AbstractROI::setPen(const QPen& pen)
{
    m_pen = pen;
    m_label->setBrush(pen.color());
    update();
}

bool AbstractROI::startDrawing(const QPointF& scenePos)
{
    const QPoint pixel = toPixel(scenePos);
    if (!isInsideImage(pixel))
        return false;
    prepareGeometryChange();
    m_points.clear();
    m_state = Active;
    updateFromCursor(pixel);
    recomputeBounds();
    placeLabel();
    update();
    return true;
}

bool AbstractROI::drawTo(const QPointF& scenePos)
{
    const QPoint pixel = toPixel(scenePos);
    if (m_state != Active || m_points.isEmpty() || !isInsideImage(pixel))
        return false;
    prepareGeometryChange();
    updateFromCursor(pixel);
    recomputeBounds();
    placeLabel();
    update();
    return true;
}

RoiShape AbstractROI::toShape() const
{
    RoiShape shape;
    shape.kind = m_kind;
    shape.number = m_number;
    shape.name = m_name;
    shape.points.reserve(static_cast<std::size_t>(m_points.size()));
    for (const QPoint& p : m_points)
        shape.points.emplace_back(p.x(), p.y());
    return shape;
}

bool AbstractROI::setFromShape(const RoiShape& shape)
{
    if (shape.kind != m_kind)
        return false;
    QList<QPoint> points;
    points.reserve(static_cast<qsizetype>(shape.points.size()));
    for (const cv::Point& p : shape.points)
        points.append(QPoint(p.x, p.y));
    m_number = shape.number;
    setName(shape.name);
    setAllPoints(points);
    return true;
}

void AbstractROI::showHovered()
{
    setState(Hovered);
    setCursor(Qt::SizeAllCursor);
}

void AbstractROI::replacePoints(const QList<QPoint>& points)
{
    prepareGeometryChange();
    m_points = points;
    recomputeBounds();
    placeLabel();
    update();
}

void AbstractROI::strokeOutline(QPainter* painter, const QPainterPath& path) const
{
    const bool emphasised = isSelected() || m_state == Hovered;
    const double width = m_pen.widthF() + (emphasised ? 1.0 : 0.0);
    painter->setRenderHint(QPainter::Antialiasing);
    QColor fill = m_pen.color();
    fill.setAlpha(isSelected() ? 60 : 0);
    painter->setBrush(fill);
    QPen halo(QColor(0, 0, 0, 170), width + 2.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    halo.setCosmetic(true);
    painter->setPen(halo);
    painter->drawPath(path);
    QPen pen = m_pen;
    pen.setWidthF(width);
    pen.setCosmetic(true);
    painter->setBrush(Qt::NoBrush);
    painter->setPen(pen);
    painter->drawPath(path);
}

QRectF AbstractROI::pointsBounds() const
{
    if (m_points.isEmpty())
        return {};
    const auto [minX, maxX] =
        std::minmax_element(m_points.begin(), m_points.end(), [](auto a, auto b) { return a.x() < b.x(); });
    const auto [minY, maxY] =
        std::minmax_element(m_points.begin(), m_points.end(), [](auto a, auto b) { return a.y() < b.y(); });
    return QRectF(QPointF(minX->x(), minY->y()), QPointF(maxX->x(), maxY->y())).adjusted(-1, -1, 1, 1);
}

double AbstractROI::enclosedArea() const
{
    double twiceArea = 0.0;
    for (qsizetype i = 0; i < m_points.size(); ++i) {
        const QPoint& a = m_points[i];
        const QPoint& b = m_points[(i + 1) % m_points.size()];
        twiceArea += static_cast<double>(a.x()) * b.y() - static_cast<double>(b.x()) * a.y();
    }
    return std::abs(twiceArea) / 2.0;
}

void AbstractROI::translate(const QPoint& delta)
{
    QList<QPoint> moved = m_points;
    for (QPoint& p : moved)
        p += delta;
    setAllPoints(moved);
}

void AbstractROI::placeLabel()
{
    m_label->setPos(labelAnchor());
    m_label->setTransform(QTransform::fromTranslate(0, -m_label->boundingRect().height()));
}

} // namespace zarvi
