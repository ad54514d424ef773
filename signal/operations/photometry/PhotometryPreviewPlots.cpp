#include "signal/operations/photometry/PhotometryPreviewPlots.h"

#include "definitions/SignalOperationDefinitions.h"
#include "definitions/ZarviMainDefinitions.h"
#include "framework/PlotStyle.h"

#include <QVBoxLayout>

#include <qcustomplot.h>

#include <algorithm>

namespace zarvi {

namespace {

using SD = SignalOperationDefinitions;

std::size_t strideFor(std::size_t n)
{
    return std::max<std::size_t>(1, (n + PhotometryPreviewPlots::MaxPoints - 1) /
                                        PhotometryPreviewPlots::MaxPoints);
}

/// Every k-th point of (x, y), so that at most MaxPoints are drawn.
void setStrided(QCPGraph* graph, const std::vector<double>& x, const std::vector<double>& y)
{
    const std::size_t n = std::min(x.size(), y.size());
    const std::size_t stride = strideFor(n);
    QVector<QCPGraphData> points;
    points.reserve(static_cast<qsizetype>(n / stride + 1));
    for (std::size_t i = 0; i < n; i += stride)
        points.append(QCPGraphData(x[i], y[i]));
    graph->data()->set(points, false);
}

QCPGraph* addCurve(QCustomPlot* plot, const QString& name, const QColor& color)
{
    QCPGraph* graph = plot->addGraph();
    graph->setName(name);
    graph->setPen(QPen(color, 1));
    return graph;
}

QCPGraph* addScatter(QCustomPlot* plot, const QString& name, const QColor& color)
{
    QCPGraph* graph = addCurve(plot, name, color);
    graph->setLineStyle(QCPGraph::lsNone);
    graph->setScatterStyle(QCPScatterStyle(QCPScatterStyle::ssDisc, color, 3));
    return graph;
}

QCustomPlot* makePlot(QWidget* parent, const QString& objectName, const QString& xLabel,
                      const QString& yLabel)
{
    auto* plot = new QCustomPlot(parent);
    plot->setObjectName(objectName);
    PlotStyle::apply(plot);
    plot->setMinimumHeight(160);
    plot->xAxis->setLabel(xLabel);
    plot->yAxis->setLabel(yLabel);
    plot->legend->setVisible(true);
    plot->setInteractions(QCP::iRangeDrag | QCP::iRangeZoom);
    return plot;
}

} // namespace

PhotometryPreviewPlots::PhotometryPreviewPlots(QWidget* parent) : QWidget(parent)
{
    const QColor blue(ZarviMainDefinitions::ColorBlue);
    const QColor grey(ZarviMainDefinitions::ColorMidGrey);
    // Raw signals in light grey, which reads on the dark plots under the blue slopes.
    const QColor signal(ZarviMainDefinitions::ColorLightGrey);
    m_isosbestic =
        makePlot(this, QStringLiteral("plot_isosbestic"), SD::timeAxisLabel(), SD::isosbesticLabel());
    addCurve(m_isosbestic, SD::isosbesticLabel(), signal);
    addCurve(m_isosbestic, SD::slopeLabel(), blue)->setPen(QPen(blue, 2));
    m_biosensor = makePlot(this, QStringLiteral("plot_biosensor"), SD::timeAxisLabel(), SD::biosensorLabel());
    addCurve(m_biosensor, SD::biosensorLabel(), signal);
    addCurve(m_biosensor, SD::slopeLabel(), blue)->setPen(QPen(blue, 2));
    for (QCustomPlot* plot : {m_isosbestic, m_biosensor})
        plot->setToolTip(SD::previewPlotsTooltip());

    m_fit = makePlot(this, QStringLiteral("plot_fit"), SD::isosbesticLabel(), SD::biosensorLabel());
    addScatter(m_fit, SD::outliersLabel(), grey);
    addScatter(m_fit, SD::inliersLabel(), blue);
    addCurve(m_fit, SD::isosbesticFittedLabel(), QColor(ZarviMainDefinitions::ColorOrange))
        ->setPen(QPen(QColor(ZarviMainDefinitions::ColorOrange), 2));

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_isosbestic);
    layout->addWidget(m_biosensor);
    layout->addWidget(m_fit);
}

void PhotometryPreviewPlots::clear()
{
    for (QCustomPlot* plot : {m_isosbestic, m_biosensor, m_fit}) {
        for (int i = 0; i < plot->graphCount(); ++i)
            plot->graph(i)->data()->clear();
        plot->replot(QCustomPlot::rpQueuedReplot);
    }
}

void PhotometryPreviewPlots::show(const PhotometryDeltaF::Result& result, bool standardized)
{
    clear();
    setStrided(m_isosbestic->graph(0), result.isosbestic.time, result.isosbestic.values);
    setStrided(m_isosbestic->graph(1), result.isosbestic.time, result.isosbesticSlope);
    setStrided(m_biosensor->graph(0), result.biosensor.time, result.biosensor.values);
    setStrided(m_biosensor->graph(1), result.biosensor.time, result.biosensorSlope);

    // Inliers and outliers are thinned with one stride, so their proportion stays as fitted.
    const std::vector<double>& x = result.isosbesticForFit;
    const std::vector<double>& y = result.biosensorForFit;
    const std::size_t n = std::min({x.size(), y.size(), result.fit.inliers.size()});
    const std::size_t stride = strideFor(n);
    QVector<QCPGraphData> inliers;
    QVector<QCPGraphData> outliers;
    for (std::size_t i = 0; i < n; i += stride)
        (result.fit.inliers[i] ? inliers : outliers).append(QCPGraphData(x[i], y[i]));
    m_fit->graph(0)->data()->set(outliers, false);
    m_fit->graph(1)->data()->set(inliers, false);
    if (n > 0) {
        const auto [low, high] = std::minmax_element(x.begin(), x.begin() + static_cast<std::ptrdiff_t>(n));
        const double slope = result.fit.slope;
        const double intercept = result.fit.intercept;
        m_fit->graph(2)->setData({*low, *high}, {slope * *low + intercept, slope * *high + intercept}, true);
    }
    m_fit->yAxis->setLabel(standardized ? SD::biosensorZScoreLabel() : SD::biosensorLabel());
    for (QCustomPlot* plot : {m_isosbestic, m_biosensor, m_fit}) {
        plot->rescaleAxes();
        plot->replot(QCustomPlot::rpQueuedReplot);
    }
}

} // namespace zarvi
