#pragma once

#include "signal/SignalOperationView.h"

class QComboBox;
class QDoubleSpinBox;
class QLabel;

namespace zarvi {

/// Parameters of "Smooth Signals": the method, the running average's time frame and
/// the low-pass filter's cut-off. Refuses a time frame shorter than one sample and a
/// cut-off at or above half the sample rate of the first selected signal. GUI thread.
class SmoothView : public SignalOperationView
{
    Q_OBJECT

public:
    explicit SmoothView(QWidget* parent = nullptr);

    QComboBox* methodBox() const { return m_method; }
    QDoubleSpinBox* timeFrameBox() const { return m_timeFrame; }
    QDoubleSpinBox* frequencyBox() const { return m_frequency; }

protected:
    bool buildParameters(QVariantMap& parameters) override;
    void datasetsChanged() override;

private:
    bool isRunningAverage() const;
    /// Updates the texts beside the fields; true when the method's field is valid.
    bool validate();

    QComboBox* m_method;
    QDoubleSpinBox* m_timeFrame;
    QDoubleSpinBox* m_frequency;
    QLabel* m_timeFrameValidation;
    QLabel* m_frequencyValidation;
};

} // namespace zarvi
