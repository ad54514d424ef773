#pragma once

#include "analysis/operations/perievents/PerieventAnalysis.h"
#include "datafile/DataFileTree.h"

#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <armadillo>

#include <functional>
#include <span>
#include <vector>

namespace zarvi {

class Feedback;
class HDF5Manager_V6;
class HDF5Writer_V6;

/// What a saved side result is called: "<signal> <event>", with " (<side>)" after it
/// when the side is named; its statistics "<signal> <event> <statistic>" likewise.
struct PerieventResultNames
{
    QString signal;
    QString event;
    /// "Onset" or "Offset" for a side of an onset/offset array, else empty.
    QString side;

    QString matrixTitle() const;
    QString statisticTitle(const QString& statistic) const;
};

/// A perievent result as stored in the file.
struct StoredPerieventResult
{
    struct Statistic
    {
        QString name;
        QString title;
        /// Rows = events, columns = time frames.
        arma::mat values;
        QStringList frameNames;
    };

    /// Path of the matrix dataset.
    QString path;
    QString title;
    /// Rows = kept events, columns = samples of the window.
    arma::mat matrix;
    std::vector<double> time;
    QStringList rowNames;
    QString unit;
    double windowStart = 0.0;
    double windowEnd = 0.0;
    std::vector<Statistic> statistics;
};

/// Writes and reads the saved results of the perievent analysis. One side's result is
/// a group holding:
/// - "Perievents": float64 [events, samples], chunked by bands of rows of about 1 MiB;
///   attributes "RowNames" (kept event names), "RowLabel" "Trials", "ColumnLabel"
///   "Time (sec)", "ColumnRange" [window start, end], "Unit", "Username";
/// - "Time": float64 [samples], the column times relative to the event, "Unit" "s";
/// - one float64 [events, time frames] dataset per statistic, named by the statistic
///   ("AUC", "Mean", ...), with "RowNames", "RowLabel" "Trials", "ColumnNames" (the time
///   frame names), "ColumnLabel" "Statistic Time Frames", "Unit", "Username".
/// Plain functions on the thread that holds the file.
class PerieventResultFile
{
public:
    /// The most events a result names: "RowNames" is one attribute, and an attribute of
    /// a file readable by HDF5 1.8 holds at most 64 KiB (16 bytes per name).
    static constexpr std::size_t MaxEvents = 4000;

    /// Gives rows [first, first + count) of a matrix, row-major, cut and normalised; null
    /// when their cutting was stopped.
    using RowBands = std::function<const double*(std::size_t first, std::size_t count)>;

    /// Rows per chunk of a saved matrix of `rows` by `columns`: whole rows of about 1 MiB,
    /// so that a trial reads at once. The matrix is written a band of that many at a time.
    static std::size_t bandRows(std::size_t rows, std::size_t columns);

    /// Creates `group` and writes `result` into it, its rows band by band as `bands` gives
    /// them (see NormalisedBands), straight into the file's row order, so that the whole
    /// matrix is never held; `statistics` names result.statistics in order. `attributes`
    /// (the run's parameters, the source path) go onto the matrix and statistic datasets.
    /// Polls `feedback` per band of rows. `summarised`, when given, is called after the
    /// rows and times are written and before the statistics are read, and returns false
    /// when they were not all taken. Returns the matrix path, or empty with `error` set
    /// (or nothing set when cancelled); a result of more than MaxEvents rows is refused
    /// before anything is written.
    static QString write(HDF5Writer_V6& file, const QString& group, const PerieventSideResult& result,
                         const RowBands& bands, const std::vector<ChunkStatistic::Kind>& statistics,
                         double windowStart, double windowEnd, const QString& unit,
                         const PerieventResultNames& names, const QVariantMap& attributes, QString& error,
                         Feedback* feedback, const std::function<bool()>& summarised = {});

    /// Reads the result whose matrix is at `path`, or held by the group at `path`.
    static bool read(HDF5Manager_V6& file, const QString& path, StoredPerieventResult& result,
                     QString& error);

    /// Whether a node of the file's tree is a saved perievent matrix.
    static bool isMatrix(const DataFileNode& node);
};

} // namespace zarvi
