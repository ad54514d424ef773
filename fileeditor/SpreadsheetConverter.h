#pragma once

#include <QString>

#include <vector>

#include "datafile/Feedback.h"
#include "fileeditor/ConversionTarget.h"
#include "fileeditor/CsvTableReader.h"

namespace zarvi {

struct SpreadsheetConversionConfig
{
    /// A .csv (or other delimited text) file, or an .xlsx (.xlsm) workbook.
    QString sourcePath;
    /// The workbook's sheet to read; empty for the first sheet.
    QString sheet;
    /// Device and series; the sensor groups are named after the columns.
    ConversionDestination destination;
    /// Column (from 0) holding the sample times.
    int timeColumn = 0;
    TimeUnit timeUnit = TimeUnit::Seconds;
    /// Columns (from 0) whose cells are event times, in timeUnit (or the time unit their
    /// header names).
    std::vector<int> eventColumns;
    /// Columns recording a digital line, whose edges become onsets and offsets.
    std::vector<CsvTriggerColumn> triggerColumns;
    /// The `Unit` of value columns whose header names none; none is written when empty.
    QString signalUnit;
    CsvDelimiter delimiter = CsvDelimiter::Automatic;
};

/// Brings a table of numbers (a .csv file or a sheet of an .xlsx workbook) into a data file: every value
/// column becomes a signal "DataConverted/<device>/Signals/Series<N>/<column name>/{Signal, Time}" sharing
/// the time column (converted to seconds), every event column an event array
/// "DataConverted/<device>/Events/Series<M>/<column name>" (float64 [events, 1], seconds,
/// sorted), every trigger column one of its pulses (float64 [pulses, 2], onset and
/// offset). A unit in a header, "Green (V)", is the column's `Unit`, not part of its name.
/// Columns are named by their header, or "Sensor%1" / "Event%1" without one;
/// a name that holds a slash, is structural or repeats another is stored under a safe
/// name, which the result's notes report. A header line is recognised by a cell that is
/// not a number. Progress: reading to 40 %, writing to 100 %. Runs on the job's worker thread.
class SpreadsheetConverter
{
public:
    static ConversionResult convert(const SpreadsheetConversionConfig& config, Feedback* feedback = nullptr);

    /// True when the first non-blank line of a delimited text file (or the first row of
    /// the workbook sheet `sheet`) holds a cell that is not a number, that is a header line.
    static bool startsWithHeader(const QString& path, const QString& sheet = QString());
};

} // namespace zarvi
