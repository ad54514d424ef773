#include "analysis/operations/perievents/PerieventOptionsPanel.h"

#include "definitions/AnalysisOperationDefinitions.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QSpinBox>
#include <QVBoxLayout>

#include <algorithm>

namespace zarvi {

namespace {

using D = AnalysisOperationDefinitions;

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

} // namespace

PerieventOptionsPanel::PerieventOptionsPanel(QWidget* parent) : QWidget(parent)
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(buildNormalize());
    layout->addWidget(buildSelection());
    layout->addWidget(buildResample());
    for (QCheckBox* box : {m_normalize, m_selectEvents, m_resample})
        connect(box, &QCheckBox::toggled, this, [this] {
            updateEnabled();
            emit changed();
        });
    for (QComboBox* box : {m_normalizeMethod, m_normalizeSource, m_normalizeEvent, m_selectOption})
        connect(box, &QComboBox::currentIndexChanged, this, [this] {
            updateEnabled();
            emit changed();
        });
    for (QDoubleSpinBox* box : {m_normalizeStart, m_normalizeEnd, m_resampleFrequency})
        connect(box, &QDoubleSpinBox::valueChanged, this, &PerieventOptionsPanel::changed);
    connect(m_timePeriod, &QComboBox::currentIndexChanged, this, &PerieventOptionsPanel::onTimePeriodChanged);
    updateEnabled();
}

QComboBox* PerieventOptionsPanel::comboBox(QWidget* parent, const char* objectName, const QStringList& items)
{
    auto* box = new QComboBox(parent);
    box->setObjectName(QString::fromLatin1(objectName));
    box->addItems(items);
    return box;
}

void PerieventOptionsPanel::fillArrays(QComboBox* box, const std::vector<StoredArray>& arrays)
{
    const QString kept = box->currentText();
    box->clear();
    for (std::size_t i = 0; i < arrays.size(); ++i) {
        const bool repeated = std::count_if(arrays.begin(), arrays.end(), [&](const StoredArray& a) {
                                  return a.name == arrays[i].name;
                              }) > 1;
        box->addItem(repeated ? D::QualifiedNamePattern.arg(arrays[i].name, arrays[i].path) : arrays[i].name);
        box->setItemData(box->count() - 1, static_cast<int>(i), IndexRole);
        box->setItemData(box->count() - 1, arrays[i].path + QLatin1Char('/') + arrays[i].name,
                         Qt::ToolTipRole);
    }
    if (const int index = box->findText(kept); index >= 0)
        box->setCurrentIndex(index);
}

int PerieventOptionsPanel::arrayIndex(const QComboBox* box)
{
    const QVariant index = box->currentData(IndexRole);
    return index.isValid() ? index.toInt() : -1;
}

QWidget* PerieventOptionsPanel::buildNormalize()
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

QWidget* PerieventOptionsPanel::buildSelection()
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
    return box;
}

QWidget* PerieventOptionsPanel::buildResample()
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

void PerieventOptionsPanel::setArrays(const std::vector<StoredArray>& events,
                                      const std::vector<StoredArray>& periods)
{
    m_events = events;
    m_periods = periods;
    fillArrays(m_normalizeEvent, m_events);
    fillArrays(m_timePeriod, m_periods);
    // The arrays a restored run named are chosen once, when they are first listed.
    for (auto [box, wanted] : {std::pair{m_normalizeEvent, &m_wantedNormalizeEvent},
                               std::pair{m_timePeriod, &m_wantedTimePeriod}}) {
        if (const int index = box->findText(*wanted); index >= 0)
            box->setCurrentIndex(index);
        wanted->clear();
    }
    onTimePeriodChanged();
}

void PerieventOptionsPanel::setEventCount(int count)
{
    m_eventFirst->setRange(1, std::max(count, 1));
    m_eventLast->setRange(1, std::max(count, 1));
    m_eventLast->setValue(count);
}

void PerieventOptionsPanel::onTimePeriodChanged()
{
    m_periodName->clear();
    if (const int index = arrayIndex(m_timePeriod); index >= 0)
        m_periodName->addItems(m_periods[static_cast<std::size_t>(index)].periodNames);
}

void PerieventOptionsPanel::updateEnabled()
{
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

void PerieventOptionsPanel::addParameters(QVariantMap& parameters) const
{
    if (m_normalize->isChecked()) {
        parameters.insert(D::NormalizeWindow,
                          QVariantList{m_normalizeStart->value(), m_normalizeEnd->value()});
        parameters.insert(D::NormalizeMethod, m_normalizeMethod->currentText());
        if (const int index = arrayIndex(m_normalizeEvent);
            m_normalizeSource->currentIndex() == 1 && index >= 0) {
            parameters.insert(D::NormalizeEvent, m_events[static_cast<std::size_t>(index)].name);
            parameters.insert(D::NormalizeEventPath, m_events[static_cast<std::size_t>(index)].path);
        }
    }
    if (m_selectEvents->isChecked()) {
        parameters.insert(D::SelectEvents, 1);
        if (m_selectOption->currentText() == D::ByNumber) {
            parameters.insert(D::EventRange, QVariantList{m_eventFirst->value(), m_eventLast->value()});
        } else if (const int index = arrayIndex(m_timePeriod); index >= 0) {
            parameters.insert(D::TimePeriod, m_periods[static_cast<std::size_t>(index)].name);
            parameters.insert(D::TimePeriodPath, m_periods[static_cast<std::size_t>(index)].path);
            parameters.insert(D::TimePeriodName, m_periodName->currentText());
        }
    }
    if (m_resample->isChecked()) {
        parameters.insert(D::Resample, 1);
        parameters.insert(D::ResampleFrequency, m_resampleFrequency->value());
        parameters.insert(D::ResampleMethod, m_resampleMethod->currentText());
    }
}

void PerieventOptionsPanel::restore(const QVariantMap& parameters)
{
    const QVariantList window = parameters.value(D::NormalizeWindow).toList();
    m_normalize->setChecked(window.size() == 2);
    if (window.size() == 2) {
        m_normalizeStart->setValue(window[0].toDouble());
        m_normalizeEnd->setValue(window[1].toDouble());
        m_normalizeMethod->setCurrentText(parameters.value(D::NormalizeMethod).toString());
        m_normalizeSource->setCurrentIndex(parameters.contains(D::NormalizeEvent) ? 1 : 0);
    }
    m_selectEvents->setChecked(parameters.value(D::SelectEvents).toInt() == 1);
    m_selectOption->setCurrentText(parameters.contains(D::TimePeriod) ? D::ByTimePeriod : D::ByNumber);
    m_wantedNormalizeEvent = parameters.value(D::NormalizeEvent).toString();
    m_wantedTimePeriod = parameters.value(D::TimePeriod).toString();
    m_resample->setChecked(parameters.value(D::Resample).toInt() == 1);
    if (m_resample->isChecked()) {
        m_resampleFrequency->setValue(parameters.value(D::ResampleFrequency).toDouble());
        m_resampleMethod->setCurrentText(parameters.value(D::ResampleMethod).toString());
    }
    updateEnabled();
}

} // namespace zarvi
