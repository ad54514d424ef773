#include "roi/ZarviGraphicsView.h"

#include "definitions/DatasetDefinitions.h"
#include "definitions/ZarviMainDefinitions.h"
#include "roi/AbstractROI.h"
#include "roi/AbstractROIHandler.h"

#include <QGraphicsPixmapItem>
#include <QGraphicsScene>
#include <QMouseEvent>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace zarvi {

namespace {

// One wheel notch (120 eighths of a degree) zooms by a quarter.
constexpr double zoomPerNotch = 1.25;
constexpr double maxZoom = 64.0;

} // namespace

ZarviGraphicsView::ZarviGraphicsView(QWidget* parent)
    : QGraphicsView(parent), m_scene(new QGraphicsScene(this)), m_pixmap(m_scene->addPixmap(QPixmap()))
{
    setScene(m_scene);
    m_pixmap->setZValue(-1);
    // Pixel (x, y) covers (x - 0.5, y - 0.5) to (x + 0.5, y + 0.5): rounding a scene
    // position gives the pixel under it.
    m_pixmap->setOffset(-0.5, -0.5);
    setBackgroundBrush(QColor(ZarviMainDefinitions::ColorDarkerGrey));
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setTransformationAnchor(QGraphicsView::NoAnchor);
    setResizeAnchor(QGraphicsView::NoAnchor);
    // The outlines are drawn with screen-wide pens; a whole repaint leaves no traces.
    setViewportUpdateMode(QGraphicsView::FullViewportUpdate);
    setMinimumSize(64, 64);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    viewport()->setMouseTracking(true);
}

ZarviGraphicsView::~ZarviGraphicsView()
{
    clearActiveHandler();
    // The handlers own their ROI items through shared pointers: take them out before the
    // scene would delete them.
    for (QGraphicsItem* item : m_scene->items())
        if (item != m_pixmap && item->parentItem() == nullptr)
            m_scene->removeItem(item);
}

bool ZarviGraphicsView::setFrame(std::vector<std::uint16_t> frame, int width, int height, int bitCount)
{
    if (width <= 0 || height <= 0 || frame.size() != static_cast<std::size_t>(width) * height)
        return false;
    const bool resized = QSize(width, height) != m_imageSize;
    m_colorFrame = QImage();
    m_frame = std::move(frame);
    m_imageSize = QSize(width, height);
    m_bitCount = bitCount;
    refreshImage();
    if (resized) {
        m_scene->setSceneRect(QRectF(-0.5, -0.5, width, height));
        fitToView();
    }
    return true;
}

bool ZarviGraphicsView::setColorFrame(const QImage& image)
{
    if (image.isNull())
        return false;
    const bool resized = image.size() != m_imageSize;
    m_frame.clear();
    m_colorFrame = image;
    m_imageSize = image.size();
    m_pixmap->setPixmap(QPixmap::fromImage(m_colorFrame));
    if (resized) {
        m_scene->setSceneRect(QRectF(-0.5, -0.5, m_imageSize.width(), m_imageSize.height()));
        fitToView();
    }
    return true;
}

int ZarviGraphicsView::pixelValue(int x, int y) const
{
    if (x < 0 || y < 0 || x >= m_imageSize.width() || y >= m_imageSize.height())
        return -1;
    if (!m_colorFrame.isNull())
        return qGray(m_colorFrame.pixel(x, y));
    return m_frame[static_cast<std::size_t>(y) * m_imageSize.width() + x];
}

void ZarviGraphicsView::setAutoContrast(bool enabled)
{
    m_autoContrast = enabled;
    refreshImage();
}

void ZarviGraphicsView::setActiveHandler(AbstractROIHandler* handler)
{
    if (handler == m_handler)
        return;
    clearActiveHandler();
    if (!handler)
        return;
    m_handler = handler;
    // Mouse events arrive at the viewport, keys at the view.
    viewport()->installEventFilter(handler);
    installEventFilter(handler);
    handler->setActive(true);
}

void ZarviGraphicsView::clearActiveHandler()
{
    if (!m_handler)
        return;
    viewport()->removeEventFilter(m_handler);
    removeEventFilter(m_handler);
    m_handler->setActive(false);
    m_handler = nullptr;
}

AbstractROIHandler* ZarviGraphicsView::activeHandler() const
{
    return m_handler;
}

void ZarviGraphicsView::fitToView()
{
    m_followsSize = true;
    if (m_imageSize.isEmpty())
        return;
    const double scale = fitScale();
    setTransform(QTransform::fromScale(scale, scale));
    centerOn(m_scene->sceneRect().center());
    updateSmoothing();
}

