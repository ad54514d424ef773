#pragma once

#include <QString>
#include <QStringList>
#include <QVariant>

#include <optional>

namespace zarvi {

/// The value kind of one declared parameter, which fixes the attribute type it is
/// written with (so a run from the command line, whose JSON numbers are all reals,
/// writes exactly what the same run from the dialog writes).
enum class ParameterKind
{
    Int,
    Double,
    String,
    StringList,
    DoubleList,
    /// A structured value (regions of interest): a JSON object or list, given as such or
    /// as JSON text, kept and recorded as compact JSON text.
    Json
};

/// Everything the program knows of one parameter of an operation, said once: the
/// registry checks run maps against it, `zarvi-cli help` prints it, the views build
/// their simple fields from it. Units stand in the key ("SmoothTimeFrame(sec)"); the
/// unit field repeats them for display. A declared default fills the dialog and shows
/// in help; it is never put in place of a required key a run's map lacks. An optional
/// parameter that is absent or empty switches its stage off. Plain value, any thread.
struct OperationParameter
{
    QString key;
    ParameterKind kind = ParameterKind::String;
    QString label;
    QString tooltip;
    QString unit;
    QVariant defaultValue;
    /// Bounds of a number, or of every number of a list.
    std::optional<double> minimum;
    std::optional<double> maximum;
    /// The values a text (or every text of a list) may take; empty: any text.
    QStringList choices;
    /// The choices are what the dialog offers, but other texts are accepted too.
    bool choicesAreOpen = false;
    bool required = false;
    /// Said instead of the general message for a value that cannot be read or is outside the
    /// range or the choices, where the operation has its own words.
    QString badValueMessage;
    /// A value as a user would write it in a parameter file, shown by help for structured values.
    QString example;

    // Declaration in one expression: OperationParameter::number(key, label).unit("Hz").atLeast(0)...
    static OperationParameter integer(const QString& key, const QString& label);
    static OperationParameter number(const QString& key, const QString& label);
    static OperationParameter text(const QString& key, const QString& label);
    static OperationParameter texts(const QString& key, const QString& label);
    static OperationParameter numbers(const QString& key, const QString& label);
    static OperationParameter json(const QString& key, const QString& label);

    OperationParameter& withTooltip(const QString& text);
    OperationParameter& withUnit(const QString& text);
    OperationParameter& withDefault(const QVariant& value);
    OperationParameter& atLeast(double value);
    OperationParameter& atMost(double value);
    OperationParameter& oneOf(const QStringList& values);
    OperationParameter& offering(const QStringList& values);
    OperationParameter& isRequired();
    OperationParameter& withBadValueMessage(const QString& message);
    OperationParameter& withExample(const QString& text);

    /// Converts `value` to this parameter's kind; false when it cannot be (a
    /// non-integral number for an Int, text for a number, NaN or infinity, ...). An empty value
    /// stays an empty string: it means the stage is off.
    bool normalize(const QVariant& value, QVariant& normalized) const;
    /// The message for a normalised value outside the range or the choices; empty when it is allowed.
    QString rangeProblem(const QVariant& normalized) const;
    /// "int", "double", "text", "list of texts", "list of numbers", "JSON": for help texts.
    QString kindName() const;
    /// The allowed values in words ("1 to 1000000", "LowPass, HighPass"); empty when anything goes.
    QString allowedValues() const;

    /// True when the value is absent or empty (the stage is off).
    static bool isEmptyValue(const QVariant& value);
};

} // namespace zarvi
