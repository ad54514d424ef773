#pragma once

#include "behavior/BehaviorRegions.h"
#include "behavior/CoordinatesDataset.h"

#include <QSize>
#include <QTabWidget>

class QCPColorMap;
class QCPCurve;
class QCPItemEllipse;
class QCustomPlot;

namespace zarvi {

/// The tracked path as plots, in video pixels with y downwards as on the video: the
/// trajectory (broken at every frame without a position) with the arena and zones outlined
/// and the current position marked, and the occupancy heat map of the arena (seconds spent
/// per cell; the whole frame when there is no arena). GUI thread.
class BehaviorPathPlots : public QTabWidget
{
    Q_OBJECT

public:
    explicit BehaviorPathPlots(QWidget* parent = nullptr);

    /// Plots `path` over a video of `imageSize` pixels; an empty path clears the plots.
    void setPath(const TrackedPath& path, const QSize& imageSize);
    void setRegions(const BehaviorRegions& regions);
    /// Marks the position of frame `index` of the path; -1 hides the mark.
    void setCurrent(int index);

    QCustomPlot* trajectoryPlot() const { return m_trajectory; }
    QCustomPlot* occupancyPlot() const { return m_occupancy; }
    QCPColorMap* occupancyMap() const { return m_map; }

private:
    void redraw();
    void drawOccupancy();

    QCustomPlot* m_trajectory;
    QCustomPlot* m_occupancy;
    QCPCurve* m_curve;
    QCPItemEllipse* m_marker;
    QCPColorMap* m_map;
    TrackedPath m_path;
    QSize m_imageSize;
    BehaviorRegions m_regions;
    std::vector<QCPCurve*> m_outlines;
    /// What each plot shows, in pixels.
    QRectF m_trajectoryArea{0, 0, 1, 1};
    QRectF m_occupancyArea{0, 0, 1, 1};
};

} // namespace zarvi
