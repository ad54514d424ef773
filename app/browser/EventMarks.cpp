#include "app/browser/EventMarks.h"

#include "definitions/ZarviMainDefinitions.h"

#include <algorithm>
#include <cmath>

namespace zarvi {

namespace {

/// Opacity of the spans, so that the signals below them stay visible.
constexpr int SpanAlpha = 70;

} // namespace

EventMarks::EventMarks(QCPAxis* keyAxis, QCPAxis* valueAxis, EventArray events, const QColor& color)
    : QCPAbstractPlottable(keyAxis, valueAxis), m_events(std::move(events))
{
    setPen(QPen(color, 1));
    QColor span = color;
    span.setAlpha(SpanAlpha);
    setBrush(span);
    setSelectable(QCP::stNone);
    // Crisp one-pixel lines and edges; antialiasing would blur them over two columns.
    setAntialiased(false);
    setAntialiasedFill(false);
}

void EventMarks::setBand(double low, double high)
{
    m_band = QCPRange(low, high);
}

QColor EventMarks::color(std::size_t index)
{
    static const std::vector<QColor> colors = {QColor("#f1c40f"),
                                               QColor("#e74c3c"),
                                               QColor("#2ecc71"),
                                               QColor("#9b59b6"),
                                               QColor(ZarviMainDefinitions::ColorOrange),
                                               QColor(ZarviMainDefinitions::ColorLightGrey)};
    return colors[index % colors.size()];
}

double EventMarks::selectTest(const QPointF&, bool, QVariant*) const
{
    return -1.0;
}

QCPRange EventMarks::getKeyRange(bool& foundRange, QCP::SignDomain) const
{
    foundRange = !m_events.isEmpty();
    if (!foundRange)
        return {};
    const auto [first, last] = std::minmax_element(onsets().begin(), onsets().end());
    double upper = *last;
    if (m_events.hasOffsets())
        upper = std::max(upper, *std::max_element(offsets().begin(), offsets().end()));
    return {*first, upper};
}

QCPRange EventMarks::getValueRange(bool& foundRange, QCP::SignDomain, const QCPRange&) const
{
    foundRange = m_band.has_value();
    return m_band.value_or(QCPRange());
}

std::pair<double, double> EventMarks::verticalExtent() const
{
    const QRect area = clipRect();
    if (!m_band)
        return {area.top(), area.bottom() + 1.0};
    const double a = valueAxis()->coordToPixel(m_band->lower);
    const double b = valueAxis()->coordToPixel(m_band->upper);
    return {std::min(a, b), std::max(a, b)};
}

void EventMarks::draw(QCPPainter* painter)
{
    QCPAxis* key = keyAxis();
    if (!key || !valueAxis() || m_events.isEmpty())
        return;
    const QCPRange range = key->range();
    const QRect area = clipRect();
    const auto [top, bottom] = verticalExtent();
    // Far-off events are clamped to just outside the plot, so that zooming in deep
    // never hands the painter coordinates it cannot hold.
    auto pixel = [&](double t) {
        return std::clamp(key->coordToPixel(t), area.left() - 2.0, area.right() + 2.0);
    };

    if (m_events.hasOffsets()) {
        QVector<QRectF> spans;
        for (std::size_t i = 0; i < m_events.size(); ++i) {
            const double start = std::min(onsets()[i], offsets()[i]);
            const double end = std::max(onsets()[i], offsets()[i]);
            if (end < range.lower || start > range.upper)
                continue;
            const double left = std::floor(pixel(start));
            const double right = std::max(std::floor(pixel(end)), left + 1.0);
            if (!spans.isEmpty() && left <= spans.last().right())
                spans.last().setRight(std::max(spans.last().right(), right));
            else
                spans << QRectF(left, top, right - left, bottom - top);
        }
        applyFillAntialiasingHint(painter);
        painter->setPen(Qt::NoPen);
        painter->setBrush(brush());
        painter->drawRects(spans);
    }

    QVector<QLineF> lines;
    double lastColumn = -1.0;
    for (double onset : onsets()) {
        if (onset < range.lower || onset > range.upper)
            continue;
        // One line per pixel column is all the screen can show.
        const double column = std::floor(pixel(onset)) + 0.5;
        if (column == lastColumn)
            continue;
        lastColumn = column;
        lines << QLineF(column, top, column, bottom);
    }
    applyDefaultAntialiasingHint(painter);
    painter->setPen(pen());
    painter->drawLines(lines);
}

void EventMarks::drawLegendIcon(QCPPainter* painter, const QRectF& rect) const
{
    painter->setPen(Qt::NoPen);
    painter->setBrush(brush());
    painter->drawRect(rect);
    painter->setPen(pen());
    const double x = rect.left() + 0.25 * rect.width();
    painter->drawLine(QLineF(x, rect.top(), x, rect.bottom()));
}

} // namespace zarvi
