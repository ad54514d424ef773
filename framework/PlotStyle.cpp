#include "framework/PlotStyle.h"

#include "definitions/ZarviMainDefinitions.h"

#include <qcustomplot.h>

namespace zarvi {

namespace {

using ZMD = ZarviMainDefinitions;
using Theme = PlotStyle::Theme;

QColor lineColor(Theme theme)
{
    return theme == Theme::Dark ? QColor(ZMD::ColorMidGrey) : QColor(Qt::black);
}

QColor gridColor(Theme theme)
{
    return theme == Theme::Dark ? QColor(ZMD::ColorDarkGrey) : QColor(0xc8, 0xc8, 0xc8);
}

/// QCustomPlot keeps its background brush in a protected member without a getter;
/// a class derived from it may name the member.
struct BackgroundReader : QCustomPlot
{
    static QBrush of(const QCustomPlot* plot) { return plot->*(&BackgroundReader::mBackgroundBrush); }
};

/// Translucent colours (bands, spans) already read as tints on white, so only opaque
/// ones are darkened.
QPen readablePen(QPen pen)
{
    if (pen.style() != Qt::NoPen && pen.color().alpha() == 255)
        pen.setColor(PlotStyle::readableOnWhite(pen.color()));
    return pen;
}

QBrush readableBrush(QBrush brush)
{
    if (brush.style() == Qt::SolidPattern && brush.color().alpha() == 255)
        brush.setColor(PlotStyle::readableOnWhite(brush.color()));
    return brush;
}

/// The data drawn on white: lines, markers' outlines and fills of plottables and items.
void darkenPaleData(QCustomPlot* plot)
{
    for (int i = 0; i < plot->plottableCount(); ++i) {
        QCPAbstractPlottable* plottable = plot->plottable(i);
        plottable->setPen(readablePen(plottable->pen()));
        plottable->setBrush(readableBrush(plottable->brush()));
    }
    // Items have no common pen accessor, but every kind declares it as a property.
    for (int i = 0; i < plot->itemCount(); ++i) {
        QCPAbstractItem* item = plot->item(i);
        const QVariant pen = item->property("pen");
        if (pen.isValid())
            item->setProperty("pen", readablePen(pen.value<QPen>()));
        const QVariant brush = item->property("brush");
        if (brush.isValid())
            item->setProperty("brush", readableBrush(brush.value<QBrush>()));
    }
}

} // namespace

void PlotStyle::apply(QCustomPlot* plot, Theme theme)
{
    plot->setBackground(backgroundColor(theme));
    // Every axis the plot owns, also those of colour scales, which no axis rect lists.
    for (QCPAxis* axis : plot->findChildren<QCPAxis*>())
        apply(axis, theme);
    QColor legendBackground = backgroundColor(theme);
    legendBackground.setAlpha(200);
    plot->legend->setBrush(legendBackground);
    plot->legend->setBorderPen(QPen(lineColor(theme)));
    plot->legend->setTextColor(textColor(theme));
    // Entries copy the legend's text colour when they are made, so existing ones are set too.
    for (int i = 0; i < plot->legend->itemCount(); ++i)
        plot->legend->item(i)->setTextColor(textColor(theme));
    for (QCPTextElement* text : plot->findChildren<QCPTextElement*>())
        text->setTextColor(textColor(theme));
    if (theme == Theme::Light)
        darkenPaleData(plot);
}

void PlotStyle::apply(QCPAxis* axis, Theme theme)
{
    const QColor line = lineColor(theme);
    axis->setBasePen(QPen(line));
    axis->setTickPen(QPen(line));
    axis->setSubTickPen(QPen(line));
    axis->setTickLabelColor(textColor(theme));
    axis->setLabelColor(textColor(theme));
    axis->grid()->setPen(QPen(gridColor(theme), 1, Qt::DotLine));
}

QColor PlotStyle::backgroundColor(Theme theme)
{
    return theme == Theme::Dark ? QColor(ZMD::ColorDarkerGrey) : QColor(Qt::white);
}

QBrush PlotStyle::backgroundOf(const QCustomPlot* plot)
{
    return BackgroundReader::of(plot);
}

QColor PlotStyle::textColor(Theme theme)
{
    return theme == Theme::Dark ? QColor(ZMD::ColorLightGrey) : QColor(Qt::black);
}

double PlotStyle::luminance(const QColor& color)
{
    return 0.299 * color.redF() + 0.587 * color.greenF() + 0.114 * color.blueF();
}

QColor PlotStyle::readableOnWhite(const QColor& color)
{
    QColor result = color;
    // Each step takes a quarter off the value, so a few reach any colour.
    while (luminance(result) > MaxLuminanceOnWhite)
        result = result.darker(133);
    return result;
}

} // namespace zarvi
