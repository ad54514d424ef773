#include "signal/operations/decimation/DecimationView.h"

#include "definitions/SignalOperationDefinitions.h"

#include <QFormLayout>
#include <QSpinBox>

namespace zarvi {

using SD = SignalOperationDefinitions;

DecimationView::DecimationView(QWidget* parent) : SignalOperationView(SD::Decimation, parent)
{
    auto* layout = new QFormLayout(this);
    m_factor = static_cast<QSpinBox*>(
        addParameterRow(layout, SD::DecimationFactor, QStringLiteral("sb_decimationFactor")));
}

bool DecimationView::buildParameters(QVariantMap& parameters)
{
    parameters.insert(SD::DecimationFactor, m_factor->value());
    return true;
}

} // namespace zarvi
