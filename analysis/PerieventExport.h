#pragma once

#include "analysis/operations/perievents/PerieventResultFile.h"
#include "fileeditor/TableData.h"

#include <QString>
#include <QStringList>

namespace zarvi {

class Feedback;

/// Exports saved perievent results to .csv: the matrix as one row per kept event (its
/// name first) and one column per time point headed "<time> (s)"; the mean ± SEM trace
/// as columns "Time (s)", "Mean (<unit>)", "SEM (<unit>)" in "<base>_MeanSEM.csv"; and
/// each statistic as one row per event and one column per time frame headed
/// "<frame> (<unit>)" in "<base>_<statistic>.csv". Plain functions, any thread.
class PerieventExport
{
public:
    /// Per time point, the mean across trials and its standard error: the n - 1
    /// standard deviation over sqrt(n), 0 for a single trial.
    struct TrialAverage
    {
        std::vector<double> mean;
        std::vector<double> sem;
    };
    static TrialAverage trialAverage(const arma::mat& trials);
    static TableData averageTable(const StoredPerieventResult& result);
    static TableData matrixTable(const StoredPerieventResult& result);
    static TableData statisticTable(const StoredPerieventResult& result,
                                    const StoredPerieventResult::Statistic& statistic);
    /// csvPath without its ".csv", then "_<statistic>.csv".
    static QString statisticPath(const QString& csvPath, const QString& statistic);

    /// Writes the matrix to `csvPath` (".csv" added when it lacks it), the mean ± SEM
    /// trace and every statistic beside it; `written` gets the paths. The message of the
    /// first failure, else empty.
    static QString write(const StoredPerieventResult& result, const QString& csvPath, QStringList& written,
                         Feedback* feedback = nullptr);

    /// Reads the result at `datapath` (the matrix, or the group holding it) of the data
    /// file, waiting for the file's access lock, then writes it as write() does.
    static QString exportFromFile(const QString& filepath, const QString& datapath, const QString& csvPath,
                                  QStringList& written, Feedback* feedback = nullptr);
};

} // namespace zarvi