double ZarviGraphicsView::zoom() const
{
    return transform().m11();
}

QPointF ZarviGraphicsView::scenePosition(const QPointF& viewportPos) const
{
    return viewportTransform().inverted().map(viewportPos);
}

bool ZarviGraphicsView::viewportEvent(QEvent* event)
{
    if (event->type() == QEvent::Leave)
        emit pixelHovered(-1, -1, -1);
    return QGraphicsView::viewportEvent(event);
}

void ZarviGraphicsView::wheelEvent(QWheelEvent* event)
{
    const double notches = event->angleDelta().y() / 120.0;
    if (m_imageSize.isEmpty() || notches == 0.0) {
        QGraphicsView::wheelEvent(event);
        return;
    }
    const double fit = fitScale();
    const double scale =
        std::clamp(zoom() * std::pow(zoomPerNotch, notches), fit / 2.0, std::max(fit, maxZoom));
    zoomAround(scale, event->position());
    event->accept();
}

void ZarviGraphicsView::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::MiddleButton) {
        m_panning = true;
        m_panFrom = event->position();
        viewport()->setCursor(Qt::ClosedHandCursor);
        event->accept();
        return;
    }
    QGraphicsView::mousePressEvent(event);
}

void ZarviGraphicsView::mouseMoveEvent(QMouseEvent* event)
{
    reportPixel(event->position());
    if (m_panning) {
        const QPointF delta = event->position() - m_panFrom;
        m_panFrom = event->position();
        horizontalScrollBar()->setValue(horizontalScrollBar()->value() - qRound(delta.x()));
        verticalScrollBar()->setValue(verticalScrollBar()->value() - qRound(delta.y()));
        event->accept();
        return;
    }
    QGraphicsView::mouseMoveEvent(event);
}

void ZarviGraphicsView::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::MiddleButton && m_panning) {
        m_panning = false;
        viewport()->unsetCursor();
        event->accept();
        return;
    }
    QGraphicsView::mouseReleaseEvent(event);
}

void ZarviGraphicsView::resizeEvent(QResizeEvent* event)
{
    QGraphicsView::resizeEvent(event);
    if (m_followsSize)
        fitToView();
}

void ZarviGraphicsView::showEvent(QShowEvent* event)
{
    QGraphicsView::showEvent(event);
    if (m_followsSize)
        fitToView();
}

void ZarviGraphicsView::refreshImage()
{
    if (m_imageSize.isEmpty() || !m_colorFrame.isNull())
        return;
    m_contrast = m_autoContrast ? FrameContrast::percentileRange(m_frame, DatasetDefinitions::AutoContrastLow,
                                                                 DatasetDefinitions::AutoContrastHigh)
                                : FrameContrast::fullRange(m_bitCount);
    m_pixmap->setPixmap(QPixmap::fromImage(
        FrameContrast::toGray8(m_frame, m_imageSize.width(), m_imageSize.height(), m_contrast)));
}

void ZarviGraphicsView::reportPixel(const QPointF& viewportPos)
{
    const QPoint pixel = AbstractROI::toPixel(scenePosition(viewportPos));
    const int value = pixelValue(pixel.x(), pixel.y());
    if (value < 0)
        emit pixelHovered(-1, -1, -1);
    else
        emit pixelHovered(pixel.x(), pixel.y(), value);
}

double ZarviGraphicsView::fitScale() const
{
    const QSize area = viewport()->size();
    if (m_imageSize.isEmpty() || area.isEmpty())
        return 1.0;
    return std::min(static_cast<double>(area.width()) / m_imageSize.width(),
                    static_cast<double>(area.height()) / m_imageSize.height());
}

void ZarviGraphicsView::zoomAround(double scale, const QPointF& viewportPos)
{
    const QPointF anchor = scenePosition(viewportPos);
    setTransform(QTransform::fromScale(scale, scale));
    const QPointF shift = viewportTransform().map(anchor) - viewportPos;
    horizontalScrollBar()->setValue(horizontalScrollBar()->value() + qRound(shift.x()));
    verticalScrollBar()->setValue(verticalScrollBar()->value() + qRound(shift.y()));
    m_followsSize = false;
    updateSmoothing();
}

void ZarviGraphicsView::updateSmoothing()
{
    // Enlarged frames show their pixels; reduced ones are smoothed.
    m_pixmap->setTransformationMode(zoom() < 1.0 ? Qt::SmoothTransformation : Qt::FastTransformation);
}

} // namespace zarvi
