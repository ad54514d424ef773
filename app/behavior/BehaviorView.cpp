#include "app/behavior/BehaviorView.h"

#include "app/behavior/BehaviorPathPlots.h"
#include "app/behavior/BehaviorPipeline.h"
#include "app/behavior/BehaviorRegionsPanel.h"
#include "app/behavior/BehaviorSignalsPanel.h"
#include "app/behavior/BehaviorVideoPanel.h"
#include "app/behavior/TrailItem.h"
#include "behavior/TimeMatching.h"
#include "datafile/HDF5Writer_V6.h"
#include "datafile/SignalDataset.h"
#include "definitions/BehaviorViewDefinitions.h"
#include "definitions/DatasetDefinitions.h"
#include "definitions/FileDefinitions.h"
#include "definitions/ZarviMainDefinitions.h"
#include "framework/FileAccessLock.h"
#include "framework/LockedFileRead.h"
#include "roi/ZarviGraphicsView.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QSplitter>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

namespace zarvi {

namespace {

using BD = BehaviorViewDefinitions;
using FD = FileDefinitions;

/// Width of the column of tools beside the video.
constexpr int sideWidth = 430;
/// Signals shown at first, at most.
constexpr int defaultSignalCount = 4;

/// The first level holding "Series", else empty.
QString seriesOf(const QString& path)
{
    for (const QString& level : path.split(QLatin1Char('/')))
        if (level.contains(FD::SeriesText))
            return level;
    return QString();
}

/// "Biosensor" for ".../Series1/Biosensor/Signal": what follows the series level, without
/// the values dataset's name.
QString signalName(const QString& path)
{
    QStringList parts = path.split(QLatin1Char('/'));
    parts.removeLast();
    const QString series = seriesOf(path);
    const qsizetype first = series.isEmpty() ? parts.size() - 1 : parts.indexOf(series) + 1;
    return parts.mid(std::min(first, parts.size() - 1)).join(QLatin1Char('/'));
}

std::vector<BehaviorView::SignalEntry> findSignals(const std::vector<DataFileNode>& nodes)
{
    QHash<QString, const DataFileNode*> datasets;
    for (const DataFileNode& node : nodes)
        if (node.kind == ObjectKind::Dataset)
            datasets.insert(node.path, &node);
    std::vector<BehaviorView::SignalEntry> found;
    for (const DataFileNode& node : nodes) {
        if (node.kind != ObjectKind::Dataset || node.name != FD::SignalValues || node.dimensions.size() != 1)
            continue;
        const DataFileNode* time =
            datasets.value(node.path.section(QLatin1Char('/'), 0, -2) + "/" + FD::Time);
        if (time && time->dimensions == node.dimensions)
            found.push_back({node.path, signalName(node.path), node.path.section(QLatin1Char('/'), 0, 0),
                             seriesOf(node.path)});
    }
    return found;
}

/// Half the mean interval of `time`: how far a time may lie from a sample to be its.
double halfInterval(const std::vector<double>& time)
{
    return time.size() < 2 ? 0.0 : 0.5 * (time.back() - time.front()) / static_cast<double>(time.size() - 1);
}

} // namespace

BehaviorView::BehaviorView(QWidget* parent)
    : QWidget(parent), m_video(new QComboBox(this)), m_coordinates(new QComboBox(this)),
      m_signalsButton(new QToolButton(this)), m_signalsMenu(new QMenu(this)),
      m_videoPanel(new BehaviorVideoPanel(this)), m_signalsPanel(new BehaviorSignalsPanel(this)),
      m_regionsPanel(new BehaviorRegionsPanel(m_videoPanel->view(), this)),
      m_pathPlots(new BehaviorPathPlots(this)), m_pipeline(new BehaviorPipeline(this)),
      m_present([this](const QString& message) {
          QMessageBox box(QMessageBox::Warning, ZarviMainDefinitions::ApplicationName, message,
                          QMessageBox::Ok, this);
          box.setTextFormat(Qt::RichText);
          box.exec();
      })
{
    setObjectName(QStringLiteral("w_behaviorView"));
    m_video->setObjectName(QStringLiteral("cb_video"));
    m_coordinates->setObjectName(QStringLiteral("cb_coordinates"));
    m_signalsButton->setObjectName(QStringLiteral("tb_signals"));
    m_signalsButton->setText(BD::signalsLabel());
    m_signalsButton->setMenu(m_signalsMenu);
    m_signalsButton->setPopupMode(QToolButton::InstantPopup);
    for (QComboBox* box : {m_video, m_coordinates})
        box->setSizeAdjustPolicy(QComboBox::AdjustToContents);

    auto* top = new QHBoxLayout;
    top->addWidget(new QLabel(BD::videoLabel(), this));
    top->addWidget(m_video);
    top->addSpacing(12);
    top->addWidget(new QLabel(BD::coordinatesLabel(), this));
    top->addWidget(m_coordinates);
    top->addSpacing(12);
    top->addWidget(m_signalsButton);
    top->addStretch(1);
    auto* splitter = new QSplitter(Qt::Vertical, this);
    splitter->setObjectName(QStringLiteral("splitter_behavior"));
    splitter->addWidget(m_videoPanel);
    splitter->addWidget(m_signalsPanel);
    splitter->setStretchFactor(0, 3);
    splitter->setStretchFactor(1, 1);
    splitter->setSizes({640, 280});
    auto* left = new QVBoxLayout;
    left->addLayout(top);
    left->addWidget(splitter, 1);

    auto* side = new QWidget(this);
    side->setFixedWidth(sideWidth);
    auto* right = new QVBoxLayout(side);
    right->setContentsMargins(0, 0, 0, 0);
    right->addWidget(m_regionsPanel);
    // About the video's shape, so that the plots' equal scale wastes little room.
    m_pathPlots->setFixedHeight(sideWidth);
    right->addWidget(m_pathPlots);
    right->addWidget(m_pipeline);
    right->addStretch(1);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 2);
    layout->addLayout(left, 1);
    layout->addWidget(side);

