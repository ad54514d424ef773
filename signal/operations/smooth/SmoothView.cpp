#include "signal/operations/smooth/SmoothView.h"

#include "definitions/SignalOperationDefinitions.h"

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>

namespace zarvi {

using SD = SignalOperationDefinitions;

SmoothView::SmoothView(QWidget* parent) : SignalOperationView(SD::SmoothSignals, parent)
{
    auto* layout = new QFormLayout(this);
    m_method = new QComboBox(this);
    m_method->setObjectName(QStringLiteral("cb_smoothMethod"));
    m_method->addItems({SD::RunningAverage, SD::LowPassButterworthFilter});
    layout->addRow(SD::smoothMethodLabel(), m_method);

    m_timeFrame = new QDoubleSpinBox(this);
    m_timeFrame->setObjectName(QStringLiteral("dsb_smoothTimeFrame"));
    m_timeFrame->setDecimals(4);
    m_timeFrame->setRange(0.0, 1e5);
    m_timeFrame->setValue(0.1);
    m_timeFrameValidation = makeValidationLabel(QStringLiteral("lb_smoothTimeFrameValidation"));
    auto* timeRow = new QHBoxLayout;
    timeRow->addWidget(m_timeFrame);
    timeRow->addWidget(m_timeFrameValidation, 1);
    layout->addRow(SD::smoothTimeFrameLabel(), timeRow);

    m_frequency = new QDoubleSpinBox(this);
    m_frequency->setObjectName(QStringLiteral("dsb_smoothFrequency"));
    m_frequency->setDecimals(3);
    m_frequency->setRange(0.001, 1e6);
    m_frequency->setValue(10.0);
    m_frequencyValidation = makeValidationLabel(QStringLiteral("lb_smoothFrequencyValidation"));
    auto* frequencyRow = new QHBoxLayout;
    frequencyRow->addWidget(m_frequency);
    frequencyRow->addWidget(m_frequencyValidation, 1);
    layout->addRow(SD::smoothFrequencyLabel(), frequencyRow);

    const auto changed = [this] {
        m_timeFrame->setEnabled(isRunningAverage());
        m_frequency->setEnabled(!isRunningAverage());
        validate();
    };
    connect(m_method, &QComboBox::currentIndexChanged, this, changed);
    connect(m_timeFrame, &QDoubleSpinBox::valueChanged, this, changed);
    connect(m_frequency, &QDoubleSpinBox::valueChanged, this, changed);
    changed();
}

bool SmoothView::isRunningAverage() const
{
    return m_method->currentText() == SD::RunningAverage;
}

bool SmoothView::validate()
{
    const double rate = sampleRate();
    QString timeText;
    QString frequencyText;
    // The process takes W = int(rate x window) samples; a window of no sample cannot average.
    if (isRunningAverage() && (m_timeFrame->value() <= 0.0 ||
                               (rate > 0.0 && static_cast<long long>(rate * m_timeFrame->value()) < 1)))
        timeText = SD::timeFrameBelowOneSampleMessage();
    if (!isRunningAverage() && rate > 0.0 && m_frequency->value() >= rate / 2.0)
        frequencyText = SD::cutoffAboveNyquistMessage();
    setValidationText(m_timeFrameValidation, timeText);
    setValidationText(m_frequencyValidation, frequencyText);
    return timeText.isEmpty() && frequencyText.isEmpty();
}

void SmoothView::datasetsChanged()
{
    SignalOperationView::datasetsChanged();
    validate();
}

bool SmoothView::buildParameters(QVariantMap& parameters)
{
    if (!validate())
        return false;
    parameters.insert(SD::SmoothMethod, m_method->currentText());
    if (isRunningAverage())
        parameters.insert(SD::SmoothTimeFrame, m_timeFrame->value());
    else
        parameters.insert(SD::SmoothFrequency, m_frequency->value());
    return true;
}

} // namespace zarvi
