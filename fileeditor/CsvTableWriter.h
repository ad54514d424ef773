#pragma once

#include <QString>

#include "datafile/Feedback.h"
#include "fileeditor/TableData.h"

namespace zarvi {

struct CsvTableWriterConfig
{
    QString path;
    char delimiter = ',';
};

/// Writes a table to a .csv file: a header row ("Time (s)", "Signal (V)"), then one line
/// per row with every number in the shortest form that reads back as the same double.
/// Texts that hold the delimiter, quotes or line breaks are quoted. The file is UTF-8,
/// with a byte-order mark only when a header or row name is not plain ASCII, so that
/// spreadsheet programs show units such as "µV" correctly. The file appears only when
/// complete: a failure or a cancel leaves any earlier file of that name untouched.
/// Progress runs over the rows. Pure function, safe from any thread.
class CsvTableWriter
{
public:
    static TableWriteResult write(const TableData& table, const CsvTableWriterConfig& config,
                                  Feedback* feedback = nullptr);
};

} // namespace zarvi
