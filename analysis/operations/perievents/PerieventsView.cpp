#include "analysis/operations/perievents/PerieventsView.h"

#include "analysis/operations/perievents/PerieventChunkPreview.h"
#include "analysis/operations/perievents/PerieventPreview.h"
#include "analysis/operations/perievents/PerieventSideBox.h"
#include "app/browser/GuiFileRead.h"
#include "datafile/DataFileTree.h"
#include "definitions/AnalysisOperationDefinitions.h"
#include "definitions/FileDefinitions.h"
#include "definitions/ZarviMainDefinitions.h"
#include "events/SignalExcerpt.h"
#include "fileeditor/TableData.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QMessageBox>
#include <QSpinBox>
#include <QTimer>
#include <QVBoxLayout>

namespace zarvi {

namespace {

using D = AnalysisOperationDefinitions;

constexpr int PathRole = Qt::UserRole;
constexpr int IndexRole = Qt::UserRole + 1;
constexpr double SpinLimit = 1e4;

QDoubleSpinBox* secondsBox(QWidget* parent, const char* objectName, double value)
{
    auto* box = new QDoubleSpinBox(parent);
    box->setObjectName(QString::fromLatin1(objectName));
    box->setRange(-SpinLimit, SpinLimit);
    box->setDecimals(3);
    box->setSingleStep(0.5);
    box->setValue(value);
    return box;
}

QComboBox* comboBox(QWidget* parent, const char* objectName, const QStringList& items = {})
{
    auto* box = new QComboBox(parent);
    box->setObjectName(QString::fromLatin1(objectName));
    box->addItems(items);
    return box;
}

QString shortest(double value)
{
    return QString::number(value, 'g', 10);
}

/// The event arrays' list entries: the name, or "name (path)" where names repeat.
void fillArrays(QComboBox* box, const std::vector<StoredArray>& arrays, const QStringList& leading = {})
{
    const QString kept = box->currentText();
    box->clear();
    box->addItems(leading);
    for (std::size_t i = 0; i < arrays.size(); ++i) {
        const bool repeated = std::count_if(arrays.begin(), arrays.end(), [&](const StoredArray& a) {
                                  return a.name == arrays[i].name;
                              }) > 1;
        box->addItem(repeated ? D::QualifiedNamePattern.arg(arrays[i].name, arrays[i].path) : arrays[i].name);
        box->setItemData(box->count() - 1, arrays[i].path, PathRole);
        box->setItemData(box->count() - 1, static_cast<int>(i), IndexRole);
        box->setItemData(box->count() - 1, arrays[i].path + QLatin1Char('/') + arrays[i].name,
                         Qt::ToolTipRole);
    }
    if (const int index = box->findText(kept); index >= 0)
        box->setCurrentIndex(index);
}

} // namespace

PerieventsView::PerieventsView(QWidget* parent) : AbstractOperationView(D::Perievents, parent)
{
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
    right->addWidget(buildNormalize());
    right->addWidget(buildSelection());
    right->addWidget(buildResample());
    auto* rangeRow = new QHBoxLayout;
    rangeRow->addWidget(new QLabel(D::rangeLabel(), this));
    m_range = new QLabel(D::noRangeText(), this);
    m_range->setObjectName(QStringLiteral("lb_range"));
    rangeRow->addWidget(m_range, 1);
    right->addLayout(rangeRow);
    m_previewEvent = comboBox(this, "cb_previewEvent");
    m_previewEvent->setToolTip(D::previewLabel());
    right->addWidget(m_previewEvent);
    m_preview = new PerieventPreview(this);
    right->addWidget(m_preview, 1);
    columns->addLayout(left, 3);
    columns->addLayout(right, 2);
    layout->addLayout(columns, 1);

    connect(m_previewEvent, &QComboBox::currentIndexChanged, m_previewTimer, qOverload<>(&QTimer::start));
    for (QCheckBox* box : {m_normalize, m_selectEvents, m_resample})
        connect(box, &QCheckBox::toggled, this, [this] {
            updateEnabled();
            m_previewTimer->start();
        });
    for (QComboBox* box : {m_onoff, m_normalizeMethod, m_normalizeSource, m_normalizeEvent, m_selectOption})
        connect(box, &QComboBox::currentIndexChanged, this, [this] {
            updateEnabled();
            updateRange();
            m_previewTimer->start();
        });
    for (QDoubleSpinBox* box : {m_normalizeStart, m_normalizeEnd, m_resampleFrequency})
        connect(box, &QDoubleSpinBox::valueChanged, m_previewTimer, qOverload<>(&QTimer::start));
    updateEnabled();
}

QWidget* PerieventsView::buildEventRows()
{
    auto* rows = new QWidget(this);
    auto* grid = new QGridLayout(rows);
    grid->setContentsMargins(0, 0, 0, 0);
    m_event = comboBox(rows, "cb_event");
    grid->addWidget(new QLabel(D::eventLabel(), rows), 0, 0);
    grid->addWidget(m_event, 0, 1);
    m_onoffLabel = new QLabel(D::onsetOffsetLabel(), rows);
    m_onoffLabel->setObjectName(QStringLiteral("lb_onoff"));
    m_onoff = comboBox(rows, "cb_onoff", {D::Onset, D::Offset, D::Both, D::OnlyOnsets, D::OnlyOffsets});
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

QWidget* PerieventsView::buildNormalize()
{
    auto* box = new QWidget(this);
    auto* grid = new QGridLayout(box);
    grid->setContentsMargins(0, 0, 0, 0);
    m_normalize = new QCheckBox(D::normalizeLabel(), box);
    m_normalize->setObjectName(QStringLiteral("cb_normalize"));
    m_normalize->setToolTip(D::normalizeTooltip());
    m_normalizeStart = secondsBox(box, "dsb_normalizeStart", -2.0);
    m_normalizeEnd = secondsBox(box, "dsb_normalizeEnd", -1.0);
    m_normalizeMethod = comboBox(box, "cb_normalizeMethod", {D::Mean, D::StandardZScore, D::ModifiedZScore});
    m_normalizeSource = comboBox(box, "cb_normalizeSource", {D::CurrentEvent, D::otherEventLabel()});
    m_normalizeEvent = comboBox(box, "cb_normalizeEvent");
    for (QWidget* widget : std::initializer_list<QWidget*>{
             m_normalizeStart, m_normalizeEnd, m_normalizeMethod, m_normalizeSource, m_normalizeEvent})
        widget->setToolTip(D::normalizeDetailedTooltip());
    grid->addWidget(m_normalize, 0, 0);
    grid->addWidget(m_normalizeStart, 0, 1);
    grid->addWidget(m_normalizeEnd, 0, 2);
    grid->addWidget(new QLabel(D::methodLabel(), box), 1, 0);
    grid->addWidget(m_normalizeMethod, 1, 1, 1, 2);
    grid->addWidget(new QLabel(D::sourceLabel(), box), 2, 0);
    grid->addWidget(m_normalizeSource, 2, 1);
    grid->addWidget(m_normalizeEvent, 2, 2);
    return box;
}

QWidget* PerieventsView::buildSelection()
{
    auto* box = new QWidget(this);
    auto* grid = new QGridLayout(box);
    grid->setContentsMargins(0, 0, 0, 0);
    m_selectEvents = new QCheckBox(D::selectEventsLabel(), box);
    m_selectEvents->setObjectName(QStringLiteral("cb_selectEvents"));
    m_selectEvents->setToolTip(D::selectEventsTooltip());
    m_selectOption = comboBox(box, "cb_selectOption", {D::ByNumber, D::ByTimePeriod});
    m_eventFirst = new QSpinBox(box);
    m_eventFirst->setObjectName(QStringLiteral("sb_eventFirst"));
    m_eventLast = new QSpinBox(box);
    m_eventLast->setObjectName(QStringLiteral("sb_eventLast"));
    for (QSpinBox* spin : {m_eventFirst, m_eventLast}) {
        spin->setRange(1, 1);
        spin->setToolTip(D::selectEventsTooltip());
    }
    m_timePeriod = comboBox(box, "cb_timePeriod");
    m_periodName = comboBox(box, "cb_periodName");
    grid->addWidget(m_selectEvents, 0, 0);
    grid->addWidget(m_selectOption, 0, 1, 1, 2);
    grid->addWidget(m_eventFirst, 1, 1);
    grid->addWidget(m_eventLast, 1, 2);
    grid->addWidget(new QLabel(D::timePeriodLabel(), box), 2, 0);
    grid->addWidget(m_timePeriod, 2, 1);
    grid->addWidget(m_periodName, 2, 2);
    connect(m_timePeriod, &QComboBox::currentIndexChanged, this, &PerieventsView::onTimePeriodChanged);
    return box;
}

QWidget* PerieventsView::buildResample()
{
    auto* box = new QWidget(this);
    auto* layout = new QHBoxLayout(box);
    layout->setContentsMargins(0, 0, 0, 0);
    m_resample = new QCheckBox(D::resampleLabel(), box);
    m_resample->setObjectName(QStringLiteral("cb_resample"));
    m_resample->setToolTip(D::resampleTooltip());
    m_resampleFrequency = new QDoubleSpinBox(box);
    m_resampleFrequency->setObjectName(QStringLiteral("dsb_resampleFreq"));
    m_resampleFrequency->setRange(0.001, 1e6);
    m_resampleFrequency->setDecimals(3);
    m_resampleFrequency->setValue(100.0);
    m_resampleFrequency->setToolTip(D::frequencyLabel());
    m_resampleMethod = comboBox(box, "cb_resampleMethod", {D::LinearMethod});
    layout->addWidget(m_resample);
    layout->addWidget(m_resampleFrequency, 1);
    layout->addWidget(m_resampleMethod, 1);
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

bool PerieventsView::loadFileData()
{
    std::vector<DataFileNode> nodes;
    {
        GuiFileRead read(filepath());
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
    m_periods = EventArrayFile::timePeriodArrays(nodes);
    fillArrays(m_normalizeEvent, m_events);
    fillArrays(m_timePeriod, m_periods);
    fillArrays(m_event, m_events); // last: its change updates everything else
    onEventChanged();
    onTimePeriodChanged();
    return true;
}

const StoredArray* PerieventsView::currentEvent() const
{
    const QVariant index = m_event->currentData(IndexRole);
    return index.isValid() ? &m_events[static_cast<std::size_t>(index.toInt())] : nullptr;
}

void PerieventsView::onEventChanged()
{
    const StoredArray* event = currentEvent();
    const int rows = event ? static_cast<int>(event->rows) : 0;
    m_eventFirst->setRange(1, std::max(rows, 1));
    m_eventLast->setRange(1, std::max(rows, 1));
    m_eventLast->setValue(rows);
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

void PerieventsView::onTimePeriodChanged()
{
    m_periodName->clear();
    const QVariant index = m_timePeriod->currentData(IndexRole);
    if (index.isValid())
        m_periodName->addItems(m_periods[static_cast<std::size_t>(index.toInt())].periodNames);
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
    const bool normalize = m_normalize->isChecked();
    for (QWidget* widget : std::initializer_list<QWidget*>{m_normalizeStart, m_normalizeEnd,
                                                           m_normalizeMethod, m_normalizeSource})
        widget->setEnabled(normalize);
    m_normalizeEvent->setEnabled(normalize && m_normalizeSource->currentIndex() == 1);
    const bool select = m_selectEvents->isChecked();
    const bool byNumber = m_selectOption->currentText() == D::ByNumber;
    m_selectOption->setEnabled(select);
    m_eventFirst->setEnabled(select && byNumber);
    m_eventLast->setEnabled(select && byNumber);
    m_timePeriod->setEnabled(select && !byNumber);
    m_periodName->setEnabled(select && !byNumber);
    m_resampleFrequency->setEnabled(m_resample->isChecked());
    m_resampleMethod->setEnabled(m_resample->isChecked());
}

void PerieventsView::updateRange()
{
    if (!m_hasExtent) {
        m_range->setText(D::noRangeText());
        return;
    }
    // An event's whole chunk fits when it lies at least -start after the first sample
    // and end before the last; with both sides, both must fit.
    double from = m_firstTime, to = m_lastTime;
    for (const PerieventSideBox* box : {m_onset, m_offset}) {
        if (box == m_onset ? takesOnset() : takesOffset()) {
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
    if (m_normalize->isChecked()) {
        parameters.insert(D::NormalizeWindow,
                          QVariantList{m_normalizeStart->value(), m_normalizeEnd->value()});
        parameters.insert(D::NormalizeMethod, m_normalizeMethod->currentText());
        if (m_normalizeSource->currentIndex() == 1 && m_normalizeEvent->currentIndex() >= 0) {
            const StoredArray& baseline = m_events[m_normalizeEvent->currentData(IndexRole).toInt()];
            parameters.insert(D::NormalizeEvent, baseline.name);
            parameters.insert(D::NormalizeEventPath, baseline.path);
        }
    }
    if (m_selectEvents->isChecked()) {
        parameters.insert(D::SelectEvents, 1);
        if (m_selectOption->currentText() == D::ByNumber) {
            parameters.insert(D::EventRange, QVariantList{m_eventFirst->value(), m_eventLast->value()});
        } else if (m_timePeriod->currentIndex() >= 0) {
            const StoredArray& periods = m_periods[m_timePeriod->currentData(IndexRole).toInt()];
            parameters.insert(D::TimePeriod, periods.name);
            parameters.insert(D::TimePeriodPath, periods.path);
            parameters.insert(D::TimePeriodName, m_periodName->currentText());
        }
    }
    if (m_resample->isChecked()) {
        parameters.insert(D::Resample, 1);
        parameters.insert(D::ResampleFrequency, m_resampleFrequency->value());
        parameters.insert(D::ResampleMethod, m_resampleMethod->currentText());
    }
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
    PerieventChunkPreview::Result chunk;
    {
        GuiFileRead read(filepath());
        if (!read.isOpen()) {
            m_preview->showNote(read.error());
            return;
        }
        chunk = PerieventChunkPreview::compute(read.reader(), currentParameters(), datapaths().first(),
                                               static_cast<std::size_t>(m_previewEvent->currentIndex()));
    }
    if (chunk.message.isEmpty())
        m_preview->showChunk(chunk.time, chunk.values, chunk.frames);
    else
        m_preview->showNote(chunk.message);
}

} // namespace zarvi
