#include "image/ImageFramePreview.h"

#include "datafile/ImageFrameReader.h"
#include "definitions/ImageOperationDefinitions.h"
#include "framework/BackgroundJob.h"
#include "framework/LockedFileRead.h"
#include "roi/ZarviGraphicsView.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>
#include <QSlider>
#include <QSpinBox>

namespace zarvi {

using ID = ImageOperationDefinitions;

struct ImageFramePreview::Result
{
    int width = 0;
    int height = 0;
    std::vector<std::uint16_t> input;
    std::vector<std::uint16_t> output;
    int outputWidth = 0;
    int outputHeight = 0;
    QString error;
};

namespace {

std::vector<std::uint16_t> pixelsOf(const cv::Mat& frame16)
{
    std::vector<std::uint16_t> pixels(frame16.total());
    for (int y = 0; y < frame16.rows; ++y)
        std::copy_n(frame16.ptr<std::uint16_t>(y), frame16.cols,
                    pixels.data() + std::size_t(y) * frame16.cols);
    return pixels;
}

} // namespace

ImageFramePreview::ImageFramePreview(QWidget* parent)
    : QWidget(parent), m_job(std::make_unique<BackgroundJob>(tr("Preview Progress")))
{
    m_job->setDialogShown(false);
    auto* layout = new QGridLayout(this);
    m_input = new ZarviGraphicsView(this);
    m_input->setObjectName(QStringLiteral("gv_input"));
    m_output = new ZarviGraphicsView(this);
    m_output->setObjectName(QStringLiteral("gv_output"));
    auto* inputLabel = new QLabel(tr("Input"), this);
    lb_output = new QLabel(tr("Preview"), this);
    layout->addWidget(inputLabel, 0, 0);
    layout->addWidget(lb_output, 0, 1);
    layout->addWidget(m_input, 1, 0);
    layout->addWidget(m_output, 1, 1);
    layout->setColumnStretch(0, 1);
    layout->setRowStretch(1, 1);

    auto* controls = new QHBoxLayout;
    m_slider = new QSlider(Qt::Horizontal, this);
    m_slider->setObjectName(QStringLiteral("sl_frame"));
    sb_frame = new QSpinBox(this);
    sb_frame->setObjectName(QStringLiteral("sb_frame"));
    for (QWidget* w : {static_cast<QWidget*>(m_slider), static_cast<QWidget*>(sb_frame)})
        w->setToolTip(ID::frameSliderTooltip());
    cb_autocontrast = new QCheckBox(ID::autocontrastLabel(), this);
    cb_autocontrast->setObjectName(QStringLiteral("cb_autocontrast"));
    cb_autocontrast->setChecked(true);
    lb_status = new QLabel(this);
    lb_status->setObjectName(QStringLiteral("lb_previewStatus"));
    controls->addWidget(m_slider, 1);
    controls->addWidget(sb_frame);
    controls->addWidget(cb_autocontrast);
    layout->addLayout(controls, 2, 0, 1, 2);
    layout->addWidget(lb_status, 3, 0, 1, 2);

    connect(m_slider, &QSlider::valueChanged, sb_frame, &QSpinBox::setValue);
    connect(sb_frame, &QSpinBox::valueChanged, m_slider, &QSlider::setValue);
    connect(sb_frame, &QSpinBox::valueChanged, this, &ImageFramePreview::refresh);
    connect(cb_autocontrast, &QCheckBox::toggled, this, [this](bool on) {
        m_input->setAutoContrast(on);
        m_output->setAutoContrast(on);
    });
    connect(m_job.get(), &BackgroundJob::finished, this, &ImageFramePreview::onJobFinished);
    m_output->setVisible(false);
    lb_output->setVisible(false);
    layout->setColumnStretch(1, 0);
}

ImageFramePreview::~ImageFramePreview() = default;

void ImageFramePreview::setStack(const QString& filepath, const QString& stackPath, int frames, int bitCount)
{
    m_filepath = filepath;
    m_stackPath = stackPath;
    m_bitCount = bitCount;
    const QSignalBlocker sliderBlock(m_slider);
    const QSignalBlocker spinBlock(sb_frame);
    m_slider->setRange(0, std::max(0, frames - 1));
    sb_frame->setRange(0, std::max(0, frames - 1));
    m_slider->setValue(0);
    sb_frame->setValue(0);
    refresh();
}

void ImageFramePreview::setComputation(Computation computation)
{
    m_computation = std::move(computation);
    const bool computed = static_cast<bool>(m_computation);
    m_output->setVisible(computed);
    lb_output->setVisible(computed);
    // Without a result the input takes the whole width.
    static_cast<QGridLayout*>(layout())->setColumnStretch(1, computed ? 1 : 0);
    refresh();
}

int ImageFramePreview::currentFrame() const
{
    return sb_frame->value();
}

bool ImageFramePreview::isBusy() const
{
    return m_job->isRunning() || m_pending;
}

void ImageFramePreview::showFrame(int index)
{
    // The slider follows the spin box, and the spin box's change reads the frame.
    sb_frame->setValue(index);
}

void ImageFramePreview::refresh()
{
    if (m_stackPath.isEmpty())
        return;
    if (m_job->isRunning()) {
        m_pending = true;
        return;
    }
    startJob();
}

void ImageFramePreview::startJob()
{
    m_pending = false;
    auto result = std::make_shared<Result>();
    m_result = result;
    const QString filepath = m_filepath, stackPath = m_stackPath;
    const std::size_t index = static_cast<std::size_t>(sb_frame->value());
    const Computation computation = m_computation;
    m_job->start(QString(), [=](Feedback&) {
        cv::Mat frame16, frame;
        {
            // The file is let go before the computation, which may take a while.
            LockedFileRead read(filepath, LockedFileRead::Wait::Briefly);
            ImageFrameReader reader;
            if (!read.isOpen()) {
                result->error = read.error();
                return;
            }
            if (!reader.open(read.reader(), stackPath, result->error) ||
                !reader.readRawFrame(index, frame16, result->error))
                return;
        }
        result->width = frame16.cols;
        result->height = frame16.rows;
        result->input = pixelsOf(frame16);
        if (!computation)
            return;
        frame16.convertTo(frame, CV_32F);
        cv::Mat output, output16;
        if (!computation(frame, output) || output.empty())
            return;
        output.convertTo(output16, CV_16U);
        result->outputWidth = output16.cols;
        result->outputHeight = output16.rows;
        result->output = pixelsOf(output16);
    });
}

void ImageFramePreview::onJobFinished(bool)
{
    const std::shared_ptr<Result> result = m_result;
    if (result) {
        lb_status->setText(result->error);
        if (!result->input.empty())
            m_input->setFrame(std::move(result->input), result->width, result->height, m_bitCount);
        if (!result->output.empty())
            m_output->setFrame(std::move(result->output), result->outputWidth, result->outputHeight,
                               m_bitCount);
        else if (m_computation)
            m_output->setFrame({}, 0, 0, m_bitCount);
    }
    if (m_pending)
        startJob();
    else
        emit previewUpdated();
}

} // namespace zarvi
