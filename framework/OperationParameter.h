#pragma once

#include <QString>
#include <QVariant>

namespace zarvi {

/// The value kind of one declared parameter, which fixes the attribute type it is
/// written with (so a run from the command line, whose JSON numbers are all reals,
/// writes exactly what the same run from the dialog writes).
enum class ParameterType
{
    Int,
    Double,
    String,
    StringList,
    DoubleList
};

/// One parameter an operation declares: its key (units stand in the key) and kind.
struct OperationParameter
{
    QString key;
    ParameterType type = ParameterType::String;

    /// Converts `value` to this parameter's kind; false when it cannot be (a
    /// non-integral number for an Int, text for a number, ...). An empty value
    /// stays an empty string: it means the stage is off.
    bool normalize(const QVariant& value, QVariant& normalized) const;
};

} // namespace zarvi
