#include "app/behavior/BehaviorVideoPanel.h"

#include "app/behavior/TrailItem.h"
#include "behavior/TimeMatching.h"
#include "behavior/VideoFrameSource.h"
#include "definitions/BehaviorViewDefinitions.h"
#include "roi/ZarviGraphicsView.h"

#include <QGraphicsScene>
#include <QHBoxLayout>
#include <QLabel>
#include <QSlider>
#include <QStyle>
#include <QThread>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

namespace zarvi {

namespace {

using BD = BehaviorViewDefinitions;

/// Frames decoded ahead of the one shown while playing.
constexpr int readAheadFrames = 8;

} // namespace

BehaviorVideoPanel::BehaviorVideoPanel(QWidget* parent)
    : QWidget(parent), m_view(new ZarviGraphicsView(this)), m_slider(new QSlider(Qt::Horizontal, this)),
      m_play(new QToolButton(this)), m_time(new QLabel(this)), m_message(new QLabel(this)),
      m_trail(std::make_unique<TrailItem>()), m_thread(std::make_shared<QThread>()),
      m_source(std::make_shared<VideoFrameSource>())
{
    m_view->setObjectName(QStringLiteral("gv_video"));
    m_slider->setObjectName(QStringLiteral("sl_frame"));
    m_play->setObjectName(QStringLiteral("tb_play"));
    m_time->setObjectName(QStringLiteral("lb_time"));
    m_message->setObjectName(QStringLiteral("lb_videoMessage"));
    m_play->setIcon(style()->standardIcon(QStyle::SP_MediaPlay));
    m_play->setToolTip(BD::playTooltip());
    m_play->setCheckable(true);
    m_message->setAlignment(Qt::AlignCenter);
    m_message->setWordWrap(true);
    m_message->setTextFormat(Qt::RichText);
    m_message->hide();
    m_view->scene()->addItem(m_trail.get());

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_message);
    layout->addWidget(m_view, 1);
    auto* controls = new QHBoxLayout;
    controls->addWidget(m_play);
    controls->addWidget(m_slider, 1);
    controls->addWidget(m_time);
    layout->addLayout(controls);
    for (QWidget* control : {static_cast<QWidget*>(m_play), static_cast<QWidget*>(m_slider)})
        control->setEnabled(false);

    m_source->moveToThread(m_thread.get());
    m_thread->start();
    connect(m_source.get(), &VideoFrameSource::opened, this, &BehaviorVideoPanel::onOpened);
    connect(m_source.get(), &VideoFrameSource::frameReady, this, &BehaviorVideoPanel::onFrameReady);
    connect(m_slider, &QSlider::valueChanged, this, &BehaviorVideoPanel::onSliderMoved);
    connect(m_play, &QToolButton::toggled, this, &BehaviorVideoPanel::setPlaying);
    connect(&m_timer, &QTimer::timeout, this, &BehaviorVideoPanel::onTick);
}

BehaviorVideoPanel::~BehaviorVideoPanel()
{
    m_timer.stop();
    m_thread->quit();
    m_thread->wait();
    // The trail goes before the view's scene would.
    m_view->scene()->removeItem(m_trail.get());
}

void BehaviorVideoPanel::openVideo(const QString& path, std::vector<double> frameTimes, int frame)
{
    setPlaying(false);
    m_frameTimes = std::move(frameTimes);
    m_shownFrame = -1;
    m_message->hide();
    m_view->show();
    {
        const QSignalBlocker blocker(m_slider);
        m_slider->setRange(0, std::max(frameCount() - 1, 0));
        m_slider->setValue(frame);
    }
    m_slider->setEnabled(false);
    m_play->setEnabled(false);
    updateTimeText();
    VideoFrameSource* source = m_source.get();
    QMetaObject::invokeMethod(
        source, [source, path] { source->open(path); }, Qt::QueuedConnection);
}

void BehaviorVideoPanel::closeVideo(const QString& message)
{
    setPlaying(false);
    m_frameTimes.clear();
    m_shownFrame = -1;
    m_slider->setEnabled(false);
    m_play->setEnabled(false);
    m_view->hide();
    m_message->setText(message);
    m_message->show();
    updateTimeText();
}

