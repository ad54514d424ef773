#pragma once

#include <QString>
#include <QStringList>

#include <vector>

#include "datafile/Feedback.h"

namespace zarvi {

enum class CsvDelimiter
{
    /// Taken from the first line: a tab if it holds one outside quotes, else a
    /// semicolon if it holds one, else a comma. Commas come last because files written
    /// with decimal commas separate their cells with semicolons or tabs.
    Automatic,
    Comma,
    Semicolon,
    Tab
};

/// The unit in which the time column and the event columns are written.
enum class TimeUnit
{
    Seconds,
    Milliseconds,
    Microseconds,
    Minutes
};

struct CsvTableReaderConfig
{
    QString path;
    CsvDelimiter delimiter = CsvDelimiter::Automatic;
    /// The first non-empty line names the columns.
    bool hasHeader = true;
    /// Column (from 0) holding the sample times; -1 when the file has none.
    int timeColumn = 0;
    TimeUnit timeUnit = TimeUnit::Seconds;
    /// Columns (from 0) whose cells are event times; their empty cells are skipped.
    std::vector<int> eventColumns;
};

struct CsvColumn
{
    QString name;
    std::vector<double> values;
};

/// The parsed table, or why the file could not be read.
struct CsvTable
{
    /// The delimiter that was used.
    char delimiter = ',';
    /// Every column's name in file order: the header texts, or generated names ("Time",
    /// "Sensor%1" for the data columns and "Event%1" for the event columns, each
    /// numbered from 1) when there is no header or a header cell is empty.
    QStringList columnNames;
    /// The time column in seconds; empty when there is none.
    std::vector<double> time;
    /// The numeric columns other than time and events, in file order, one value per row.
    std::vector<CsvColumn> columns;
    /// The event columns in the order configured, as event times in seconds.
    std::vector<CsvColumn> events;
    QString error;
    bool canceled = false;

    bool ok() const { return error.isEmpty(); }
};

/// Parses a delimited text table of numbers (.csv, .txt) for the spreadsheet conversion.
/// Streams the file line by line, so only the parsed numbers are held; accepts CRLF
/// line ends, a UTF-8 byte-order mark, quoted cells, a delimiter after the last cell,
/// blank lines, and decimal commas when the delimiter is not a comma. A bad cell stops
/// the parse with a message naming its line and column (both counted from 1).
/// Progress runs over the bytes read. Pure function, safe from any thread.
class CsvTableReader
{
public:
    static CsvTable read(const CsvTableReaderConfig& config, Feedback* feedback = nullptr);
};

} // namespace zarvi
