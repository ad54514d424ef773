#include "behavior/operations/tracking/TrackingPreview.h"

#include "definitions/VideoOperationDefinitions.h"
#include "fileeditor/VideoFrameReader.h"
#include "framework/BackgroundJob.h"
#include "roi/ZarviGraphicsView.h"

#include <QGraphicsPathItem>
#include <QGridLayout>
#include <QLabel>
#include <QPainterPath>
#include <QPen>
#include <QSlider>
#include <QSpinBox>

#include <opencv2/imgproc.hpp>

namespace zarvi {

using VD = VideoOperationDefinitions;

struct TrackingPreview::Source
{
    /// Decodes frame `index` into `frame`, reopening the video only to go back.
    bool seek(long long index, Feedback& feedback, QString& error);

    QString videoPath;
    VideoFrameReader reader;
    bool open = false;
    /// The frame decoded last and its index (-1: none).
    cv::Mat frame;
    long long frameIndex = -1;
};

struct TrackingPreview::Result
{
    int width = 0;
    int height = 0;
    std::vector<std::uint16_t> grey;
    std::vector<std::uint16_t> mask;
    cv::Point position{-1, -1};
    int size = 0;
    QString error;
};

namespace {

/// Bits of the values shown: frames and masks are 8-bit.
constexpr int ShownBitCount = 8;
/// Half the length of the position mark's arms, in image pixels.
constexpr double MarkArm = 6.0;

std::vector<std::uint16_t> pixelsOf(const cv::Mat& image8)
{
    std::vector<std::uint16_t> pixels;
    pixels.reserve(image8.total());
    for (int y = 0; y < image8.rows; ++y)
        pixels.insert(pixels.end(), image8.ptr<std::uint8_t>(y), image8.ptr<std::uint8_t>(y) + image8.cols);
    return pixels;
}

std::unique_ptr<QGraphicsPathItem> makeMark(ZarviGraphicsView* view)
{
    QPainterPath cross;
    cross.moveTo(-MarkArm, 0);
    cross.lineTo(MarkArm, 0);
    cross.moveTo(0, -MarkArm);
    cross.lineTo(0, MarkArm);
    auto mark = std::make_unique<QGraphicsPathItem>(cross);
    QPen pen(QColor(VD::TrackColor), 2);
    pen.setCosmetic(true);
    mark->setPen(pen);
    mark->setZValue(10);
    mark->setVisible(false);
    view->scene()->addItem(mark.get());
    return mark;
}

} // namespace

TrackingPreview::TrackingPreview(QWidget* parent)
    : QWidget(parent), m_job(std::make_unique<BackgroundJob>(tr("Preview Progress"))),
      m_source(std::make_shared<Source>())
{
    m_job->setDialogShown(false);
    auto* layout = new QGridLayout(this);
    m_frameView = new ZarviGraphicsView(this);
    m_frameView->setObjectName(QStringLiteral("gv_frame"));
    m_maskView = new ZarviGraphicsView(this);
    m_maskView->setObjectName(QStringLiteral("gv_mask"));
    for (ZarviGraphicsView* view : {m_frameView, m_maskView})
        view->setAutoContrast(false);
    layout->addWidget(new QLabel(VD::inputFrameTitle(), this), 0, 0);
    layout->addWidget(new QLabel(VD::maskTitle(), this), 0, 1);
    layout->addWidget(m_frameView, 1, 0);
    layout->addWidget(m_maskView, 1, 1);
    layout->setColumnStretch(0, 1);
    layout->setColumnStretch(1, 1);
    layout->setRowStretch(1, 1);

    auto* controls = new QHBoxLayout;
    auto* frameLabel = new QLabel(VD::previewFrameLabel(), this);
    m_slider = new QSlider(Qt::Horizontal, this);
    m_slider->setObjectName(QStringLiteral("sl_previewFrame"));
    sb_previewFrame = new QSpinBox(this);
    sb_previewFrame->setObjectName(QStringLiteral("sb_previewFrame"));
    for (QWidget* w : {static_cast<QWidget*>(frameLabel), static_cast<QWidget*>(m_slider),
                       static_cast<QWidget*>(sb_previewFrame)})
        w->setToolTip(VD::previewFrameTooltip());
    controls->addWidget(frameLabel);
    controls->addWidget(m_slider, 1);
    controls->addWidget(sb_previewFrame);
    layout->addLayout(controls, 2, 0, 1, 2);
    lb_position = new QLabel(this);
    lb_position->setObjectName(QStringLiteral("lb_position"));
    layout->addWidget(lb_position, 3, 0, 1, 2);
    m_frameMark = makeMark(m_frameView);
    m_maskMark = makeMark(m_maskView);

    connect(m_slider, &QSlider::valueChanged, sb_previewFrame, &QSpinBox::setValue);
    connect(sb_previewFrame, &QSpinBox::valueChanged, m_slider, &QSlider::setValue);
    connect(sb_previewFrame, &QSpinBox::valueChanged, this, &TrackingPreview::showFrame);
    connect(m_job.get(), &BackgroundJob::finished, this, &TrackingPreview::onJobFinished);
}

TrackingPreview::~TrackingPreview()
{
    // The job uses the source; it ends before the source may go.
    m_job.reset();
}

void TrackingPreview::setVideo(const QString& videoPath, int frames)
{
    {
        const QSignalBlocker sliderBlock(m_slider);
        const QSignalBlocker spinBlock(sb_previewFrame);
        m_slider->setRange(0, std::max(0, frames - 1));
        sb_previewFrame->setRange(0, std::max(0, frames - 1));
        m_slider->setValue(0);
        sb_previewFrame->setValue(0);
    }
    // A new source for a new video: a job still running keeps the old one.
    m_source = std::make_shared<Source>();
    m_source->videoPath = videoPath;
    refresh();
}

void TrackingPreview::setThresholds(const ThresholdSettings& thresholds)
{
    m_thresholds = thresholds;
    refresh();
}

int TrackingPreview::currentFrame() const
{
    return sb_previewFrame->value();
}

bool TrackingPreview::isBusy() const
{
    return m_job->isRunning() || m_pending;
}

void TrackingPreview::showFrame(int)
{
    refresh();
}

void TrackingPreview::refresh()
{
    if (m_source->videoPath.isEmpty())
        return;
    if (m_job->isRunning()) {
        m_pending = true;
        return;
    }
    startJob();
}

void TrackingPreview::startJob()
{
    m_pending = false;
    auto result = std::make_shared<Result>();
    m_result = result;
    const std::shared_ptr<Source> source = m_source;
    const long long index = sb_previewFrame->value();
    const ThresholdSettings thresholds = m_thresholds;
    m_job->start(QString(), [=](Feedback& feedback) {
        if (!source->seek(index, feedback, result->error))
            return;
        cv::Mat grey, mask, work;
        cv::cvtColor(source->frame, grey, cv::COLOR_BGR2GRAY);
        result->width = grey.cols;
        result->height = grey.rows;
        result->grey = pixelsOf(grey);
        if (!thresholdMask(source->frame, thresholds, mask, work))
            return;
        result->mask = pixelsOf(mask);
        std::vector<std::vector<cv::Point>> contours;
        const FramePosition found = findAnimal(mask, contours);
        result->position = found.position;
        if (found.contour >= 0)
            result->size = estimateAnimalSize(contours[static_cast<std::size_t>(found.contour)]);
    });
}

void TrackingPreview::onJobFinished()
{
    if (m_result)
        showResult(*m_result);
    if (m_pending)
        startJob();
    else
        emit previewUpdated();
}

void TrackingPreview::showResult(const Result& result)
{
    if (!result.grey.empty())
        m_frameView->setFrame(result.grey, result.width, result.height, ShownBitCount);
    m_maskView->setFrame(result.mask.empty() ? std::vector<std::uint16_t>(result.grey.size(), 0)
                                             : result.mask,
                         result.width, result.height, ShownBitCount);
    m_position = result.position;
    const bool found = result.size > 0;
    for (QGraphicsPathItem* mark : {m_frameMark.get(), m_maskMark.get()}) {
        mark->setPos(m_position.x, m_position.y);
        mark->setVisible(found);
    }
    if (!result.error.isEmpty())
        lb_position->setText(result.error);
    else if (found)
        lb_position->setText(VD::positionText().arg(m_position.x).arg(m_position.y).arg(result.size));
    else
        lb_position->setText(VD::noPositionText());
    if (found)
        emit animalSizeEstimated(result.size);
}

bool TrackingPreview::Source::seek(long long index, Feedback& feedback, QString& error)
{
    if (frameIndex == index)
        return true;
    if (!open) {
        const VideoInfo info = reader.open(VideoFrameReaderConfig{videoPath, VideoColor::Bgr});
        open = info.ok();
        frameIndex = -1;
        if (!info.ok()) {
            error = info.error;
            return false;
        }
    }
    // The reader decodes forward to a frame a little ahead and jumps through the container's
    // index to any other, so a frame late in an hour of video comes as fast as an early one.
    double seconds = 0.0;
    const bool placed =
        static_cast<long long>(reader.framesRead()) == index || reader.seek(static_cast<std::size_t>(index));
    if (feedback.isCanceled() || !placed || !reader.readNext(frame, seconds)) {
        // Stopped part way: the reader's place is no longer worth keeping.
        open = false;
        frameIndex = -1;
        error = reader.lastError().isEmpty()
                    ? VD::videoEndedMessage().arg(videoPath).arg(reader.framesRead()).arg(index)
                    : reader.lastError();
        return false;
    }
    frameIndex = index;
    return true;
}

} // namespace zarvi
