#pragma once

#include "analysis/operations/perievents/PerieventResultFile.h"
#include "fileeditor/TableData.h"

#include <QString>
#include <QStringList>

namespace zarvi {

class Feedback;

/// Exports saved perievent results to .csv: the matrix as one row per kept event (its
/// name first) and one column per time point headed "<time> (s)", and each statistic
/// as one row per event and one column per time frame headed "<frame> (<unit>)". The
/// statistics go beside the matrix's file, named "<base>_<statistic>.csv". Plain
/// functions, any thread.
class PerieventExport
{
public:
    static TableData matrixTable(const StoredPerieventResult& result);
    static TableData statisticTable(const StoredPerieventResult& result,
                                    const StoredPerieventResult::Statistic& statistic);
    /// csvPath without its ".csv", then "_<statistic>.csv".
    static QString statisticPath(const QString& csvPath, const QString& statistic);

    /// Writes the matrix to `csvPath` and every statistic beside it; `written` gets the
    /// paths. The message of the first failure, else empty.
    static QString write(const StoredPerieventResult& result, const QString& csvPath, QStringList& written,
                         Feedback* feedback = nullptr);

    /// Reads the result at `datapath` (the matrix, or the group holding it) of the data
    /// file, waiting for the file's access lock, then writes it as write() does.
    static QString exportFromFile(const QString& filepath, const QString& datapath, const QString& csvPath,
                                  QStringList& written, Feedback* feedback = nullptr);
};

} // namespace zarvi
