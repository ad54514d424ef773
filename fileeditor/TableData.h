#pragma once

#include <QString>
#include <QStringList>

#include <cstddef>
#include <span>
#include <vector>

namespace zarvi {

/// One exported column: its values under a header that carries the unit.
struct TableColumn
{
    QString name;
    /// Shown in the header as "name (unit)"; no parentheses when empty.
    QString unit;
    std::vector<double> values;

    QString header() const;
};

/// A table handed to the .csv and .xlsx writers: named columns of numbers, optionally
/// preceded by a column of row names. Columns may differ in length (event times beside
/// a signal); the cells below a short column stay empty.
struct TableData
{
    /// Header of the row-names column ("Event"); used only when rowNames is not empty.
    QString rowNamesTitle;
    QStringList rowNames;
    std::vector<TableColumn> columns;

    /// Rows below the header: the longest column, or the row names if more.
    std::size_t rowCount() const;
    /// Columns in the file, the row-names column included.
    std::size_t columnCount() const { return columns.size() + (rowNames.isEmpty() ? 0 : 1); }

    /// The table of a 2-D result: one row per named row (an event, a trial), one column
    /// per time point, headed by the time point in unit. values holds the rows one after
    /// another, each with timePoints.size() values.
    static TableData fromRows(const QString& rowNamesTitle, const QStringList& rowNames,
                              std::span<const double> timePoints, const QString& unit,
                              std::span<const double> values);
    /// The shortest text that reads back as exactly the same double.
    static QString numberText(double value);
};

/// What a table writer reports.
struct TableWriteResult
{
    /// Sheets written (1 for .csv).
    int sheetCount = 0;
    QString error;
    bool canceled = false;

    bool ok() const { return error.isEmpty(); }
};

} // namespace zarvi
