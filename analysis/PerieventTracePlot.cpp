#include "analysis/PerieventTracePlot.h"

#include "analysis/PerieventExport.h"

#include "analysis/operations/perievents/PerieventResultFile.h"
#include "definitions/AnalysisOperationDefinitions.h"
#include "definitions/ZarviMainDefinitions.h"
#include "framework/PlotStyle.h"

#include <QVBoxLayout>

#include <cmath>
#include <span>

#include <qcustomplot.h>

namespace zarvi {

namespace {

using D = AnalysisOperationDefinitions;
using ZMD = ZarviMainDefinitions;

} // namespace

PerieventTracePlot::PerieventTracePlot(QWidget* parent) : QWidget(parent), m_plot(new QCustomPlot(this))
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_plot);
    PlotStyle::apply(m_plot);
    m_plot->xAxis->setLabel(D::TimeAxis);

    // The band is filled from the upper to the lower bound; the mean is drawn over it.
    QColor band(ZMD::ColorBlue);
    band.setAlpha(70);
    m_lower = m_plot->addGraph();
    m_upper = m_plot->addGraph();
    for (QCPGraph* bound : {m_lower, m_upper}) {
        bound->setPen(Qt::NoPen);
        bound->removeFromLegend();
    }
    m_upper->setBrush(band);
    m_upper->setChannelFillGraph(m_lower);
    m_upper->setName(D::semBandName());
    m_mean = m_plot->addGraph();
    m_mean->setPen(QPen(QColor(ZMD::ColorBlue), 2));
    m_mean->setName(D::meanTraceName());

    auto* event = new QCPItemStraightLine(m_plot); // owned by the plot
    event->point1->setCoords(0.0, 0.0);
    event->point2->setCoords(0.0, 1.0);
    event->setPen(QPen(QColor(ZMD::ColorLightGrey), 1, Qt::DashLine));
    m_plot->setInteractions(QCP::iRangeDrag | QCP::iRangeZoom);
}

void PerieventTracePlot::setResult(const StoredPerieventResult& result)
{
    const PerieventExport::TrialAverage average = PerieventExport::trialAverage(result.matrix);
    const QVector<double> mean(average.mean.begin(), average.mean.end());
    const QVector<double> sem(average.sem.begin(), average.sem.end());
    const QVector<double> time(result.time.begin(), result.time.end());
    QVector<double> upper(mean.size()), lower(mean.size());
    for (qsizetype j = 0; j < mean.size(); ++j) {
        upper[j] = mean[j] + sem[j];
        lower[j] = mean[j] - sem[j];
    }
    m_mean->setData(time, mean, true);
    m_upper->setData(time, upper, true);
    m_lower->setData(time, lower, true);
    m_plot->yAxis->setLabel(result.unit);
    m_plot->rescaleAxes();
    m_plot->replot();
}

} // namespace zarvi
