#include "framework/OperationParameter.h"

#include "definitions/ZarviMainDefinitions.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>

namespace zarvi {

namespace {

bool isNumber(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Double:
    case QMetaType::Float:
        return true;
    default:
        return false;
    }
}

bool toDouble(const QVariant& value, double& out)
{
    bool ok = false;
    if (isNumber(value)) {
        out = value.toDouble();
        ok = true;
    } else if (value.typeId() == QMetaType::QString) {
        out = value.toString().trimmed().toDouble(&ok);
    }
    // NaN compares false with everything and infinity overflows every conversion to a
    // count of samples, so neither is ever a parameter value.
    return ok && std::isfinite(out);
}

OperationParameter declare(const QString& key, const QString& label, ParameterKind kind)
{
    OperationParameter parameter;
    parameter.key = key;
    parameter.label = label;
    parameter.kind = kind;
    return parameter;
}

QString numberText(double value)
{
    return QString::number(value, 'g', 12);
}

} // namespace

OperationParameter OperationParameter::integer(const QString& key, const QString& label)
{
    return declare(key, label, ParameterKind::Int);
}

OperationParameter OperationParameter::number(const QString& key, const QString& label)
{
    return declare(key, label, ParameterKind::Double);
}

OperationParameter OperationParameter::text(const QString& key, const QString& label)
{
    return declare(key, label, ParameterKind::String);
}

OperationParameter OperationParameter::texts(const QString& key, const QString& label)
{
    return declare(key, label, ParameterKind::StringList);
}

OperationParameter OperationParameter::numbers(const QString& key, const QString& label)
{
    return declare(key, label, ParameterKind::DoubleList);
}

OperationParameter OperationParameter::json(const QString& key, const QString& label)
{
    return declare(key, label, ParameterKind::Json);
}

OperationParameter& OperationParameter::withTooltip(const QString& text)
{
    tooltip = text;
    return *this;
}

OperationParameter& OperationParameter::withUnit(const QString& text)
{
    unit = text;
    return *this;
}

OperationParameter& OperationParameter::withDefault(const QVariant& value)
{
    defaultValue = value;
    return *this;
}

OperationParameter& OperationParameter::atLeast(double value)
{
    minimum = value;
    return *this;
}

OperationParameter& OperationParameter::atMost(double value)
{
    maximum = value;
    return *this;
}

OperationParameter& OperationParameter::oneOf(const QStringList& values)
{
    choices = values;
    return *this;
}

OperationParameter& OperationParameter::offering(const QStringList& values)
{
    choices = values;
    choicesAreOpen = true;
    return *this;
}

OperationParameter& OperationParameter::isRequired()
{
    required = true;
    return *this;
}

OperationParameter& OperationParameter::withBadValueMessage(const QString& message)
{
    badValueMessage = message;
    return *this;
}

OperationParameter& OperationParameter::withExample(const QString& text)
{
    example = text;
    return *this;
}

bool OperationParameter::isEmptyValue(const QVariant& value)
{
    return !value.isValid() || value.isNull() ||
           (value.typeId() == QMetaType::QString && value.toString().isEmpty());
}

bool OperationParameter::normalize(const QVariant& value, QVariant& normalized) const
{
    // An empty value switches its stage off, whatever the parameter's kind.
    if (isEmptyValue(value)) {
        normalized = QString();
        return true;
    }
    switch (kind) {
    case ParameterKind::Int: {
        double number = 0.0;
        if (!toDouble(value, number) || !std::isfinite(number) || std::floor(number) != number ||
            std::abs(number) > 2147483647.0)
            return false;
        normalized = static_cast<int>(number);
        return true;
    }
    case ParameterKind::Double: {
        double number = 0.0;
        if (!toDouble(value, number))
            return false;
        normalized = number;
        return true;
    }
    case ParameterKind::String:
        if (value.typeId() != QMetaType::QString)
            return false;
        normalized = value.toString();
        return true;
    case ParameterKind::StringList: {
        QStringList list;
        for (const QVariant& item : value.toList()) {
            if (item.typeId() != QMetaType::QString)
                return false;
            list << item.toString();
        }
        if (value.typeId() == QMetaType::QString)
            list << value.toString();
        normalized = list;
        return true;
    }
    case ParameterKind::DoubleList: {
        QVariantList list;
        for (const QVariant& item : value.toList()) {
            double number = 0.0;
            if (!toDouble(item, number))
                return false;
            list << number;
        }
        normalized = list;
        return true;
    }
    case ParameterKind::Json: {
        // Kept as text so that it is recorded as one string attribute, identical whether
        // the value came from a dialog or from a parameter file.
        QJsonDocument document;
        if (value.typeId() == QMetaType::QString) {
            QJsonParseError parseError;
            document = QJsonDocument::fromJson(value.toString().toUtf8(), &parseError);
            if (parseError.error != QJsonParseError::NoError)
                return false;
        } else if (value.typeId() == QMetaType::QVariantMap) {
            document = QJsonDocument(QJsonObject::fromVariantMap(value.toMap()));
        } else if (value.typeId() == QMetaType::QVariantList) {
            document = QJsonDocument(QJsonArray::fromVariantList(value.toList()));
        } else {
            return false;
        }
        if (document.isNull())
            return false;
        normalized = QString::fromUtf8(document.toJson(QJsonDocument::Compact));
        return true;
    }
    }
    return false;
}

QString OperationParameter::rangeProblem(const QVariant& normalized) const
{
    if (isEmptyValue(normalized))
        return {};
    QVariantList items;
    if (kind == ParameterKind::StringList || kind == ParameterKind::DoubleList)
        items = normalized.toList();
    else
        items << normalized;
    for (const QVariant& item : std::as_const(items)) {
        bool allowed = true;
        if (kind == ParameterKind::String || kind == ParameterKind::StringList) {
            allowed = choices.isEmpty() || choicesAreOpen || choices.contains(item.toString());
        } else {
            const double value = item.toDouble();
            allowed = (!minimum || value >= *minimum) && (!maximum || value <= *maximum);
        }
        if (!allowed) {
            if (!badValueMessage.isEmpty())
                return badValueMessage;
            return ZarviMainDefinitions::parameterNotAllowedMessage().arg(key, allowedValues(),
                                                                          item.toString());
        }
    }
    return {};
}

QString OperationParameter::kindName() const
{
    switch (kind) {
    case ParameterKind::Int:
        return QStringLiteral("integer");
    case ParameterKind::Double:
        return QStringLiteral("number");
    case ParameterKind::String:
        return QStringLiteral("text");
    case ParameterKind::StringList:
        return QStringLiteral("list of texts");
    case ParameterKind::DoubleList:
        return QStringLiteral("list of numbers");
    case ParameterKind::Json:
        return QStringLiteral("JSON");
    }
    return {};
}

QString OperationParameter::allowedValues() const
{
    if (!choices.isEmpty() && choicesAreOpen)
        return ZarviMainDefinitions::usuallyOneOfText().arg(choices.join(QStringLiteral(", ")));
    if (!choices.isEmpty())
        return ZarviMainDefinitions::oneOfText().arg(choices.join(QStringLiteral(", ")));
    if (minimum && maximum)
        return ZarviMainDefinitions::betweenText().arg(numberText(*minimum), numberText(*maximum));
    if (minimum)
        return ZarviMainDefinitions::atLeastText().arg(numberText(*minimum));
    if (maximum)
        return ZarviMainDefinitions::atMostText().arg(numberText(*maximum));
    return {};
}

} // namespace zarvi
