#pragma once

#include <QImage>
#include <QWidget>

namespace zarvi {

/// Draws one image frame scaled to fit, keeping its aspect ratio, and reports
/// which image pixel the mouse is over. GUI thread.
class FrameView : public QWidget
{
    Q_OBJECT

public:
    explicit FrameView(QWidget* parent = nullptr);

    void setImage(const QImage& image);
    /// The image pixel under a widget position; (-1, -1) outside the image.
    QPoint imagePixelAt(const QPointF& position) const;

signals:
    /// The mouse is over image pixel (x, y); (-1, -1) when it left the image.
    void pixelHovered(int x, int y);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    QRectF targetRect() const;

    QImage m_image;
};

} // namespace zarvi