    connect(m_video, &QComboBox::currentIndexChanged, this, &BehaviorView::onVideoChosen);
    connect(m_coordinates, &QComboBox::currentIndexChanged, this, &BehaviorView::onCoordinatesChosen);
    connect(m_videoPanel, &BehaviorVideoPanel::videoOpened, this, &BehaviorView::onVideoOpened);
    connect(m_videoPanel, &BehaviorVideoPanel::frameChanged, this, &BehaviorView::onFrameChanged);
    connect(m_signalsPanel, &BehaviorSignalsPanel::timeClicked, this,
            [this](double seconds) { m_videoPanel->setFrame(m_videoPanel->frameNearest(seconds)); });
    connect(m_regionsPanel, &BehaviorRegionsPanel::regionsChanged, this, &BehaviorView::saveRegions);
    connect(m_pipeline, &BehaviorPipeline::operationRequested, this, &BehaviorView::openOperation);
    m_videoPanel->closeVideo(BD::noVideoMessage());
}

void BehaviorView::setFile(const QString& filepath)
{
    const QString previousVideo = m_video->currentText();
    const QString previousCoordinates = m_coordinates->currentData().toString();
    if (filepath != m_filepath)
        m_openedLink.clear();
    m_filepath = filepath;
    std::vector<DataFileNode> nodes;
    {
        LockedFileRead read(filepath);
        if (!read.isOpen()) {
            emit sendStatusMessage(read.error());
            return;
        }
        nodes = DataFileTree::collect(read.reader());
    }
    m_links = VideoLink::find(nodes);
    m_coordinatesPaths = CoordinatesDataset::find(nodes);
    m_signals = findSignals(nodes);
    m_pipeline->setData(filepath, {});

    {
        const QSignalBlocker blocker(m_coordinates);
        m_coordinates->clear();
        m_coordinates->addItem(BD::noCoordinates(), QString());
        for (const QString& path : std::as_const(m_coordinatesPaths))
            m_coordinates->addItem(path.section(QLatin1Char('/'), 1), path);
        const int kept = m_coordinates->findData(previousCoordinates);
        m_coordinates->setCurrentIndex(kept > 0 ? kept : m_coordinatesPaths.isEmpty() ? 0 : 1);
    }
    const QSignalBlocker blocker(m_video);
    m_video->clear();
    for (const VideoLink& link : m_links)
        m_video->addItem(link.path);
    m_video->setCurrentIndex(std::max(0, m_video->findText(previousVideo)));
    chooseDefaultSignals();
    onVideoChosen(m_video->currentIndex());
    onCoordinatesChosen(m_coordinates->currentIndex());
}

const VideoLink* BehaviorView::currentLink() const
{
    const int index = m_video->currentIndex();
    return index >= 0 && index < static_cast<int>(m_links.size()) ? &m_links[static_cast<std::size_t>(index)]
                                                                  : nullptr;
}

void BehaviorView::onVideoChosen(int)
{
    const VideoLink* link = currentLink();
    if (!link) {
        m_openedLink.clear();
        m_videoPanel->closeVideo(BD::noVideoMessage());
        return;
    }
    QString error;
    const QString video = link->locate(m_filepath, error);
    std::vector<double> time;
    m_storedRegions = BehaviorRegions{};
    {
        LockedFileRead read(m_filepath);
        if (!read.isOpen())
            error = read.error();
        else if (!video.isEmpty() && VideoLink::readTime(read.reader(), link->path, time, error))
            BehaviorRegionStore::read(read.reader(), link->path, m_storedRegions, error);
    }
    if (!error.isEmpty()) {
        m_openedLink.clear();
        m_videoPanel->closeVideo(error);
        return;
    }
    // Re-reading the file (after a run) keeps the frame the user was on.
    const bool same = link->path == m_openedLink;
    m_openedLink = link->path;
    m_videoPanel->openVideo(video, std::move(time), same ? std::max(m_videoPanel->currentFrame(), 0) : 0);
}

