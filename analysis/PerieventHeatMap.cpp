#include "analysis/PerieventHeatMap.h"

#include "analysis/operations/perievents/PerieventResultFile.h"
#include "definitions/AnalysisOperationDefinitions.h"
#include "framework/PlotStyle.h"

#include <QVBoxLayout>

#include <qcustomplot.h>

namespace zarvi {

PerieventHeatMap::PerieventHeatMap(QWidget* parent) : QWidget(parent), m_plot(new QCustomPlot(this))
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_plot);
    PlotStyle::apply(m_plot);
    m_plot->xAxis->setLabel(AnalysisOperationDefinitions::TimeAxis);
    m_plot->yAxis->setLabel(AnalysisOperationDefinitions::TrialsAxis);
    // Trial 1 on top, as the rows of the matrix are read; ticks on whole trials.
    m_plot->yAxis->setRangeReversed(true);
    auto trials = QSharedPointer<QCPAxisTickerFixed>::create();
    trials->setTickStep(1.0);
    trials->setScaleStrategy(QCPAxisTickerFixed::ssMultiples);
    m_plot->yAxis->setTicker(trials);

    m_map = new QCPColorMap(m_plot->xAxis, m_plot->yAxis); // owned by the plot
    m_map->setInterpolate(false);
    m_scale = new QCPColorScale(m_plot);
    m_plot->plotLayout()->addElement(0, 1, m_scale);
    PlotStyle::apply(m_scale->axis());
    QCPColorGradient gradient(QCPColorGradient::gpJet);
    gradient.setNanHandling(QCPColorGradient::nhTransparent);
    m_map->setGradient(gradient);
    m_map->setColorScale(m_scale);
    // Keep the scale as tall as the map.
    auto* margins = new QCPMarginGroup(m_plot);
    m_plot->axisRect()->setMarginGroup(QCP::msBottom | QCP::msTop, margins);
    m_scale->setMarginGroup(QCP::msBottom | QCP::msTop, margins);
}

void PerieventHeatMap::setResult(const StoredPerieventResult& result)
{
    const int columns = static_cast<int>(result.matrix.n_cols);
    const int rows = static_cast<int>(result.matrix.n_rows);
    QCPColorMapData* data = m_map->data();
    data->setSize(columns, rows);
    if (columns > 0 && rows > 0) {
        // Cell centres: the column times, and trials 1 .. rows.
        data->setRange(QCPRange(result.time.front(), result.time.back()), QCPRange(1.0, rows));
        for (int y = 0; y < rows; ++y)
            for (int x = 0; x < columns; ++x)
                data->setCell(x, y, result.matrix(static_cast<arma::uword>(y), static_cast<arma::uword>(x)));
    }
    m_scale->axis()->setLabel(result.unit);
    m_map->rescaleDataRange(true);
    m_plot->rescaleAxes();
    m_plot->replot();
}

} // namespace zarvi
