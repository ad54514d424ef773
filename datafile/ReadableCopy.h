#pragma once

#include <QString>
#include <QStringList>

namespace zarvi {

/// Writes a new HDF5 file holding every object of another that the library can still
/// read, for the repair of a file a killed write left with objects it never finished:
/// each readable object is copied whole by the library (raw data as stored, attributes
/// included), a group that cannot be copied whole is made anew with its attributes and
/// its readable members, and what cannot be read at all is left out and named. Plain
/// functions on files; any thread.
class ReadableCopy
{
public:
    /// Copies `sourcePath` into the new file `copyPath`; `leftOut` receives the paths left
    /// out. False with `error` set when the root or its attributes cannot be read or the
    /// copy cannot be written; the caller removes what was written then.
    static bool write(const QString& sourcePath, const QString& copyPath, QStringList& leftOut,
                      QString& error);
};

} // namespace zarvi
