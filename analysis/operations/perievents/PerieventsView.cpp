#include "analysis/operations/perievents/PerieventsView.h"

#include "analysis/operations/perievents/PerieventAnalysis.h"
#include "analysis/operations/perievents/PerieventChunkPreview.h"
#include "analysis/operations/perievents/PerieventOptionsPanel.h"
#include "analysis/operations/perievents/PerieventPreview.h"
#include "analysis/operations/perievents/PerieventSideBox.h"
#include "datafile/DataFileTree.h"
#include "definitions/AnalysisOperationDefinitions.h"
#include "definitions/FileDefinitions.h"
#include "definitions/ZarviMainDefinitions.h"
#include "events/SignalExcerpt.h"
#include "framework/BackgroundJob.h"
#include "framework/LockedFileRead.h"

#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QMessageBox>
#include <QTimer>
#include <QVBoxLayout>

namespace zarvi {

namespace {

using D = AnalysisOperationDefinitions;

QString shortest(double value)
{
    return QString::number(value, 'g', 10);
}

} // namespace

PerieventsView::PerieventsView(QWidget* parent)
    : AbstractOperationView(D::Perievents, parent),
      m_previewJob(std::make_unique<BackgroundJob>(ZarviMainDefinitions::previewProgressTitle()))
{
    m_previewJob->setDialogShown(false);
    connect(m_previewJob.get(), &BackgroundJob::finished, this, &PerieventsView::showPreviewChunk);
    setWindowTitle(D::perieventsWindowTitle());
    // Preview after the edits settle, not on every keystroke.
    m_previewTimer = new QTimer(this);
    m_previewTimer->setSingleShot(true);
    m_previewTimer->setInterval(250);
    connect(m_previewTimer, &QTimer::timeout, this, &PerieventsView::updatePreview);
    auto* layout = new QVBoxLayout(this);
    auto* description = new QLabel(D::perieventsDescription(), this);
    description->setObjectName(QStringLiteral("lb_description"));
    description->setWordWrap(true);
    description->setTextFormat(Qt::RichText);
    layout->addWidget(description);

    auto* columns = new QHBoxLayout;
    auto* left = new QVBoxLayout;
    left->addWidget(buildEventRows());
    auto* sides = new QHBoxLayout;
    m_onset = new PerieventSideBox(QStringLiteral("on"), D::onsetLabel(), D::onsetBoxTooltip(), this);
    m_offset = new PerieventSideBox(QStringLiteral("off"), D::offsetLabel(), D::offsetBoxTooltip(), this);
    for (PerieventSideBox* box : {m_onset, m_offset}) {
        box->addFrame(QStringLiteral("Baseline"), -2.0, 0.0);
        box->addFrame(QStringLiteral("Response"), 0.0, 2.0);
        sides->addWidget(box);
        connect(box, &PerieventSideBox::windowChanged, this, [this] {
            updateRange();
            m_previewTimer->start();
        });
    }
    left->addLayout(sides, 1);
    left->addWidget(buildStatistics());
    auto* right = new QVBoxLayout;
    m_options = new PerieventOptionsPanel(this);
    right->addWidget(m_options);
    auto* rangeRow = new QHBoxLayout;
    rangeRow->addWidget(new QLabel(D::rangeLabel(), this));
    m_range = new QLabel(D::noRangeText(), this);
    m_range->setObjectName(QStringLiteral("lb_range"));
    rangeRow->addWidget(m_range, 1);
    right->addLayout(rangeRow);
    m_previewEvent = PerieventOptionsPanel::comboBox(this, "cb_previewEvent");
    m_previewEvent->setToolTip(D::previewLabel());
    right->addWidget(m_previewEvent);
    m_preview = new PerieventPreview(this);
    right->addWidget(m_preview, 1);
    columns->addLayout(left, 3);
    columns->addLayout(right, 2);
    layout->addLayout(columns, 1);

    connect(m_previewEvent, &QComboBox::currentIndexChanged, m_previewTimer, qOverload<>(&QTimer::start));
    connect(m_options, &PerieventOptionsPanel::changed, m_previewTimer, qOverload<>(&QTimer::start));
    connect(m_onoff, &QComboBox::currentIndexChanged, this, [this] {
        updateEnabled();
        updateRange();
        m_previewTimer->start();
    });
    restoreRemembered();
    updateEnabled();
}

void PerieventsView::restoreRemembered()
{
    const QVariantMap& last = rememberedParameters();
    if (last.isEmpty())
        return;
    const bool onset = last.value(D::Onset, 1).toInt() == 1;
    const bool offset = last.value(D::Offset, 0).toInt() == 1;
    const bool plain = last.value(D::PlainEvents).toInt() == 1;
    m_wantedEvent = last.value(D::Event).toString();
    m_wantedSide = onset && offset ? D::Both
                   : onset         ? (plain ? D::OnlyOnsets : D::Onset)
                                   : (plain ? D::OnlyOffsets : D::Offset);
    // The unprefixed keys hold the side taken, the onset side when both are.
    PerieventSideBox* first = onset ? m_onset : m_offset;
    first->restore(last.value(D::PerieventTimeFrame).toList(), last.value(D::StatisticTimeFrames).toList(),
                   last.value(D::TimeFramesNames).toStringList());
    if (onset && offset)
        m_offset->restore(last.value(D::OffsetPerieventTimeFrame).toList(),
                          last.value(D::OffsetStatisticTimeFrames).toList(),
                          last.value(D::OffsetTimeFramesNames).toStringList());
    if (last.contains(D::Statistics)) {
        const QStringList statistics = last.value(D::Statistics).toStringList();
        for (int row = 0; row < m_statistics->count(); ++row) {
            QListWidgetItem* item = m_statistics->item(row);
            item->setCheckState(statistics.contains(item->text()) ? Qt::Checked : Qt::Unchecked);
        }
    }
    m_options->restore(last);
}

QWidget* PerieventsView::buildEventRows()
{
    auto* rows = new QWidget(this);
    auto* grid = new QGridLayout(rows);
    grid->setContentsMargins(0, 0, 0, 0);
    m_event = PerieventOptionsPanel::comboBox(rows, "cb_event");
    grid->addWidget(new QLabel(D::eventLabel(), rows), 0, 0);
    grid->addWidget(m_event, 0, 1);
    m_onoffLabel = new QLabel(D::onsetOffsetLabel(), rows);
    m_onoffLabel->setObjectName(QStringLiteral("lb_onoff"));
    m_onoff = PerieventOptionsPanel::comboBox(rows, "cb_onoff",
                                              {D::Onset, D::Offset, D::Both, D::OnlyOnsets, D::OnlyOffsets});
    for (QWidget* widget : {static_cast<QWidget*>(m_onoffLabel), static_cast<QWidget*>(m_onoff)})
        widget->setToolTip(D::onsetOffsetTooltip());
    grid->addWidget(m_onoffLabel, 1, 0);
    grid->addWidget(m_onoff, 1, 1);
    grid->setColumnStretch(1, 1);
    connect(m_event, &QComboBox::currentIndexChanged, this, &PerieventsView::onEventChanged);
    return rows;
}

QWidget* PerieventsView::buildStatistics()
{
    auto* box = new QWidget(this);
    auto* layout = new QHBoxLayout(box);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* label = new QLabel(D::statisticLabel(), box);
    label->setObjectName(QStringLiteral("lb_statistic"));
    label->setToolTip(D::statisticTooltip());
    m_statistics = new QListWidget(box);
    m_statistics->setObjectName(QStringLiteral("lw_statistics"));
    m_statistics->setToolTip(D::statisticTooltip());
    m_statistics->setFlow(QListView::LeftToRight);
    m_statistics->setMaximumHeight(36);
    for (const QString& name : {D::AUC, D::Mean, D::Median, D::Maximum, D::Minimum}) {
        auto* item = new QListWidgetItem(name, m_statistics);
        item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
        item->setCheckState(name == D::AUC ? Qt::Checked : Qt::Unchecked);
    }
    layout->addWidget(label);
    layout->addWidget(m_statistics, 1);
    return box;
}

void PerieventsView::showEvent(QShowEvent* event)
{
    AbstractOperationView::showEvent(event);
    if (m_loaded)
        return;
    // The dialog opens at its default size the first time.
    window()->resize(928, 720);
    loadFileData();
}

void PerieventsView::datasetsChanged()
{
    if (m_loaded)
        loadFileData();
}

bool PerieventsView::loadFileData()
{
    std::vector<DataFileNode> nodes;
    {
        LockedFileRead read(filepath());
        if (!read.isOpen()) {
            m_range->setText(read.error());
            return false;
        }
        nodes = DataFileTree::collect(read.reader());
        const std::optional<SignalExcerpt::Extent> extent =
            datapaths().isEmpty() ? std::nullopt : SignalExcerpt::extent(read.reader(), datapaths().first());
        m_hasExtent = extent && extent->samples > 0;
        if (m_hasExtent) {
            m_firstTime = extent->firstTime;
            m_lastTime = extent->lastTime;
        }
    }
    m_loaded = true;
    m_events = EventArrayFile::eventArrays(nodes);
    m_options->setArrays(m_events, EventArrayFile::timePeriodArrays(nodes));
    PerieventOptionsPanel::fillArrays(m_event, m_events); // last: its change updates everything else
    if (const int index = m_event->findText(m_wantedEvent); !m_wantedEvent.isEmpty() && index >= 0) {
        const QSignalBlocker blocker(m_event);
        m_event->setCurrentIndex(index);
    }
    m_wantedEvent.clear();
    onEventChanged();
    if (!m_wantedSide.isEmpty() && currentEvent() && currentEvent()->hasOffsets)
        m_onoff->setCurrentText(m_wantedSide);
    m_wantedSide.clear();
    return true;
}

const StoredArray* PerieventsView::currentEvent() const
{
    const int index = PerieventOptionsPanel::arrayIndex(m_event);
    return index >= 0 ? &m_events[static_cast<std::size_t>(index)] : nullptr;
}

void PerieventsView::onEventChanged()
{
    const StoredArray* event = currentEvent();
    const int rows = event ? static_cast<int>(event->rows) : 0;
    m_options->setEventCount(rows);
    {
        const QSignalBlocker blocker(m_previewEvent);
        m_previewEvent->clear();
        for (int row = 1; row <= rows; ++row)
            m_previewEvent->addItem(FileDefinitions::EventPattern.arg(row));
    }
    if (!event || !event->hasOffsets)
        m_onoff->setCurrentText(D::Onset);
    updateEnabled();
    updateRange();
    m_previewTimer->start();
}

bool PerieventsView::takesOnset() const
{
    const QString side = m_onoff->currentText();
    return side == D::Onset || side == D::Both || side == D::OnlyOnsets;
}

bool PerieventsView::takesOffset() const
{
    const QString side = m_onoff->currentText();
    return side == D::Offset || side == D::Both || side == D::OnlyOffsets;
}

void PerieventsView::updateEnabled()
{
    const StoredArray* event = currentEvent();
    const bool offsets = event && event->hasOffsets;
    m_onoff->setEnabled(offsets);
    m_onoffLabel->setEnabled(offsets);
    m_onset->setEnabled(takesOnset());
    m_offset->setEnabled(takesOffset());
}

void PerieventsView::updateRange()
{
    if (!m_hasExtent) {
        m_range->setText(D::noRangeText());
        return;
    }
    // An event's whole chunk fits when it lies at least -start after the first sample
    // and end before the last; with both sides, both must fit. A window longer than the
    // signal leaves no event, and is said as the run will say it.
    double from = m_firstTime, to = m_lastTime;
    for (const PerieventSideBox* box : {m_onset, m_offset}) {
        if (box == m_onset ? takesOnset() : takesOffset()) {
            const QString tooLong = PerieventAnalysis::windowTooLongMessage(
                m_lastTime - m_firstTime, box->windowStart(), box->windowEnd());
            if (!tooLong.isEmpty()) {
                m_range->setText(tooLong);
                return;
            }
            from = std::max(from, m_firstTime - box->windowStart());
            to = std::min(to, m_lastTime - box->windowEnd());
        }
    }
    m_range->setText(D::rangeText().arg(shortest(from), shortest(to)));
}

QVariantMap PerieventsView::currentParameters() const
{
    QVariantMap parameters{{FileDefinitions::Operations, operationName()}};
    if (const StoredArray* event = currentEvent()) {
        parameters.insert(D::EventPath, event->path);
        parameters.insert(D::Event, event->name);
        if (event->hasOffsets) {
            parameters.insert(D::Onset, takesOnset() ? 1 : 0);
            parameters.insert(D::Offset, takesOffset() ? 1 : 0);
            const QString side = m_onoff->currentText();
            if (side == D::OnlyOnsets || side == D::OnlyOffsets)
                parameters.insert(D::PlainEvents, 1);
        }
    }
    // The unprefixed keys hold the side taken, the onset side when both are.
    const bool both = takesOnset() && takesOffset();
    const PerieventSideBox* first =
        takesOnset() || !currentEvent() || !currentEvent()->hasOffsets ? m_onset : m_offset;
    const auto addSide = [&](const PerieventSideBox* box, const QString& window, const QString& frames,
                             const QString& names) {
        parameters.insert(window, QVariantList{box->windowStart(), box->windowEnd()});
        if (box->frameCount() > 0) {
            parameters.insert(frames, box->frameBounds());
            parameters.insert(names, box->frameNames());
        }
    };
    addSide(first, D::PerieventTimeFrame, D::StatisticTimeFrames, D::TimeFramesNames);
    if (both && currentEvent() && currentEvent()->hasOffsets)
        addSide(m_offset, D::OffsetPerieventTimeFrame, D::OffsetStatisticTimeFrames,
                D::OffsetTimeFramesNames);

    QStringList statistics;
    for (int row = 0; row < m_statistics->count(); ++row)
        if (m_statistics->item(row)->checkState() == Qt::Checked)
            statistics << m_statistics->item(row)->text();
    if (!statistics.isEmpty())
        parameters.insert(D::Statistics, statistics);
    m_options->addParameters(parameters);
    return parameters;
}

bool PerieventsView::buildParameters(QVariantMap& parameters)
{
    // Check both tables in use, so that every faulty cell is painted at once.
    const bool onsetGood = !m_onset->isEnabled() || m_onset->check();
    const bool offsetGood = !m_offset->isEnabled() || m_offset->check();
    if (!onsetGood || !offsetGood) {
        onMessageReceived(ZarviMainDefinitions::errorOperationTitle(), D::incorrectTimeFramesMessage(),
                          QString(), QMessageBox::Warning);
        return false;
    }
    parameters = currentParameters();
    parameters.remove(FileDefinitions::Operations);
    return true;
}

void PerieventsView::updatePreview()
{
    m_previewTimer->stop();
    if (datapaths().isEmpty() || m_previewEvent->currentIndex() < 0) {
        m_preview->showNote(D::previewLabel());
        return;
    }
    if (m_previewJob->isRunning()) {
        // The chunk being computed is already out of date: ask again once it is done.
        m_previewTimer->start();
        return;
    }
    // Everything the computation needs is taken from the widgets first.
    auto chunk = std::make_shared<PerieventChunkPreview::Result>();
    m_previewChunk = chunk;
    m_previewJob->start(
        QString(),
        [chunk, parameters = currentParameters(), file = filepath(), valuesPath = datapaths().first(),
         event = static_cast<std::size_t>(m_previewEvent->currentIndex())](Feedback&) {
            // A busy file is said as such rather than waited for: a run may hold it for long.
            LockedFileRead read(file);
            if (!read.isOpen())
                chunk->message = read.error();
            else
                *chunk = PerieventChunkPreview::compute(read.reader(), parameters, valuesPath, event);
        });
}

PerieventsView::~PerieventsView() = default;

void PerieventsView::showPreviewChunk(bool canceled)
{
    const std::shared_ptr<PerieventChunkPreview::Result> chunk = std::move(m_previewChunk);
    if (canceled || !chunk)
        return;
    if (chunk->message.isEmpty())
        m_preview->showChunk(chunk->time, chunk->values, chunk->frames);
    else
        m_preview->showNote(chunk->message);
}

} // namespace zarvi
