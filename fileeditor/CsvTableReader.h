#pragma once

#include <QString>
#include <QStringList>

#include <optional>
#include <utility>
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

/// A column recording a digital line (0/1, or two voltage levels) sample by sample.
struct CsvTriggerColumn
{
    /// Column from 0.
    int column = 0;
    /// A value above it is high; when absent, half-way between the column's lowest and
    /// highest values.
    std::optional<double> threshold;
};

/// Splits a header text "Name (unit)" into the name and the unit; a header without a
/// trailing parenthesis is all name.
std::pair<QString, QString> splitHeaderUnit(const QString& header);

/// Reads "6" or "6:2.5" items separated by commas (columns from 1, thresholds after a
/// colon) into 0-based trigger columns; false on any other text.
bool parseTriggerColumns(const QString& text, std::vector<CsvTriggerColumn>& columns);

/// Reads column numbers from 1 separated by commas into 0-based event columns; false on
/// any other text.
bool parseEventColumns(const QString& text, std::vector<int>& columns);

struct CsvTableReaderConfig
{
    QString path;
    /// The sheet of an .xlsx workbook to read; empty for the first sheet. Unused for text
    /// files.
    QString sheet;
    CsvDelimiter delimiter = CsvDelimiter::Automatic;
    /// The first non-empty line names the columns.
    bool hasHeader = true;
    /// Column (from 0) holding the sample times; -1 when the file has none.
    int timeColumn = 0;
    TimeUnit timeUnit = TimeUnit::Seconds;
    /// Columns (from 0) whose cells are event times; their empty cells are skipped.
    std::vector<int> eventColumns;
    /// Columns whose rising edges are onsets and falling edges offsets.
    std::vector<CsvTriggerColumn> triggerColumns;
};

struct CsvColumn
{
    QString name;
    /// The unit written in the header after the name, "Name (unit)"; empty without one.
    QString unit;
    std::vector<double> values;
};

/// The pulses of a trigger column, in seconds: onset k is the time of the first high
/// sample of pulse k, offset k the time of the first low sample after it (or the last
/// sample, for a pulse still high at the end).
struct CsvPulses
{
    QString name;
    double threshold = 0.0;
    std::vector<double> onsets;
    std::vector<double> offsets;
};

/// The parsed table, or why the file could not be read.
struct CsvTable
{
    /// The delimiter that was used.
    char delimiter = ',';
    /// Every column's name in file order: the header texts without a trailing unit in
    /// parentheses, or generated names ("Time", "Sensor%1" for the data columns and
    /// "Event%1" for the event and trigger columns, each numbered from 1) when there is
    /// no header or a header cell is empty.
    QStringList columnNames;
    /// The time column in seconds; empty when there is none.
    std::vector<double> time;
    /// The numeric columns other than time and events, in file order, one value per row.
    std::vector<CsvColumn> columns;
    /// The event columns in the order configured, as event times in seconds; a time unit
    /// in the column's header ("Reward (ms)") takes the place of the configured one.
    std::vector<CsvColumn> events;
    /// The trigger columns in the order configured.
    std::vector<CsvPulses> triggers;
    QString error;
    bool canceled = false;

    bool ok() const { return error.isEmpty(); }
};

/// The first lines of a table as text, to show before converting it.
struct CsvPreview
{
    /// One text per cell, the first line included; each line as long as the file has it.
    std::vector<QStringList> lines;
    QString error;
};

/// Parses a table of numbers for the spreadsheet conversion: a delimited text file (.csv,
/// .txt), or a sheet of an Excel workbook (.xlsx, .xlsm), whose rows are read with the
/// same rules as lines, numbered as the sheet numbers them.
/// Streams the file line by line, so only the parsed numbers are held; accepts CRLF
/// line ends, a UTF-8 byte-order mark, quoted cells, a delimiter after the last cell,
/// blank lines, and decimal commas when the delimiter is not a comma. A bad cell stops
/// the parse with a message naming its line and column (both counted from 1).
/// Progress runs over the bytes read. Pure function, safe from any thread.
class CsvTableReader
{
public:
    static CsvTable read(const CsvTableReaderConfig& config, Feedback* feedback = nullptr);
    /// The first `lineCount` non-blank lines (or rows of the workbook sheet `sheet`, the
    /// first when empty) split into cells as read() splits them.
    static CsvPreview preview(const QString& path, int lineCount,
                              CsvDelimiter delimiter = CsvDelimiter::Automatic,
                              const QString& sheet = QString());
};

} // namespace zarvi
