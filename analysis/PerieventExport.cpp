#include "analysis/PerieventExport.h"

#include "datafile/HDF5Reader_V6.h"
#include "definitions/AnalysisOperationDefinitions.h"
#include "fileeditor/CsvTableWriter.h"
#include "framework/LockedFileRead.h"
#include "numeric/Statistics.h"

#include <cmath>
#include <span>

namespace zarvi {

namespace {

using D = AnalysisOperationDefinitions;

QString written(const TableData& table, const QString& path, QStringList& paths, Feedback* feedback)
{
    const TableWriteResult result = CsvTableWriter::write(table, {path, ','}, feedback);
    if (result.ok() && !result.canceled)
        paths << path;
    return result.error;
}

} // namespace

TableData PerieventExport::matrixTable(const StoredPerieventResult& result)
{
    // The transpose's column-major storage holds the matrix row after row.
    const arma::mat rows = result.matrix.t();
    return TableData::fromRows(D::EventColumn, result.rowNames, result.time, QStringLiteral("s"),
                               std::span<const double>(rows.memptr(), rows.n_elem));
}

PerieventExport::TrialAverage PerieventExport::trialAverage(const arma::mat& trials)
{
    TrialAverage average{std::vector<double>(trials.n_cols, 0.0), std::vector<double>(trials.n_cols, 0.0)};
    const auto rows = static_cast<std::size_t>(trials.n_rows);
    for (arma::uword j = 0; rows > 0 && j < trials.n_cols; ++j) {
        // Columns are contiguous in the column-major matrix.
        const std::span<const double> column(trials.colptr(j), rows);
        average.mean[j] = Statistics::mean(column);
        average.sem[j] = Statistics::standardDeviation(column) / std::sqrt(static_cast<double>(rows));
    }
    return average;
}

TableData PerieventExport::averageTable(const StoredPerieventResult& result)
{
    TrialAverage average = trialAverage(result.matrix);
    TableData table;
    table.columns.push_back({D::timeColumnTitle(), QStringLiteral("s"), result.time});
    table.columns.push_back({D::meanColumnTitle(), result.unit, std::move(average.mean)});
    table.columns.push_back({D::semColumnTitle(), result.unit, std::move(average.sem)});
    return table;
}

TableData PerieventExport::statisticTable(const StoredPerieventResult& result,
                                          const StoredPerieventResult::Statistic& statistic)
{
    TableData table;
    table.rowNamesTitle = D::EventColumn;
    table.rowNames = result.rowNames;
    for (arma::uword frame = 0; frame < statistic.values.n_cols; ++frame) {
        const arma::vec column = statistic.values.col(frame);
        table.columns.push_back({statistic.frameNames.value(static_cast<qsizetype>(frame)), result.unit,
                                 std::vector<double>(column.begin(), column.end())});
    }
    return table;
}

QString PerieventExport::statisticPath(const QString& csvPath, const QString& statistic)
{
    const QString suffix = QStringLiteral(".csv");
    const QString base =
        csvPath.endsWith(suffix, Qt::CaseInsensitive) ? csvPath.chopped(suffix.size()) : csvPath;
    return QStringLiteral("%1_%2.csv").arg(base, statistic);
}

QString PerieventExport::write(const StoredPerieventResult& result, const QString& typedPath,
                               QStringList& paths, Feedback* feedback)
{
    // A name typed without the extension gets it, as the files written beside it do.
    const QString csvPath = typedPath.endsWith(QStringLiteral(".csv"), Qt::CaseInsensitive)
                                ? typedPath
                                : typedPath + QStringLiteral(".csv");
    QString error = written(matrixTable(result), csvPath, paths, feedback);
    if (error.isEmpty())
        error = written(averageTable(result), statisticPath(csvPath, D::MeanSemFileSuffix), paths, nullptr);
    for (std::size_t s = 0; error.isEmpty() && s < result.statistics.size(); ++s) {
        const StoredPerieventResult::Statistic& statistic = result.statistics[s];
        error = written(statisticTable(result, statistic), statisticPath(csvPath, statistic.name), paths,
                        nullptr);
    }
    return error;
}

QString PerieventExport::exportFromFile(const QString& filepath, const QString& datapath,
                                        const QString& csvPath, QStringList& paths, Feedback* feedback)
{
    StoredPerieventResult result;
    QString error;
    {
        LockedFileRead read(filepath, LockedFileRead::Wait::Yes);
        if (!read.isOpen())
            return read.error();
        if (!PerieventResultFile::read(read.reader(), datapath, result, error))
            return D::cannotReadResultMessage().arg(datapath, error);
    }
    return write(result, csvPath, paths, feedback);
}

} // namespace zarvi
