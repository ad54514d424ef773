#include "app/behavior/TrailItem.h"

#include "behavior/operations/measures/ZoneOccupancy.h"

#include <QPainter>
#include <QStyleOptionGraphicsItem>

#include <algorithm>

namespace zarvi {

namespace {

/// Screen sizes, whatever the zoom.
constexpr double trailWidth = 2.5;
constexpr double discRadius = 7.0;

} // namespace

TrailItem::TrailItem()
{
    setZValue(5);
    setAcceptedMouseButtons(Qt::NoButton);
}

void TrailItem::setPath(std::vector<cv::Point> positions, std::vector<double> time)
{
    prepareGeometryChange();
    m_positions = std::move(positions);
    m_time = std::move(time);
    m_current = -1;
    m_bounds = QRectF();
    for (const cv::Point& p : m_positions)
        if (!isMissingPosition(p))
            m_bounds = m_bounds.united(QRectF(p.x, p.y, 1, 1));
    update();
}

void TrailItem::setCurrent(int index)
{
    if (index == m_current)
        return;
    m_current = index >= 0 && index < static_cast<int>(m_positions.size()) ? index : -1;
    update();
}

void TrailItem::setTrailSeconds(double seconds)
{
    m_trailSeconds = seconds;
    update();
}

void TrailItem::setColor(const QColor& color)
{
    m_color = color;
    update();
}

QRectF TrailItem::boundingRect() const
{
    // Room for the disc at the smallest zoom the view allows.
    const double margin = 8.0 * discRadius;
    return m_bounds.adjusted(-margin, -margin, margin, margin);
}

void TrailItem::paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget*)
{
    if (m_current < 0)
        return;
    const double scale = option->levelOfDetailFromTransform(painter->worldTransform());
    painter->setRenderHint(QPainter::Antialiasing);
    const double now = m_time[static_cast<std::size_t>(m_current)];
    auto first = static_cast<std::size_t>(
        std::lower_bound(m_time.begin(), m_time.begin() + m_current, now - m_trailSeconds) - m_time.begin());
    for (std::size_t k = std::max<std::size_t>(first, 1); k <= static_cast<std::size_t>(m_current); ++k) {
        const cv::Point& a = m_positions[k - 1];
        const cv::Point& b = m_positions[k];
        if (isMissingPosition(a) || isMissingPosition(b))
            continue;
        QColor color = m_color;
        color.setAlphaF(std::clamp(1.0 - (now - m_time[k]) / m_trailSeconds, 0.25, 1.0));
        QPen pen(color, trailWidth);
        pen.setCosmetic(true);
        pen.setCapStyle(Qt::RoundCap);
        painter->setPen(pen);
        painter->drawLine(QPointF(a.x, a.y), QPointF(b.x, b.y));
    }
    const cv::Point& here = m_positions[static_cast<std::size_t>(m_current)];
    if (isMissingPosition(here))
        return;
    QPen outline(Qt::black, 1.5);
    outline.setCosmetic(true);
    painter->setPen(outline);
    painter->setBrush(m_color);
    const double radius = discRadius / std::max(scale, 1e-6);
    painter->drawEllipse(QPointF(here.x, here.y), radius, radius);
}

} // namespace zarvi
