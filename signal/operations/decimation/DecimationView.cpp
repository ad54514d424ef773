#include "signal/operations/decimation/DecimationView.h"

#include "definitions/SignalOperationDefinitions.h"

#include <QFormLayout>
#include <QSpinBox>

namespace zarvi {

using SD = SignalOperationDefinitions;

DecimationView::DecimationView(QWidget* parent) : SignalOperationView(SD::Decimation, parent)
{
    auto* layout = new QFormLayout(this);
    m_factor = new QSpinBox(this);
    m_factor->setObjectName(QStringLiteral("sb_decimationFactor"));
    m_factor->setRange(1, 1000000);
    m_factor->setValue(10);
    m_factor->setToolTip(SD::decimationFactorTooltip());
    layout->addRow(SD::DecimationFactor, m_factor);
}

bool DecimationView::buildParameters(QVariantMap& parameters)
{
    parameters.insert(SD::DecimationFactor, m_factor->value());
    return true;
}

} // namespace zarvi
