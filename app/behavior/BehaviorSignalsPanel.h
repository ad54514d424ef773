#pragma once

#include "datafile/SignalDataset.h"

#include <QPoint>
#include <QWidget>

class QCPItemStraightLine;
class QMouseEvent;

namespace zarvi {

class SignalPlotWidget;

/// The signals of the recording under the behaviour video, with a vertical cursor at the
/// video's current time. A click (a press and release without a drag) on the plot asks for
/// the video at that time. GUI thread.
class BehaviorSignalsPanel : public QWidget
{
    Q_OBJECT

public:
    explicit BehaviorSignalsPanel(QWidget* parent = nullptr);

    /// Replaces the signals shown.
    void setSignals(std::vector<std::pair<QString, Signal>> traces);
    SignalPlotWidget* plotWidget() const { return m_plot; }
    /// Moves the cursor to `seconds` on the recording's clock.
    void setCursorTime(double seconds);
    double cursorTime() const { return m_cursorTime; }

signals:
    void timeClicked(double seconds);

private:
    void rebuildPlot();

    SignalPlotWidget* m_plot = nullptr;
    QCPItemStraightLine* m_cursor = nullptr;
    double m_cursorTime = 0.0;
    QPoint m_pressedAt;
};

} // namespace zarvi
