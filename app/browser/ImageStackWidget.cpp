#include "app/browser/ImageStackWidget.h"

#include "datafile/ImageFrameReader.h"
#include "definitions/DatasetDefinitions.h"
#include "framework/LockedFileRead.h"
#include "roi/ZarviGraphicsView.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QSlider>
#include <QSpinBox>
#include <QVBoxLayout>

namespace zarvi {

using DD = DatasetDefinitions;

ImageStackWidget::ImageStackWidget(const QString& filePath, const QString& datasetPath, QWidget* parent)
    : QWidget(parent), m_filePath(filePath), m_datasetPath(datasetPath), m_view(new ZarviGraphicsView(this)),
      m_slider(new QSlider(Qt::Horizontal, this)), sb_frame(new QSpinBox(this)), lb_frame(new QLabel(this)),
      cb_autoContrast(new QCheckBox(DD::autoContrastLabel(), this)), lb_pixel(new QLabel(this))
{
    m_view->setObjectName(QStringLiteral("w_frame"));
    m_slider->setObjectName(QStringLiteral("sl_frame"));
    sb_frame->setObjectName(QStringLiteral("sb_frame"));
    lb_frame->setObjectName(QStringLiteral("lb_frame"));
    cb_autoContrast->setObjectName(QStringLiteral("cb_autoContrast"));
    lb_pixel->setObjectName(QStringLiteral("lb_pixel"));
    cb_autoContrast->setChecked(true);
    m_view->setAutoContrast(true);
    lb_pixel->setMinimumWidth(
        fontMetrics().horizontalAdvance(DD::pixelLabel().arg(9999, 4).arg(9999).arg(65535)));

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 2);
    layout->addWidget(m_view, 1);
    auto* controls = new QHBoxLayout;
    controls->addWidget(m_slider, 1);
    controls->addWidget(sb_frame);
    controls->addWidget(lb_frame);
    controls->addWidget(cb_autoContrast);
    controls->addWidget(lb_pixel);
    layout->addLayout(controls);

    connect(m_slider, &QSlider::valueChanged, this, [this](int value) { showFrame(value); });
    connect(sb_frame, qOverload<int>(&QSpinBox::valueChanged), this,
            [this](int value) { showFrame(value - 1); });
    connect(cb_autoContrast, &QCheckBox::toggled, this, &ImageStackWidget::setAutoContrast);
    connect(m_view, &ZarviGraphicsView::pixelHovered, this, [this](int x, int y) { showPixel(x, y); });
}

bool ImageStackWidget::load(QString& error)
{
    {
        LockedFileRead read(m_filePath);
        if (!read.isOpen()) {
            error = read.error();
            return false;
        }
        ImageFrameReader stack;
        if (!stack.open(read.reader(), m_datasetPath, error))
            return false;
        m_height = stack.info().height;
        m_width = stack.info().width;
        m_frames = static_cast<int>(stack.info().frames);
        m_bitCount = stack.info().bitCount;
        m_frameTimes = stack.time();
    }
    {
        const QSignalBlocker blockSlider(m_slider);
        const QSignalBlocker blockSpin(sb_frame);
        m_slider->setRange(0, std::max(0, m_frames - 1));
        sb_frame->setRange(m_frames > 0 ? 1 : 0, m_frames);
    }
    m_slider->setEnabled(m_frames > 1);
    sb_frame->setEnabled(m_frames > 1);
    if (m_frames > 0)
        showFrame(0);
    else
        updateFrameLabel();
    return true;
}

bool ImageStackWidget::showFrame(int index)
{
    if (index < 0 || index >= m_frames)
        return false;
    cv::Mat frame;
    {
        LockedFileRead read(m_filePath);
        if (!read.isOpen()) {
            emit sendStatusMessage(read.isBusy() ? read.error()
                                                 : DD::readFailedMessage().arg(m_datasetPath, read.error()));
            return false;
        }
        ImageFrameReader stack;
        QString error;
        if (!stack.open(read.reader(), m_datasetPath, error) ||
            !stack.readRawFrame(static_cast<std::size_t>(index), frame, error)) {
            emit sendStatusMessage(DD::readFailedMessage().arg(m_datasetPath, error));
            return false;
        }
    }
    // A frame the reader made is one continuous block, row after row.
    const auto* pixels = frame.ptr<std::uint16_t>();
    std::vector<std::uint16_t> values(pixels, pixels + frame.total());
    m_current = index;
    m_view->setFrame(std::move(values), m_width, m_height, m_bitCount);
    {
        const QSignalBlocker blockSlider(m_slider);
        const QSignalBlocker blockSpin(sb_frame);
        m_slider->setValue(index);
        sb_frame->setValue(index + 1);
    }
    updateFrameLabel();
    return true;
}

void ImageStackWidget::setAutoContrast(bool enabled)
{
    if (cb_autoContrast->isChecked() != enabled)
        cb_autoContrast->setChecked(enabled); // comes back here through toggled()
    else
        m_view->setAutoContrast(enabled);
}

std::span<const std::uint16_t> ImageStackWidget::frame() const
{
    return m_view->frame();
}

ContrastRange ImageStackWidget::contrast() const
{
    return m_view->contrast();
}

void ImageStackWidget::updateFrameLabel()
{
    const int shown = m_current + 1;
    if (m_current >= 0 && static_cast<std::size_t>(m_current) < m_frameTimes.size())
        lb_frame->setText(DD::frameTimeLabel().arg(shown).arg(m_frames).arg(
            m_frameTimes[static_cast<std::size_t>(m_current)], 0, 'f', 3));
    else
        lb_frame->setText(DD::frameLabel().arg(std::max(shown, 0)).arg(m_frames));
}

void ImageStackWidget::showPixel(int x, int y)
{
    const int value = m_current < 0 ? -1 : m_view->pixelValue(x, y);
    if (value < 0) {
        lb_pixel->clear();
        return;
    }
    lb_pixel->setText(DD::pixelLabel().arg(x).arg(y).arg(value));
}

QString ImageStackWidget::pixelText() const
{
    return lb_pixel->text();
}

} // namespace zarvi
