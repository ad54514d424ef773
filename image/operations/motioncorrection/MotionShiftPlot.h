#pragma once

#include "image/operations/motioncorrection/MotionCorrection.h"

#include <QWidget>

#include <vector>

class QCPGraph;
class QCustomPlot;

namespace zarvi {

/// The x and y shifts of a Motion Correction against time, one line each, from the
/// shifts a run kept or from a preview of some frames. GUI thread.
class MotionShiftPlot : public QWidget
{
    Q_OBJECT

public:
    explicit MotionShiftPlot(QWidget* parent = nullptr);

    /// Shows `shifts`, entry k at `time[k]` seconds (the shorter of the two is shown).
    void setShifts(const std::vector<double>& time, const std::vector<FrameShift>& shifts);
    QCPGraph* xGraph() const { return m_x; }
    QCPGraph* yGraph() const { return m_y; }

private:
    QCustomPlot* m_plot;
    QCPGraph* m_x;
    QCPGraph* m_y;
};

} // namespace zarvi