int BehaviorVideoPanel::currentFrame() const
{
    return m_frameTimes.empty() ? -1 : m_slider->value();
}

double BehaviorVideoPanel::currentTime() const
{
    const int frame = currentFrame();
    return frame < 0 ? 0.0 : m_frameTimes[static_cast<std::size_t>(frame)];
}

void BehaviorVideoPanel::setFrame(int frame)
{
    m_slider->setValue(frame);
}

int BehaviorVideoPanel::frameNearest(double seconds) const
{
    const std::optional<std::size_t> frame = nearestIndex(m_frameTimes, seconds);
    return frame ? static_cast<int>(*frame) : -1;
}

void BehaviorVideoPanel::setPlaying(bool playing)
{
    if (playing && frameCount() < 2)
        playing = false;
    if (playing == isPlaying()) {
        m_play->setChecked(playing);
        return;
    }
    if (playing) {
        if (currentFrame() >= frameCount() - 1)
            setFrame(0);
        m_playFrom = currentTime();
        m_clock.start();
        m_source->setReadAhead(readAheadFrames);
        // Ticks at twice the recorded rate keep each frame within half an interval of its time.
        const double interval = (m_frameTimes.back() - m_frameTimes.front()) / (frameCount() - 1);
        m_timer.start(std::clamp(static_cast<int>(interval * 500.0), 5, 50));
    } else {
        m_timer.stop();
        m_source->setReadAhead(0);
    }
    const QSignalBlocker blocker(m_play);
    m_play->setChecked(playing);
    m_play->setIcon(style()->standardIcon(playing ? QStyle::SP_MediaPause : QStyle::SP_MediaPlay));
}

void BehaviorVideoPanel::onOpened(int width, int height, qint64, const QString& error)
{
    if (!error.isEmpty()) {
        closeVideo(error);
        emit videoOpened(error);
        return;
    }
    // A blank frame of the video's size, so that regions can be placed before the first
    // frame arrives.
    QImage blank(width, height, QImage::Format_RGB888);
    blank.fill(Qt::black);
    m_view->setColorFrame(blank);
    m_slider->setEnabled(frameCount() > 0);
    m_play->setEnabled(frameCount() > 1);
    emit videoOpened(QString());
    onSliderMoved(m_slider->value());
}

void BehaviorVideoPanel::onFrameReady(qint64 index, const cv::Mat& frame, const QString&)
{
    if (frame.empty() || frame.depth() != CV_8U)
        return;
    const QImage::Format format = frame.channels() == 1 ? QImage::Format_Grayscale8 : QImage::Format_BGR888;
    m_view->setColorFrame(
        QImage(frame.data, frame.cols, frame.rows, static_cast<qsizetype>(frame.step), format).copy());
    m_shownFrame = static_cast<int>(index);
    emit frameShown(m_shownFrame);
}

void BehaviorVideoPanel::onSliderMoved(int frame)
{
    if (frame < 0 || frame >= frameCount())
        return;
    m_source->request(frame);
    updateTimeText();
    emit frameChanged(frame, currentTime());
}

void BehaviorVideoPanel::onTick()
{
    const double target = m_playFrom + m_clock.elapsed() / 1000.0;
    const auto after = std::upper_bound(m_frameTimes.begin(), m_frameTimes.end(), target);
    const int frame = static_cast<int>(std::max<std::ptrdiff_t>(after - m_frameTimes.begin() - 1, 0));
    if (frame >= frameCount() - 1) {
        setFrame(frameCount() - 1);
        setPlaying(false);
    } else if (frame != currentFrame()) {
        setFrame(frame);
    }
}

void BehaviorVideoPanel::updateTimeText()
{
    const int frame = currentFrame();
    m_time->setText(frame < 0
                        ? QString()
                        : BD::timeText().arg(currentTime(), 0, 'f', 2).arg(frame).arg(frameCount() - 1));
}

} // namespace zarvi
