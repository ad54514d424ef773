#include "framework/ParameterField.h"

#include "framework/OperationParameter.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QSpinBox>

#include <limits>

namespace zarvi {

namespace {

/// Bounds of a field whose declaration leaves them open.
constexpr double OpenBound = 1e9;

} // namespace

QWidget* ParameterField::create(const OperationParameter& parameter, const QString& objectName,
                                QWidget* parent)
{
    QWidget* field = nullptr;
    switch (parameter.kind) {
    case ParameterKind::Int: {
        // An integer that is 0 or 1 is a switch.
        if (parameter.minimum == 0.0 && parameter.maximum == 1.0) {
            field = new QCheckBox(parent);
            break;
        }
        auto* box = new QSpinBox(parent);
        box->setRange(
            parameter.minimum ? static_cast<int>(*parameter.minimum) : std::numeric_limits<int>::min(),
            parameter.maximum ? static_cast<int>(*parameter.maximum) : std::numeric_limits<int>::max());
        field = box;
        break;
    }
    case ParameterKind::Double: {
        auto* box = new QDoubleSpinBox(parent);
        box->setDecimals(4);
        box->setRange(parameter.minimum.value_or(-OpenBound), parameter.maximum.value_or(OpenBound));
        field = box;
        break;
    }
    default:
        if (!parameter.choices.isEmpty()) {
            auto* box = new QComboBox(parent);
            box->addItems(parameter.choices);
            box->setEditable(parameter.choicesAreOpen);
            field = box;
        } else {
            field = new QLineEdit(parameter.defaultValue.toString(), parent);
        }
        break;
    }
    field->setObjectName(objectName);
    field->setToolTip(parameter.tooltip);
    if (parameter.defaultValue.isValid())
        setValue(field, parameter.defaultValue);
    return field;
}

QVariant ParameterField::value(const QWidget* field)
{
    if (const auto* box = qobject_cast<const QCheckBox*>(field))
        return box->isChecked() ? 1 : 0;
    if (const auto* box = qobject_cast<const QSpinBox*>(field))
        return box->value();
    if (const auto* box = qobject_cast<const QDoubleSpinBox*>(field))
        return box->value();
    if (const auto* box = qobject_cast<const QComboBox*>(field))
        return box->currentText();
    if (const auto* edit = qobject_cast<const QLineEdit*>(field))
        return edit->text();
    return {};
}

void ParameterField::setValue(QWidget* field, const QVariant& value)
{
    if (auto* box = qobject_cast<QCheckBox*>(field))
        box->setChecked(value.toInt() != 0);
    else if (auto* box = qobject_cast<QSpinBox*>(field))
        box->setValue(value.toInt());
    else if (auto* box = qobject_cast<QDoubleSpinBox*>(field))
        box->setValue(value.toDouble());
    else if (auto* box = qobject_cast<QComboBox*>(field))
        box->setCurrentText(value.toString());
    else if (auto* edit = qobject_cast<QLineEdit*>(field))
        edit->setText(value.toString());
}

QString ParameterField::label(const OperationParameter& parameter)
{
    if (parameter.unit.isEmpty() || parameter.label.contains(QLatin1Char('(')))
        return parameter.label;
    return QStringLiteral("%1 (%2)").arg(parameter.label, parameter.unit);
}

} // namespace zarvi
