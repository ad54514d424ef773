#include "framework/PlotStyle.h"

#include "definitions/ZarviMainDefinitions.h"

#include <qcustomplot.h>

namespace zarvi {

using ZMD = ZarviMainDefinitions;

void PlotStyle::apply(QCustomPlot* plot)
{
    plot->setBackground(QColor(ZMD::ColorDarkerGrey));
    apply(plot->xAxis);
    apply(plot->yAxis);
}

void PlotStyle::apply(QCPAxis* axis)
{
    const QColor line(ZMD::ColorMidGrey);
    axis->setBasePen(QPen(line));
    axis->setTickPen(QPen(line));
    axis->setSubTickPen(QPen(line));
    axis->setTickLabelColor(QColor(ZMD::ColorLightGrey));
    axis->setLabelColor(QColor(ZMD::ColorLightGrey));
    axis->grid()->setPen(QPen(QColor(ZMD::ColorDarkGrey), 1, Qt::DotLine));
}

} // namespace zarvi
