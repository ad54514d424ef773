#include "analysis/operations/perievents/PerieventPreview.h"

#include "framework/PlotStyle.h"

#include "definitions/AnalysisOperationDefinitions.h"
#include "definitions/ZarviMainDefinitions.h"

#include <QLabel>
#include <QVBoxLayout>

#include <qcustomplot.h>

namespace zarvi {

namespace {

using D = AnalysisOperationDefinitions;
using ZMD = ZarviMainDefinitions;

} // namespace

PerieventPreview::PerieventPreview(QWidget* parent) : QWidget(parent), m_plot(new QCustomPlot(this))
{
    setObjectName(QStringLiteral("w_signal"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    m_note = new QLabel(D::previewLabel(), this);
    m_note->setObjectName(QStringLiteral("lb_preview"));
    m_note->setWordWrap(true);
    layout->addWidget(m_note);
    layout->addWidget(m_plot, 1);
    m_plot->setMinimumHeight(160);
    PlotStyle::apply(m_plot);
    m_plot->xAxis->setLabel(D::TimeAxis);
    m_plot->addGraph()->setPen(QPen(QColor(ZMD::ColorBlue), 1.5));
}

void PerieventPreview::showChunk(std::span<const double> time, std::span<const double> values,
                                 const std::vector<std::pair<double, double>>& frames)
{
    m_plot->clearItems();
    QVector<double> keys(time.begin(), time.end());
    QVector<double> points(values.begin(), values.end());
    m_plot->graph(0)->setData(keys, points, true);
    for (const auto& [start, end] : frames) {
        auto* band = new QCPItemRect(m_plot); // owned by the plot
        band->topLeft->setTypeX(QCPItemPosition::ptPlotCoords);
        band->topLeft->setTypeY(QCPItemPosition::ptAxisRectRatio);
        band->bottomRight->setTypeX(QCPItemPosition::ptPlotCoords);
        band->bottomRight->setTypeY(QCPItemPosition::ptAxisRectRatio);
        band->topLeft->setCoords(start, 0.0);
        band->bottomRight->setCoords(end, 1.0);
        QColor fill(ZMD::ColorOrange);
        fill.setAlpha(40);
        band->setBrush(fill);
        band->setPen(Qt::NoPen);
    }
    auto* event = new QCPItemStraightLine(m_plot);
    event->point1->setCoords(0.0, 0.0);
    event->point2->setCoords(0.0, 1.0);
    event->setPen(QPen(QColor(ZMD::ColorLightGrey), 1, Qt::DashLine));
    m_plot->rescaleAxes();
    m_plot->replot();
    m_note->setText(D::previewLabel());
}

void PerieventPreview::showNote(const QString& note)
{
    m_plot->clearItems();
    m_plot->graph(0)->data()->clear();
    m_plot->replot();
    m_note->setText(note);
}

int PerieventPreview::shownPoints() const
{
    return m_plot->graph(0)->dataCount();
}

QString PerieventPreview::note() const
{
    return m_note->text();
}

} // namespace zarvi
