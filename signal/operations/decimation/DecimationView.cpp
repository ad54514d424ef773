#include "signal/operations/decimation/DecimationView.h"

#include "definitions/SignalOperationDefinitions.h"
#include "signal/operations/decimation/Decimation.h"

#include <QFormLayout>
#include <QLabel>
#include <QSpinBox>

namespace zarvi {

using SD = SignalOperationDefinitions;

DecimationView::DecimationView(QWidget* parent) : SignalOperationView(SD::Decimation, parent)
{
    auto* layout = new QFormLayout(this);
    m_factorValidation = makeValidationLabel(QStringLiteral("lb_decimationFactorValidation"));
    m_factor = static_cast<QSpinBox*>(addParameterRow(
        layout, SD::DecimationFactor, QStringLiteral("sb_decimationFactor"), m_factorValidation));
    connect(m_factor, &QSpinBox::valueChanged, this, &DecimationView::validate);
}

bool DecimationView::validate()
{
    // The first selected signal stands for all; the process checks each one again.
    const bool tooLarge = Decimation::isFactorTooLarge(sampleCount(), m_factor->value());
    setValidationText(m_factorValidation, tooLarge ? SD::badDecimationFactorMessage() : QString());
    return !tooLarge;
}

void DecimationView::datasetsChanged()
{
    SignalOperationView::datasetsChanged();
    validate();
}

bool DecimationView::buildParameters(QVariantMap& parameters)
{
    if (!validate())
        return false;
    parameters.insert(SD::DecimationFactor, m_factor->value());
    return true;
}

} // namespace zarvi
