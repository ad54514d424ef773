#pragma once

#include <QWidget>

class QCPGraph;
class QCustomPlot;

namespace zarvi {

struct StoredPerieventResult;

/// The trials' mean trace against time, inside a band of ± its standard error
/// across trials, with a line at the event. GUI thread.
class PerieventTracePlot : public QWidget
{
    Q_OBJECT

public:
    explicit PerieventTracePlot(QWidget* parent = nullptr);

    void setResult(const StoredPerieventResult& result);
    QCustomPlot* plot() const { return m_plot; }
    QCPGraph* meanGraph() const { return m_mean; }

private:
    QCustomPlot* m_plot;
    QCPGraph* m_mean;
    QCPGraph* m_upper;
    QCPGraph* m_lower;
};

} // namespace zarvi
