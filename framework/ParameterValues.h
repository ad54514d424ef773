#pragma once

#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <optional>
#include <vector>

namespace zarvi {

/// Typed reading of a parameter map, the one way processes, kernels' configurations
/// and previews read their parameters. A key that is absent or empty is "not given":
/// has() is false, the optional readers return nothing and the others their fallback.
/// Reads maps already checked by the registry as well as a view's unchecked map.
/// Plain value, any thread.
class ParameterValues
{
public:
    ParameterValues() = default;
    explicit ParameterValues(QVariantMap map) : m_map(std::move(map)) {}

    /// True when the key is present with a non-empty value.
    bool has(const QString& key) const;
    /// True when the key is given and not 0 (check-box stages).
    bool flag(const QString& key) const;
    int integer(const QString& key, int fallback = 0) const;
    double number(const QString& key, double fallback = 0.0) const;
    std::optional<double> optionalNumber(const QString& key) const;
    QString text(const QString& key) const;
    QStringList texts(const QString& key) const;
    std::vector<double> numbers(const QString& key) const;

    /// The map as given, for recording in the file.
    const QVariantMap& map() const { return m_map; }

private:
    QVariantMap m_map;
};

} // namespace zarvi
