#include "framework/OperationParameter.h"

#include <QStringList>

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
    if (isNumber(value)) {
        out = value.toDouble();
        return true;
    }
    if (value.typeId() == QMetaType::QString) {
        bool ok = false;
        out = value.toString().trimmed().toDouble(&ok);
        return ok;
    }
    return false;
}

} // namespace

bool OperationParameter::normalize(const QVariant& value, QVariant& normalized) const
{
    // An empty value switches its stage off, whatever the parameter's kind.
    if (!value.isValid() || value.isNull() || (value.typeId() == QMetaType::QString && value.toString().isEmpty())) {
        normalized = QString();
        return true;
    }
    switch (type) {
    case ParameterType::Int: {
        double number = 0.0;
        if (!toDouble(value, number) || !std::isfinite(number) || std::floor(number) != number ||
            std::abs(number) > 2147483647.0)
            return false;
        normalized = static_cast<int>(number);
        return true;
    }
    case ParameterType::Double: {
        double number = 0.0;
        if (!toDouble(value, number))
            return false;
        normalized = number;
        return true;
    }
    case ParameterType::String:
        if (value.typeId() != QMetaType::QString)
            return false;
        normalized = value.toString();
        return true;
    case ParameterType::StringList: {
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
    case ParameterType::DoubleList: {
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
    }
    return false;
}

} // namespace zarvi
