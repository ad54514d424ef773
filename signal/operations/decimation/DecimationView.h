#pragma once

#include "signal/SignalOperationView.h"

class QSpinBox;

namespace zarvi {

/// Parameters of "Decimation": the factor M. GUI thread.
class DecimationView : public SignalOperationView
{
    Q_OBJECT

public:
    explicit DecimationView(QWidget* parent = nullptr);
    QSpinBox* factorBox() const { return m_factor; }

protected:
    bool buildParameters(QVariantMap& parameters) override;

private:
    QSpinBox* m_factor;
};

} // namespace zarvi
