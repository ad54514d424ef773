#pragma once

#include <QWidget>

class QCPColorMap;
class QCPColorScale;
class QCustomPlot;

namespace zarvi {

struct StoredPerieventResult;

/// The trial-by-time matrix as a heat map: one row of cells per trial (the first on
/// top), time in seconds along, the value as colour with its scale beside. GUI thread.
class PerieventHeatMap : public QWidget
{
    Q_OBJECT

public:
    explicit PerieventHeatMap(QWidget* parent = nullptr);

    void setResult(const StoredPerieventResult& result);
    QCustomPlot* plot() const { return m_plot; }
    QCPColorMap* colorMap() const { return m_map; }
    QCPColorScale* colorScale() const { return m_scale; }

private:
    QCustomPlot* m_plot;
    QCPColorMap* m_map;
    QCPColorScale* m_scale;
};

} // namespace zarvi
