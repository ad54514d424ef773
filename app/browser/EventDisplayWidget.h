#pragma once

#include "datafile/SignalDataset.h"
#include "events/EventDisplayData.h"

#include <QWidget>

#include <functional>
#include <utility>
#include <vector>

class QCheckBox;
class QCustomPlot;
class QStackedWidget;

namespace zarvi {

class EventMarks;
class SignalPlotWidget;

/// Shows event arrays on their own as a raster: one row per array, the first at the
/// top, labelled with its name, a tick at each onset and, where the array has
/// offsets, a shaded span to each offset. "Show over signals" swaps the raster for
/// the signals recorded with the arrays, loaded on first use, with the events drawn
/// over them. Drag pans, the wheel zooms time, a double click shows everything. GUI
/// thread.
class EventDisplayWidget : public QWidget
{
    Q_OBJECT

public:
    using NamedSignals = std::vector<std::pair<QString, Signal>>;
    /// Reads the signals to draw the events over; an empty list leaves the raster shown.
    using SignalLoader = std::function<NamedSignals()>;

    explicit EventDisplayWidget(std::vector<LabelledEvents> events, QWidget* parent = nullptr);

    /// Offers "Show over signals", which calls `loader` once.
    void setSignalLoader(SignalLoader loader);
    void setShowOverSignals(bool shown);

    int rowCount() const { return static_cast<int>(m_rows.size()); }
    /// The marks of row `row` (0 is the first array, drawn at the top).
    EventMarks* rowMarks(int row) const { return m_rows.at(static_cast<std::size_t>(row)); }
    /// The value-axis position of row `row`'s centre.
    double rowCentre(int row) const;
    QCustomPlot* raster() const { return m_raster; }
    /// The signals with the events over them; null until first shown.
    SignalPlotWidget* overlay() const { return m_overlay; }
    QCheckBox* overSignalsBox() const { return cb_overSignals; }
    /// Shows every event of every row.
    void resetView();

private:
    std::vector<LabelledEvents> m_events;
    std::vector<EventMarks*> m_rows;
    SignalLoader m_loader;
    QCheckBox* cb_overSignals;
    QStackedWidget* m_stack;
    QCustomPlot* m_raster;
    SignalPlotWidget* m_overlay = nullptr;
};

} // namespace zarvi
