#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "fileeditor/CsvTableReader.h"

namespace zarvi {

/// What a column holds, and where its values go.
struct CsvColumnRole
{
    enum Kind
    {
        Time,
        Data,
        Event,
        Trigger
    } kind = Data;
    std::size_t slot = 0;
};

/// Turns rows of cell texts into the table, with the same rules whether the rows come
/// from the lines of a delimited text file or from the rows of a workbook sheet. The
/// first row fixes the number of columns and, when the table has a header, names them.
/// Lives for one read, on the reading thread.
class CsvTableBuilder
{
public:
    /// The most columns a table may have: each becomes a signal of its own in the data
    /// file, and a row as wide as a whole file is a damaged or mistaken one.
    static constexpr std::size_t MaxColumns = 10000;

    CsvTableBuilder(const CsvTableReaderConfig& config, CsvTable& table, bool allowDecimalComma);

    std::size_t columnCount() const { return m_columnCount; }

    /// Adds one row; `expectedRows` sizes the columns when it is the first. False with the
    /// table's error set when the row cannot be read; `lineNumber` names it.
    bool add(const std::vector<std::string_view>& cells, std::size_t lineNumber, std::size_t expectedRows);

    /// Checks that the table holds rows and finds the trigger columns' pulses.
    void finish(const QString& path);

private:
    bool start(const std::vector<std::string_view>& cells, std::size_t expectedRows);

    const CsvTableReaderConfig& m_config;
    CsvTable& m_table;
    const bool m_allowDecimalComma;
    bool m_headerPending;
    std::vector<CsvColumnRole> m_roles;
    std::size_t m_columnCount = 0;
    std::size_t m_rows = 0;
    std::string m_scratch;
    // Trigger columns are held as sampled until their levels are known.
    std::vector<std::vector<double>> m_triggerValues;
    std::vector<TimeUnit> m_eventUnits;
};

} // namespace zarvi
