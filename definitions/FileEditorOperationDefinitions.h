#pragma once

#include <QString>

namespace zarvi {

/// Holds the names and keys of the file-editing operations (conversion, export, merge, split).
/// Keys are never translated. Constants only, safe from any thread.
class FileEditorOperationDefinitions
{
public:
    static inline const QString Convert = QStringLiteral("Convert");
    static inline const QString Export = QStringLiteral("Export");
    static inline const QString Merge = QStringLiteral("Merge");
    static inline const QString Split = QStringLiteral("Split");
};

} // namespace zarvi
