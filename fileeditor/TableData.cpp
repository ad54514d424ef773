#include "fileeditor/TableData.h"

#include <algorithm>
#include <charconv>

#include "definitions/FileEditorOperationDefinitions.h"

namespace zarvi {

QString TableColumn::header() const
{
    return unit.isEmpty() ? name : FileEditorOperationDefinitions::ColumnWithUnitPattern.arg(name, unit);
}

std::size_t TableData::rowCount() const
{
    std::size_t rows = static_cast<std::size_t>(rowNames.size());
    for (const TableColumn& column : columns)
        rows = std::max(rows, column.values.size());
    return rows;
}

TableData TableData::fromRows(const QString& rowNamesTitle, const QStringList& rowNames,
                              std::span<const double> timePoints, const QString& unit,
                              std::span<const double> values)
{
    TableData table;
    table.rowNamesTitle = rowNamesTitle;
    table.rowNames = rowNames;
    const std::size_t width = timePoints.size();
    const std::size_t rows = width == 0 ? 0 : values.size() / width;
    table.columns.resize(width);
    for (std::size_t c = 0; c < width; ++c) {
        TableColumn& column = table.columns[c];
        column.name = numberText(timePoints[c]);
        column.unit = unit;
        column.values.resize(rows);
        for (std::size_t r = 0; r < rows; ++r)
            column.values[r] = values[r * width + c];
    }
    return table;
}

QString TableData::numberText(double value)
{
    char text[32];
    const auto result = std::to_chars(text, text + sizeof text, value);
    return QString::fromLatin1(text, result.ptr - text);
}

} // namespace zarvi
