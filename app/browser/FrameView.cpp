#include "app/browser/FrameView.h"

#include "definitions/ZarviMainDefinitions.h"

#include <QMouseEvent>
#include <QPainter>

#include <cmath>

namespace zarvi {

FrameView::FrameView(QWidget* parent) : QWidget(parent)
{
    setMouseTracking(true);
    setMinimumSize(64, 64);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void FrameView::setImage(const QImage& image)
{
    m_image = image;
    update();
}

QRectF FrameView::targetRect() const
{
    if (m_image.isNull())
        return {};
    QSizeF size = m_image.size();
    size.scale(QSizeF(width(), height()), Qt::KeepAspectRatio);
    return QRectF(QPointF((width() - size.width()) / 2.0, (height() - size.height()) / 2.0), size);
}

QPoint FrameView::imagePixelAt(const QPointF& position) const
{
    const QRectF target = targetRect();
    if (target.isEmpty() || !target.contains(position))
        return {-1, -1};
    const int x =
        static_cast<int>(std::floor((position.x() - target.left()) * m_image.width() / target.width()));
    const int y =
        static_cast<int>(std::floor((position.y() - target.top()) * m_image.height() / target.height()));
    if (x < 0 || y < 0 || x >= m_image.width() || y >= m_image.height())
        return {-1, -1};
    return {x, y};
}

void FrameView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), QColor(ZarviMainDefinitions::ColorDarkerGrey));
    if (m_image.isNull())
        return;
    const QRectF target = targetRect();
    // Enlarged frames show their pixels; reduced ones are smoothed.
    painter.setRenderHint(QPainter::SmoothPixmapTransform, target.width() < m_image.width());
    painter.drawImage(target, m_image);
}

void FrameView::mouseMoveEvent(QMouseEvent* event)
{
    const QPoint pixel = imagePixelAt(event->position());
    emit pixelHovered(pixel.x(), pixel.y());
    QWidget::mouseMoveEvent(event);
}

void FrameView::leaveEvent(QEvent* event)
{
    emit pixelHovered(-1, -1);
    QWidget::leaveEvent(event);
}

} // namespace zarvi
