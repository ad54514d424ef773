#pragma once

#include <QColor>
#include <QGraphicsItem>

#include <opencv2/core.hpp>

#include <vector>

namespace zarvi {

/// The tracked position drawn over the video: a disc at the current frame's position and
/// the path of the seconds before it, fading with age. The path is broken wherever a frame
/// has no position, so a lost frame never draws a line to the image's corner; a current
/// frame without a position shows no disc. Held by its panel, never owned by the scene.
/// GUI thread.
class TrailItem : public QGraphicsItem
{
public:
    TrailItem();

    /// The path (one position per frame, (-1, -1) for none) and its frames' times.
    void setPath(std::vector<cv::Point> positions, std::vector<double> time);
    /// The frame of the path shown as current; -1 for none.
    void setCurrent(int index);
    int current() const { return m_current; }
    /// Seconds of path drawn behind the current position.
    void setTrailSeconds(double seconds);
    void setColor(const QColor& color);

    QRectF boundingRect() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

private:
    std::vector<cv::Point> m_positions;
    std::vector<double> m_time;
    QRectF m_bounds;
    int m_current = -1;
    double m_trailSeconds = 5.0;
    QColor m_color{255, 80, 80};
};

} // namespace zarvi
