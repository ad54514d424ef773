#pragma once

#include <QString>

namespace zarvi {

/// Creates the empty data file behind "Create". A user who creates a file
/// expects to open it at once and to fill it with converted recordings, so the
/// file gets the program's identity on its root and an empty "DataConverted"
/// group: that makes it a data file that opens in the dataset plug-in, and it is
/// where the conversions put their data. GUI thread (a short write).
class NewDataFile
{
public:
    /// Adds the ".orvel" extension when the name has none.
    static QString withExtension(const QString& path);
    /// Creates (or truncates) the file; false with `error` (rich text) on failure.
    static bool create(const QString& path, QString& error);
};

} // namespace zarvi
