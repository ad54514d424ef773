#include "signal/operations/invert/InvertView.h"

#include "framework/ParameterField.h"

#include <QFormLayout>

namespace zarvi {

InvertView::InvertView(QWidget* parent) : SignalOperationView(QStringLiteral("Invert"), parent)
{
    m_offset =
        addParameterRow(new QFormLayout(this), QStringLiteral("InvertOffset"), QStringLiteral("dsb_offset"));
}

bool InvertView::buildParameters(QVariantMap& parameters)
{
    parameters.insert(QStringLiteral("InvertOffset"), ParameterField::value(m_offset));
    return true;
}

} // namespace zarvi
