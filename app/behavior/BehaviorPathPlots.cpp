#include "app/behavior/BehaviorPathPlots.h"

#include "behavior/OccupancyGrid.h"
#include "behavior/operations/measures/ZoneOccupancy.h"
#include "definitions/BehaviorViewDefinitions.h"
#include "definitions/ZarviMainDefinitions.h"
#include "framework/FigureExportDialog.h"
#include "framework/PlotStyle.h"
#include "roi/RoiGeometry.h"

#include <qcustomplot.h>

#include <cmath>
#include <limits>

namespace zarvi {

namespace {

using BD = BehaviorViewDefinitions;
using ZMD = ZarviMainDefinitions;

/// Cells across the longer side of the heat map.
constexpr int occupancyCells = 40;

void styleAxis(QCPAxis* axis)
{
    PlotStyle::apply(axis);
    // Pixel 0 is the image's edge, not a value worth a line of its own.
    axis->grid()->setZeroLinePen(Qt::NoPen);
}

QCustomPlot* makePlot(const QString& objectName, QWidget* parent)
{
    auto* plot = new QCustomPlot(parent);
    plot->setObjectName(objectName);
    PlotStyle::apply(plot);
    for (QCPAxis* axis : {plot->xAxis, plot->yAxis})
        styleAxis(axis);
    plot->xAxis->setLabel(QStringLiteral("x (px)"));
    plot->yAxis->setLabel(QStringLiteral("y (px)"));
    // Image rows grow downwards.
    plot->yAxis->setRangeReversed(true);
    return plot;
}

/// Keeps one pixel as wide as it is high, so that circles stay round.
void fitEqualScale(QCustomPlot* plot, const QRectF& area)
{
    plot->xAxis->setRange(area.left(), area.right());
    plot->yAxis->setRange(area.top(), area.bottom());
    plot->yAxis->setScaleRatio(plot->xAxis, 1.0);
    if (plot->yAxis->range().size() < area.height()) {
        plot->yAxis->setRange(area.top(), area.bottom());
        plot->xAxis->setScaleRatio(plot->yAxis, 1.0);
    }
}

void addOutline(QCPCurve* curve, const RoiShape& shape)
{
    std::vector<cv::Point> outline = roiOutline(shape);
    if (!outline.empty())
        outline.push_back(outline.front());
    QVector<double> x, y;
    for (const cv::Point& p : outline) {
        x << p.x;
        y << p.y;
    }
    curve->setData(x, y);
}

} // namespace

BehaviorPathPlots::BehaviorPathPlots(QWidget* parent)
    : QTabWidget(parent), m_trajectory(makePlot(QStringLiteral("cp_trajectory"), this)),
      m_occupancy(makePlot(QStringLiteral("cp_occupancy"), this))
{
    setDocumentMode(true);
    addTab(m_trajectory, BD::trajectoryTitle());
    addTab(m_occupancy, BD::occupancyTitle());

    m_curve = new QCPCurve(m_trajectory->xAxis, m_trajectory->yAxis);
    m_curve->setPen(QPen(QColor(ZMD::ColorBlue), 1));
    m_marker = new QCPItemEllipse(m_trajectory);
    m_marker->setPen(QPen(Qt::black, 1.5));
    m_marker->setBrush(QColor(255, 80, 80));
    m_marker->setVisible(false);

    m_map = new QCPColorMap(m_occupancy->xAxis, m_occupancy->yAxis);
    auto* scale = new QCPColorScale(m_occupancy);
    m_occupancy->plotLayout()->addElement(0, 1, scale);
    scale->setLabel(BD::occupancyUnit());
    styleAxis(scale->axis());
    m_map->setColorScale(scale);
    m_map->setGradient(QCPColorGradient::gpThermal);
    m_map->setInterpolate(false);
    // Fitted before every replot, since the equal scale depends on the plot's size.
    connect(m_trajectory, &QCustomPlot::beforeReplot, this,
            [this] { fitEqualScale(m_trajectory, m_trajectoryArea); });
    connect(m_occupancy, &QCustomPlot::beforeReplot, this,
            [this] { fitEqualScale(m_occupancy, m_occupancyArea); });
    auto* margins = new QCPMarginGroup(m_occupancy);
    m_occupancy->axisRect()->setMarginGroup(QCP::msBottom | QCP::msTop, margins);
    scale->setMarginGroup(QCP::msBottom | QCP::msTop, margins);
    FigureExportDialog::offerOn(m_trajectory, [] { return BD::trajectoryTitle(); });
    FigureExportDialog::offerOn(m_occupancy, [] { return BD::occupancyTitle(); });
}

void BehaviorPathPlots::setPath(const TrackedPath& path, const QSize& imageSize)
{
    m_path = path;
    m_imageSize = imageSize;
    // One curve, broken at frames without a position (NaN points are gaps).
    QVector<double> x, y;
    constexpr double gap = std::numeric_limits<double>::quiet_NaN();
    for (const cv::Point& p : m_path.positions) {
        const bool missing = isMissingPosition(p);
        x << (missing ? gap : p.x);
        y << (missing ? gap : p.y);
    }
    m_curve->setData(x, y);
    m_marker->setVisible(false);
    redraw();
}

void BehaviorPathPlots::setRegions(const BehaviorRegions& regions)
{
    m_regions = regions;
    redraw();
}

void BehaviorPathPlots::setCurrent(int index)
{
    const bool shown = index >= 0 && index < static_cast<int>(m_path.positions.size()) &&
                       !isMissingPosition(m_path.positions[static_cast<std::size_t>(index)]);
    m_marker->setVisible(shown);
    if (shown) {
        const cv::Point p = m_path.positions[static_cast<std::size_t>(index)];
        const double r = std::max(3.0, 0.012 * std::max(m_imageSize.width(), m_imageSize.height()));
        m_marker->topLeft->setCoords(p.x - r, p.y - r);
        m_marker->bottomRight->setCoords(p.x + r, p.y + r);
    }
    m_trajectory->replot(QCustomPlot::rpQueuedReplot);
}

void BehaviorPathPlots::redraw()
{
    for (QCPCurve* outline : m_outlines)
        m_trajectory->removePlottable(outline);
    m_outlines.clear();
    auto outline = [this](const RoiShape& shape, const QColor& color) {
        auto* curve = new QCPCurve(m_trajectory->xAxis, m_trajectory->yAxis);
        curve->setPen(QPen(color, 1.5));
        addOutline(curve, shape);
        m_outlines.push_back(curve);
    };
    if (m_regions.arena)
        outline(*m_regions.arena, QColor(0, 229, 255));
    for (const RoiShape& zone : m_regions.zones)
        outline(zone, QColor(255, 145, 0));
    const QRectF frame(0, 0, std::max(m_imageSize.width(), 1), std::max(m_imageSize.height(), 1));
    m_trajectoryArea = frame;
    m_trajectory->replot(QCustomPlot::rpQueuedReplot);
    drawOccupancy();
}

void BehaviorPathPlots::drawOccupancy()
{
    const cv::Rect area = m_regions.arena ? roiBounds(*m_regions.arena)
                                          : cv::Rect(0, 0, m_imageSize.width(), m_imageSize.height());
    if (area.empty()) {
        m_map->data()->clear();
        m_occupancy->replot(QCustomPlot::rpQueuedReplot);
        return;
    }
    const int cell = std::max(1, (std::max(area.width, area.height) + occupancyCells - 1) / occupancyCells);
    const OccupancyGrid grid =
        OccupancyGrid::compute(m_path.positions, frameDurations(m_path.time), area, cell);
    // Cell centres, in pixels.
    const double half = (cell - 1) / 2.0;
    m_map->data()->setSize(grid.columns, grid.rows);
    m_map->data()->setRange(QCPRange(area.x + half, area.x + half + (grid.columns - 1) * cell),
                            QCPRange(area.y + half, area.y + half + (grid.rows - 1) * cell));
    for (int r = 0; r < grid.rows; ++r)
        for (int c = 0; c < grid.columns; ++c)
            m_map->data()->setCell(c, r, grid.at(c, r));
    m_map->rescaleDataRange(true);
    m_occupancyArea = QRectF(area.x - 0.5, area.y - 0.5, grid.columns * cell, grid.rows * cell);
    m_occupancy->replot(QCustomPlot::rpQueuedReplot);
}

} // namespace zarvi
