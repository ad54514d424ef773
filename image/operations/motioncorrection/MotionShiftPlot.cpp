#include "image/operations/motioncorrection/MotionShiftPlot.h"

#include "definitions/ImageOperationDefinitions.h"
#include "definitions/ZarviMainDefinitions.h"
#include "framework/PlotStyle.h"

#include <QVBoxLayout>

#include <qcustomplot.h>

namespace zarvi {

using ID = ImageOperationDefinitions;

MotionShiftPlot::MotionShiftPlot(QWidget* parent) : QWidget(parent), m_plot(new QCustomPlot(this))
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_plot);
    m_plot->setMinimumHeight(180);
    PlotStyle::apply(m_plot);
    m_plot->xAxis->setLabel(ID::timeAxisLabel());
    m_plot->yAxis->setLabel(ID::shiftAxisLabel());
    m_x = m_plot->addGraph();
    m_x->setName(ID::XShift);
    m_x->setPen(QPen(QColor(ZarviMainDefinitions::ColorBlue), 1.5));
    m_y = m_plot->addGraph();
    m_y->setName(ID::YShift);
    m_y->setPen(QPen(QColor(ZarviMainDefinitions::ColorOrange), 1.5));
    m_plot->legend->setVisible(true);
    m_plot->setInteractions(QCP::iRangeDrag | QCP::iRangeZoom);
}

void MotionShiftPlot::setShifts(const std::vector<double>& time, const std::vector<FrameShift>& shifts)
{
    const std::size_t count = std::min(time.size(), shifts.size());
    QVector<double> t(static_cast<qsizetype>(count)), x(t.size()), y(t.size());
    for (std::size_t k = 0; k < count; ++k) {
        t[static_cast<qsizetype>(k)] = time[k];
        x[static_cast<qsizetype>(k)] = shifts[k].x;
        y[static_cast<qsizetype>(k)] = shifts[k].y;
    }
    // Frames are in time order: the sorted flag spares QCustomPlot a sort.
    m_x->setData(t, x, true);
    m_y->setData(t, y, true);
    m_plot->rescaleAxes();
    m_plot->replot();
}

} // namespace zarvi
