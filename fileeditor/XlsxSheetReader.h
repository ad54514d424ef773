#pragma once

#include <QString>
#include <QStringList>

#include <cstddef>
#include <string>
#include <vector>

namespace zarvi {

/// One row of a sheet: its number as the sheet shows it (from 1) and its cells' texts in
/// UTF-8, column A first. Cells the sheet leaves out before the last written one are empty.
struct XlsxRow
{
    std::size_t number = 0;
    std::vector<std::string> cells;
};

/// Reads the sheets of an Excel workbook (.xlsx, .xlsm), a ZIP archive of XML parts, for
/// the spreadsheet conversion. Each cell is read as the text it holds: numbers (dates and
/// times among them, which a workbook keeps as serial numbers) and booleans as their
/// stored value, shared and inline strings as their text, formulas as their last computed
/// value. Styles, formats and formulas themselves are ignored. Pure functions of the file
/// read; any thread.
class XlsxSheetReader
{
public:
    /// True for file names that end like an Excel workbook (.xlsx, .xlsm, and the older
    /// .xls, which is refused as no ZIP archive when read).
    static bool isWorkbook(const QString& path);

    /// The sheets' names in the workbook's order; false with `error` (rich text) when the
    /// file is no readable workbook.
    static bool sheetNames(const QString& path, QStringList& names, QString& error);

    /// The rows of the sheet named `sheet` (the first sheet when empty) that hold a cell,
    /// at most `rowLimit` of them when it is positive.
    static bool readSheet(const QString& path, const QString& sheet, std::vector<XlsxRow>& rows,
                          QString& error, std::size_t rowLimit = 0);
};

} // namespace zarvi
