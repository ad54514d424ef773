#pragma once

#include <QString>

namespace zarvi {

/// Holds the names and parameter keys of the analysis operations.
/// Keys are never translated. Constants only, safe from any thread.
class AnalysisOperationDefinitions
{
public:
    static inline const QString Perievents = QStringLiteral("Perievents");
};

} // namespace zarvi
