#include "app/browser/SignalPlotWidget.h"

#include "app/browser/EventMarks.h"

#include "definitions/DatasetDefinitions.h"
#include "definitions/ZarviMainDefinitions.h"
#include "framework/FigureExportDialog.h"
#include "framework/PlotStyle.h"
#include "signal/MinMaxDecimator.h"

#include <QVBoxLayout>

#include <qcustomplot.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace zarvi {

namespace {

using ZMD = ZarviMainDefinitions;

// Trace colours in the order signals are added; the first two are the palette's accents.
const QColor& traceColor(std::size_t index)
{
    static const std::vector<QColor> colors = {
        QColor(ZMD::ColorBlue), QColor(ZMD::ColorOrange), QColor("#2ecc71"),          QColor("#e74c3c"),
        QColor("#9b59b6"),      QColor("#f1c40f"),        QColor(ZMD::ColorLightGrey)};
    return colors[index % colors.size()];
}

} // namespace

SignalPlotWidget::SignalPlotWidget(QWidget* parent) : QWidget(parent), m_plot(new QCustomPlot(this))
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_plot);

    PlotStyle::apply(m_plot);
    m_plot->xAxis->setLabel(DatasetDefinitions::timeAxisLabel());
    m_plot->yAxis->setLabel(DatasetDefinitions::signalAxisLabel());
    m_plot->legend->setVisible(true);
    m_plot->setInteractions(QCP::iRangeDrag | QCP::iRangeZoom);
    m_plot->axisRect()->setRangeDrag(Qt::Horizontal | Qt::Vertical);
    m_plot->axisRect()->setRangeZoom(Qt::Horizontal);

    connect(m_plot, &QCustomPlot::mouseWheel, this, [this](QWheelEvent* event) {
        m_plot->axisRect()->setRangeZoom(event->modifiers() & Qt::ControlModifier ? Qt::Vertical
                                                                                  : Qt::Horizontal);
    });
    connect(m_plot, &QCustomPlot::mouseDoubleClick, this, [this] { resetView(); });
    connect(m_plot->xAxis, qOverload<const QCPRange&>(&QCPAxis::rangeChanged), this,
            [this] { reduceForView(); });
    m_plot->installEventFilter(this);

    m_exportFigure = FigureExportDialog::offerOn(m_plot, [this] { return figureTitle(); });
}

QString SignalPlotWidget::figureTitle() const
{
    QStringList names;
    for (const Trace& trace : m_traces)
        names << trace.name;
    return names.join(QStringLiteral(", "));
}

void SignalPlotWidget::addSignal(const QString& name, Signal signal)
{
    Trace trace;
    trace.minValue = std::numeric_limits<double>::infinity();
    trace.maxValue = -std::numeric_limits<double>::infinity();
    for (double v : signal.values) {
        trace.minValue = std::min(trace.minValue, std::isnan(v) ? trace.minValue : v);
        trace.maxValue = std::max(trace.maxValue, std::isnan(v) ? trace.maxValue : v);
    }
    trace.graph = m_plot->addGraph();
    trace.graph->setName(signal.unit.isEmpty() ? name : QStringLiteral("%1 (%2)").arg(name, signal.unit));
    trace.graph->setPen(QPen(traceColor(m_traces.size()), 1));
    trace.graph->setAdaptiveSampling(false); // the reduction below already keeps every extreme
    trace.name = name;
    trace.signal = std::move(signal);
    m_traces.push_back(std::move(trace));
    updateValueLabel();
    resetView();
}

void SignalPlotWidget::addEvents(const LabelledEvents& events)
{
    auto* marks =
        new EventMarks(m_plot->xAxis, m_plot->yAxis, events.events, EventMarks::color(m_events.size()));
    marks->setName(events.label);
    // Below the signals, so that the traces stay on top of the spans.
    marks->setLayer(QStringLiteral("grid"));
    m_events.push_back(marks);
    m_plot->replot(QCustomPlot::rpQueuedReplot);
}

void SignalPlotWidget::updateValueLabel()
{
    // One signal is named with its unit, as in the legend; several by the unit they share.
    if (m_traces.size() == 1) {
        m_plot->yAxis->setLabel(m_traces.front().graph->name());
        return;
    }
    const QString unit = m_traces.front().signal.unit;
    const bool shared = std::all_of(m_traces.begin(), m_traces.end(),
                                    [&unit](const Trace& trace) { return trace.signal.unit == unit; });
    m_plot->yAxis->setLabel(shared && !unit.isEmpty() ? DatasetDefinitions::signalUnitAxisLabel().arg(unit)
                                                      : DatasetDefinitions::signalAxisLabel());
}

int SignalPlotWidget::drawnPointCount(int index) const
{
    if (index < 0 || index >= signalCount())
        return 0;
    return m_traces[static_cast<std::size_t>(index)].graph->dataCount();
}

void SignalPlotWidget::resetView()
{
    double tMin = std::numeric_limits<double>::infinity();
    double tMax = -tMin;
    double vMin = tMin;
    double vMax = -tMin;
    for (const Trace& trace : m_traces) {
        if (trace.signal.time.empty())
            continue;
        tMin = std::min(tMin, trace.signal.time.front());
        tMax = std::max(tMax, trace.signal.time.back());
        vMin = std::min(vMin, trace.minValue);
        vMax = std::max(vMax, trace.maxValue);
    }
    if (!(tMax > tMin))
        tMax = tMin + 1.0;
    if (!(vMax > vMin)) {
        vMin = std::isfinite(vMin) ? vMin - 1.0 : 0.0;
        vMax = vMin + 2.0;
    }
    const double margin = 0.05 * (vMax - vMin);
    m_plot->yAxis->setRange(vMin - margin, vMax + margin);
    if (std::isfinite(tMin))
        m_plot->xAxis->setRange(tMin, tMax); // reduces through rangeChanged
    reduceForView();
    m_plot->replot(QCustomPlot::rpQueuedReplot);
}

void SignalPlotWidget::reduceForView()
{
    const QCPRange range = m_plot->xAxis->range();
    // The widget's width in device pixels bounds the axis rectangle's, which is
    // not laid out yet while the widget resizes.
    const auto columns =
        static_cast<std::size_t>(std::max(1.0, m_plot->width() * m_plot->devicePixelRatioF()));
    for (Trace& trace : m_traces) {
        const MinMaxResult reduced = MinMaxDecimator::reduce(trace.signal.time, trace.signal.values,
                                                             {range.lower, range.upper, columns});
        QVector<QCPGraphData> points(static_cast<qsizetype>(reduced.time.size()));
        for (std::size_t i = 0; i < reduced.time.size(); ++i)
            points[static_cast<qsizetype>(i)] = QCPGraphData(reduced.time[i], reduced.values[i]);
        trace.graph->data()->set(points, true);
    }
}

bool SignalPlotWidget::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_plot && event->type() == QEvent::Resize) {
        reduceForView();
        m_plot->replot(QCustomPlot::rpQueuedReplot);
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace zarvi
