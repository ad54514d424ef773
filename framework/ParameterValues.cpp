#include "framework/ParameterValues.h"

#include "framework/OperationParameter.h"

namespace zarvi {

bool ParameterValues::has(const QString& key) const
{
    return !OperationParameter::isEmptyValue(m_map.value(key));
}

bool ParameterValues::flag(const QString& key) const
{
    return has(key) && m_map.value(key).toInt() != 0;
}

int ParameterValues::integer(const QString& key, int fallback) const
{
    return has(key) ? m_map.value(key).toInt() : fallback;
}

double ParameterValues::number(const QString& key, double fallback) const
{
    return has(key) ? m_map.value(key).toDouble() : fallback;
}

std::optional<double> ParameterValues::optionalNumber(const QString& key) const
{
    if (!has(key))
        return std::nullopt;
    return m_map.value(key).toDouble();
}

QString ParameterValues::text(const QString& key) const
{
    return has(key) ? m_map.value(key).toString() : QString();
}

QStringList ParameterValues::texts(const QString& key) const
{
    return has(key) ? m_map.value(key).toStringList() : QStringList();
}

std::vector<double> ParameterValues::numbers(const QString& key) const
{
    std::vector<double> values;
    if (has(key)) {
        for (const QVariant& value : m_map.value(key).toList())
            values.push_back(value.toDouble());
    }
    return values;
}

} // namespace zarvi
