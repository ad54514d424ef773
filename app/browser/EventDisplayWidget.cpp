#include "app/browser/EventDisplayWidget.h"

#include "app/browser/EventMarks.h"
#include "app/browser/SignalPlotWidget.h"
#include "definitions/DatasetDefinitions.h"
#include "framework/FigureExportDialog.h"
#include "framework/PlotStyle.h"

#include <QCheckBox>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <qcustomplot.h>

#include <cmath>
#include <limits>

namespace zarvi {

namespace {

using DD = DatasetDefinitions;

/// Half the height of a row's marks; the rest of the row keeps rows apart.
constexpr double HalfRow = 0.4;

} // namespace

EventDisplayWidget::EventDisplayWidget(std::vector<LabelledEvents> events, QWidget* parent)
    : QWidget(parent), m_events(std::move(events)),
      cb_overSignals(new QCheckBox(DD::showOverSignalsLabel(), this)), m_stack(new QStackedWidget(this)),
      m_raster(new QCustomPlot(m_stack))
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    cb_overSignals->setObjectName(QStringLiteral("cb_overSignals"));
    cb_overSignals->setToolTip(DD::showOverSignalsTooltip());
    cb_overSignals->setVisible(false);
    layout->addWidget(cb_overSignals);
    layout->addWidget(m_stack, 1);
    m_stack->addWidget(m_raster);

    PlotStyle::apply(m_raster);
    m_raster->xAxis->setLabel(DD::timeAxisLabel());
    // Rows are named, not measured: one label per row and no grid between them.
    auto ticker = QSharedPointer<QCPAxisTickerText>::create();
    m_raster->yAxis->setTicker(ticker);
    m_raster->yAxis->grid()->setVisible(false);
    m_raster->yAxis->setSubTicks(false);
    for (std::size_t i = 0; i < m_events.size(); ++i) {
        const int row = static_cast<int>(i);
        auto* marks =
            new EventMarks(m_raster->xAxis, m_raster->yAxis, m_events[i].events, EventMarks::color(i));
        marks->setName(m_events[i].label);
        marks->setBand(rowCentre(row) - HalfRow, rowCentre(row) + HalfRow);
        m_rows.push_back(marks);
        ticker->addTick(rowCentre(row), m_events[i].label);
    }
    m_raster->setInteractions(QCP::iRangeDrag | QCP::iRangeZoom);
    m_raster->axisRect()->setRangeDrag(Qt::Horizontal);
    m_raster->axisRect()->setRangeZoom(Qt::Horizontal);
    connect(m_raster, &QCustomPlot::mouseDoubleClick, this, [this] { resetView(); });
    FigureExportDialog::offerOn(m_raster, [this] {
        QStringList labels;
        for (const LabelledEvents& array : m_events)
            labels << array.label;
        return labels.join(QStringLiteral(", "));
    });
    connect(cb_overSignals, &QCheckBox::toggled, this, &EventDisplayWidget::setShowOverSignals);
    resetView();
}

double EventDisplayWidget::rowCentre(int row) const
{
    // The first array at the top, as a list reads.
    return static_cast<double>(m_events.size()) - 1.0 - row;
}

void EventDisplayWidget::setSignalLoader(SignalLoader loader)
{
    m_loader = std::move(loader);
    cb_overSignals->setVisible(static_cast<bool>(m_loader));
}

void EventDisplayWidget::setShowOverSignals(bool shown)
{
    if (shown && !m_overlay && m_loader) {
        NamedSignals loaded = m_loader();
        if (!loaded.empty()) {
            m_overlay = new SignalPlotWidget(m_stack);
            m_overlay->setObjectName(QStringLiteral("cp_overSignals"));
            for (auto& [name, signal] : loaded)
                m_overlay->addSignal(name, std::move(signal));
            for (const LabelledEvents& events : m_events)
                m_overlay->addEvents(events);
            m_stack->addWidget(m_overlay);
        }
    }
    const bool overSignals = shown && m_overlay;
    const QSignalBlocker blocker(cb_overSignals);
    cb_overSignals->setChecked(overSignals);
    m_stack->setCurrentWidget(overSignals ? static_cast<QWidget*>(m_overlay) : m_raster);
}

void EventDisplayWidget::resetView()
{
    double first = std::numeric_limits<double>::infinity();
    double last = -first;
    for (EventMarks* marks : m_rows) {
        bool found = false;
        const QCPRange range = marks->getKeyRange(found);
        if (found) {
            first = std::min(first, range.lower);
            last = std::max(last, range.upper);
        }
    }
    if (!std::isfinite(first)) {
        first = 0.0;
        last = 1.0;
    }
    // A little room on both sides, so that the first and last ticks stay off the axes.
    const double margin = last > first ? 0.02 * (last - first) : 0.5;
    m_raster->xAxis->setRange(first - margin, last + margin);
    m_raster->yAxis->setRange(-0.5, std::max(1, rowCount()) - 0.5);
    m_raster->replot(QCustomPlot::rpQueuedReplot);
}

} // namespace zarvi
