#include "app/behavior/BehaviorSignalsPanel.h"

#include "app/browser/SignalPlotWidget.h"

#include <QVBoxLayout>

#include <qcustomplot.h>

namespace zarvi {

namespace {

/// A press and release this close (in pixels) are a click, not a drag of the plot.
constexpr int clickTolerance = 3;

} // namespace

BehaviorSignalsPanel::BehaviorSignalsPanel(QWidget* parent) : QWidget(parent)
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    rebuildPlot();
}

void BehaviorSignalsPanel::rebuildPlot()
{
    // A fresh plot per set of signals: SignalPlotWidget only adds.
    if (m_plot) {
        m_plot->hide();
        m_plot->deleteLater();
    }
    m_plot = new SignalPlotWidget(this);
    m_plot->setObjectName(QStringLiteral("w_signals"));
    layout()->addWidget(m_plot);
    QCustomPlot* plot = m_plot->plot();
    m_cursor = new QCPItemStraightLine(plot);
    m_cursor->setPen(QPen(QColor(255, 80, 80), 1.5));
    m_cursor->setSelectable(false);
    setCursorTime(m_cursorTime);
    connect(plot, &QCustomPlot::mousePress, this, [this](QMouseEvent* event) { m_pressedAt = event->pos(); });
    connect(plot, &QCustomPlot::mouseRelease, this, [this, plot](QMouseEvent* event) {
        if (event->button() == Qt::LeftButton &&
            (event->pos() - m_pressedAt).manhattanLength() <= clickTolerance)
            emit timeClicked(plot->xAxis->pixelToCoord(event->pos().x()));
    });
}

void BehaviorSignalsPanel::setSignals(std::vector<std::pair<QString, Signal>> traces)
{
    rebuildPlot();
    for (auto& [name, signal] : traces)
        m_plot->addSignal(name, std::move(signal));
}

void BehaviorSignalsPanel::setCursorTime(double seconds)
{
    m_cursorTime = seconds;
    m_cursor->point1->setCoords(seconds, 0.0);
    m_cursor->point2->setCoords(seconds, 1.0);
    m_plot->plot()->replot(QCustomPlot::rpQueuedReplot);
}

} // namespace zarvi
