#pragma once

#include "datafile/SignalDataset.h"
#include "events/EventDisplayData.h"

#include <QWidget>

#include <vector>

class QAction;
class QCPGraph;
class QCustomPlot;

namespace zarvi {

class EventMarks;

/// Plots signals against time in seconds, overlaid with a legend, and event arrays
/// over them (a line at each onset, a shaded span to each offset). Drag pans,
/// the wheel zooms time (with Ctrl: values), a double click shows everything.
/// It keeps the whole signals in memory but draws only the minimum and maximum
/// of each pixel column of the visible range, recomputed whenever the range or
/// the size changes, so that 10^7 samples stay fluid. The value axis is named after the
/// signals' unit; the context menu exports the plot as a figure. GUI thread.
class SignalPlotWidget : public QWidget
{
    Q_OBJECT

public:
    explicit SignalPlotWidget(QWidget* parent = nullptr);

    /// Adds a signal on top of those shown (the plot keeps it) and shows everything.
    void addSignal(const QString& name, Signal signal);
    int signalCount() const { return static_cast<int>(m_traces.size()); }
    /// Draws an event array over the signals, at their full height.
    void addEvents(const LabelledEvents& events);
    int eventArrayCount() const { return static_cast<int>(m_events.size()); }
    EventMarks* eventMarks(int index) const { return m_events.at(static_cast<std::size_t>(index)); }
    /// How many points are drawn for signal `index` in the current view.
    int drawnPointCount(int index) const;
    /// Shows every signal whole.
    void resetView();
    QCustomPlot* plot() const { return m_plot; }
    /// The names of the signals shown, the title proposed for a figure of the plot.
    QString figureTitle() const;
    QAction* exportFigureAction() const { return m_exportFigure; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Trace
    {
        QString name;
        Signal signal;
        QCPGraph* graph = nullptr;
        double minValue = 0.0;
        double maxValue = 0.0;
    };

    /// Recomputes what each graph draws for the visible time range.
    void reduceForView();
    void updateValueLabel();

    QCustomPlot* m_plot;
    QAction* m_exportFigure;
    std::vector<Trace> m_traces;
    std::vector<EventMarks*> m_events;
};

} // namespace zarvi
