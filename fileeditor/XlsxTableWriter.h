#pragma once

#include <QString>

#include <cstddef>

#include "datafile/Feedback.h"
#include "fileeditor/TableData.h"

namespace zarvi {

struct XlsxTableWriterConfig
{
    QString path;
};

/// Writes a table to an Excel workbook (.xlsx) with the same layout as the .csv export:
/// a bold header row, then one row per table row. A sheet holds at most 1,048,576 rows,
/// so a longer table continues on further sheets "Sheet2", "Sheet3"... (the first is
/// "Sheet1"), each starting with the same header row; nothing is dropped. A table wider
/// than a sheet's 16,384 columns is refused with a message that suggests .csv. Cells
/// that are not finite numbers are written as the texts "NaN", "Inf" and "-Inf".
/// Numbers are stored with 16 significant digits (Excel shows 15); the .csv export keeps
/// every bit. Rows are streamed through temporary files, so memory does not grow with
/// the table; the workbook is assembled at the end, and a failure leaves no partial file
/// behind. Progress runs over the rows to 70 %, the packing of the workbook takes the
/// rest. Pure function, safe from any thread.
class XlsxTableWriter
{
public:
    /// Rows a sheet holds, its header row included.
    static constexpr std::size_t SheetRows = 1'048'576;
    static constexpr std::size_t SheetColumns = 16'384;

    static TableWriteResult write(const TableData& table, const XlsxTableWriterConfig& config,
                                  Feedback* feedback = nullptr);
};

} // namespace zarvi
