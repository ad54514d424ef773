#pragma once

#include "signal/SignalOperationView.h"

class QLabel;
class QSpinBox;

namespace zarvi {

/// Parameters of "Decimation": the factor M, refused beside the field when it would
/// leave the first selected signal fewer than two samples. GUI thread.
class DecimationView : public SignalOperationView
{
    Q_OBJECT

public:
    explicit DecimationView(QWidget* parent = nullptr);
    QSpinBox* factorBox() const { return m_factor; }

protected:
    bool buildParameters(QVariantMap& parameters) override;
    void datasetsChanged() override;

private:
    /// Updates the text beside the field; true when the factor fits the signal.
    bool validate();

    QSpinBox* m_factor;
    QLabel* m_factorValidation;
};

} // namespace zarvi