void BehaviorView::onVideoOpened(const QString& error)
{
    if (!error.isEmpty())
        return;
    m_regionsPanel->setRegions(m_storedRegions);
    m_pathPlots->setRegions(m_regionsPanel->regions());
    m_pathPlots->setPath(m_path, m_videoPanel->view()->imageSize());
    onFrameChanged(m_videoPanel->currentFrame(), m_videoPanel->currentTime());
}

void BehaviorView::onCoordinatesChosen(int index)
{
    m_path = TrackedPath{};
    const QString path = m_coordinates->itemData(index).toString();
    if (!path.isEmpty()) {
        LockedFileRead read(m_filepath);
        QString error;
        if (!read.isOpen() || !CoordinatesDataset::read(read.reader(), path, m_path, error))
            emit sendStatusMessage(read.isOpen() ? error : read.error());
    }
    m_videoPanel->trail()->setPath(m_path.positions, m_path.time);
    m_pathPlots->setPath(m_path, m_videoPanel->view()->imageSize());
    onFrameChanged(m_videoPanel->currentFrame(), m_videoPanel->currentTime());
}

void BehaviorView::onFrameChanged(int frame, double seconds)
{
    if (frame < 0)
        return;
    m_signalsPanel->setCursorTime(seconds);
    const std::optional<std::size_t> tracked = nearestWithin(m_path.time, seconds, halfInterval(m_path.time));
    const int index = tracked ? static_cast<int>(*tracked) : -1;
    m_videoPanel->trail()->setCurrent(index);
    m_pathPlots->setCurrent(index);
}

void BehaviorView::chooseDefaultSignals()
{
    const VideoLink* link = currentLink();
    const QString series = link ? seriesOf(link->path) : QString();
    auto raw = [](const SignalEntry& entry) {
        return entry.category == FD::DataAcquisition || entry.category == FD::DataConverted;
    };
    bool anyInSeries = false;
    for (const SignalEntry& entry : m_signals)
        anyInSeries = anyInSeries || (raw(entry) && entry.series == series);
    m_signalsMenu->clear();
    int shown = 0;
    for (std::size_t i = 0; i < m_signals.size(); ++i) {
        const SignalEntry& entry = m_signals[i];
        QAction* action = m_signalsMenu->addAction(entry.path.section(QLatin1Char('/'), 1, -2));
        action->setCheckable(true);
        const bool wanted =
            raw(entry) && (!anyInSeries || entry.series == series) && shown < defaultSignalCount;
        action->setChecked(wanted);
        shown += wanted ? 1 : 0;
        connect(action, &QAction::toggled, this, [this] { loadSignals(); });
    }
    loadSignals();
}

void BehaviorView::setSignalShown(int index, bool shown)
{
    const QList<QAction*> actions = m_signalsMenu->actions();
    if (index >= 0 && index < actions.size())
        actions[index]->setChecked(shown);
}

void BehaviorView::loadSignals()
{
    std::vector<std::pair<QString, Signal>> traces;
    const QList<QAction*> actions = m_signalsMenu->actions();
    LockedFileRead read(m_filepath);
    for (qsizetype i = 0; read.isOpen() && i < actions.size(); ++i) {
        if (!actions[i]->isChecked())
            continue;
        const SignalEntry& entry = m_signals[static_cast<std::size_t>(i)];
        Signal signal;
        QString error;
        if (SignalDataset::read(read.reader(), entry.path, signal, error))
            traces.emplace_back(entry.name, std::move(signal));
        else
            emit sendStatusMessage(error);
    }
    m_signalsPanel->setSignals(std::move(traces));
    m_signalsPanel->setCursorTime(m_videoPanel->currentTime());
}

void BehaviorView::saveRegions()
{
    const BehaviorRegions regions = m_regionsPanel->regions();
    m_pathPlots->setRegions(regions);
    const VideoLink* link = currentLink();
    if (!link)
        return;
    // A run holding the file keeps it; the regions are written with the next change.
    const auto lock = FileAccessLock::tryLock(m_filepath);
    QString error;
    HDF5Writer_V6 file;
    if (!lock.owns_lock())
        error = DatasetDefinitions::fileBusyMessage();
    else if (file.open(m_filepath) < 0)
        error = file.lastError();
    else
        BehaviorRegionStore::write(file, link->path, regions, error);
    file.closeFile();
    if (!error.isEmpty())
        emit sendStatusMessage(BD::regionsNotSavedMessage().arg(error));
}

OperationDialog* BehaviorView::openOperation(const QString& name)
{
    QStringList data;
    if (name == BD::MeasuresOperation) {
        const QString coordinates = m_coordinates->currentData().toString();
        RoiShape arena;
        QString error;
        if (coordinates.isEmpty())
            error = BD::chooseCoordinatesMessage();
        else
            m_regionsPanel->arena(arena, error);
        if (!error.isEmpty()) {
            m_present(error);
            return nullptr;
        }
        data << coordinates;
    } else if (const VideoLink* link = currentLink()) {
        data << link->path;
    }
    m_pipeline->setData(m_filepath, data);
    return m_pipeline->openOperation(name);
}

} // namespace zarvi
