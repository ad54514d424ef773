#pragma once

#include <QString>
#include <QVariant>

class QWidget;

namespace zarvi {

struct OperationParameter;

/// The simple field of one declared parameter, made from its declaration: a check box
/// for an integer that is 0 or 1, a spin box for another integer, a double spin box for
/// a number (range from the declaration), a combo
/// box for a text with choices (editable when other texts are accepted), a line edit for
/// any other text; with the declared tooltip and filled with the declared default. Views
/// lay the fields out themselves and add what a declaration cannot say (previews, check
/// boxes that switch stages). GUI thread.
class ParameterField
{
public:
    static QWidget* create(const OperationParameter& parameter, const QString& objectName, QWidget* parent);
    /// The field's value in the parameter's kind.
    static QVariant value(const QWidget* field);
    static void setValue(QWidget* field, const QVariant& value);
    /// The row label: the declared label, with the unit when the label does not already say it.
    static QString label(const OperationParameter& parameter);
};

} // namespace zarvi
