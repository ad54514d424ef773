#include "signal/operations/smooth/SmoothView.h"

#include "definitions/SignalOperationDefinitions.h"
#include "signal/operations/filter/FilterDesign.h"
#include "signal/operations/smooth/RunningAverage.h"

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
    m_method =
        static_cast<QComboBox*>(addParameterRow(layout, SD::SmoothMethod, QStringLiteral("cb_smoothMethod")));
    m_method->setEditable(false);
    m_timeFrameValidation = makeValidationLabel(QStringLiteral("lb_smoothTimeFrameValidation"));
    m_timeFrame = static_cast<QDoubleSpinBox*>(addParameterRow(
        layout, SD::SmoothTimeFrame, QStringLiteral("dsb_smoothTimeFrame"), m_timeFrameValidation));
    m_frequencyValidation = makeValidationLabel(QStringLiteral("lb_smoothFrequencyValidation"));
    m_frequency = static_cast<QDoubleSpinBox*>(addParameterRow(
        layout, SD::SmoothFrequency, QStringLiteral("dsb_smoothFrequency"), m_frequencyValidation));

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
                               (rate > 0.0 && RunningAverage::isWindowTooShort(rate, m_timeFrame->value()))))
        timeText = SD::timeFrameBelowOneSampleMessage();
    if (!isRunningAverage() && rate > 0.0 && !FilterDesign::isBelowNyquist(m_frequency->value(), rate))
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
