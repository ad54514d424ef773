#include "fileeditor/CsvTableReader.h"

#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>

#include "definitions/FileDefinitions.h"
#include "definitions/FileEditorOperationDefinitions.h"
#include "fileeditor/DigitalEdges.h"
#include "fileeditor/XlsxSheetReader.h"

namespace zarvi {

namespace {

using Texts = FileEditorOperationDefinitions;

/// Longest cell text quoted in a message.
constexpr qsizetype QuotedCellLength = 40;

/// What a column holds, and where its values go.
struct ColumnRole
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

bool isBlank(char c, char delimiter)
{
    return c == ' ' || (c == '\t' && delimiter != '\t');
}

bool isBlankLine(const std::string& line)
{
    return std::all_of(line.begin(), line.end(), [](char c) { return c == ' ' || c == '\t'; });
}

char detectDelimiter(const std::string& line)
{
    bool quoted = false;
    bool semicolon = false;
    for (const char c : line) {
        if (c == '"')
            quoted = !quoted;
        else if (!quoted && c == '\t')
            return '\t';
        else if (!quoted && c == ';')
            semicolon = true;
    }
    return semicolon ? ';' : ',';
}

char delimiterOf(CsvDelimiter choice, const std::string& firstLine)
{
    switch (choice) {
    case CsvDelimiter::Comma:
        return ',';
    case CsvDelimiter::Semicolon:
        return ';';
    case CsvDelimiter::Tab:
        return '\t';
    case CsvDelimiter::Automatic:
        break;
    }
    return detectDelimiter(firstLine);
}

/// Splits line into its cells as views into line. Quoted cells lose their quotes and
/// their doubled inner quotes in place; unquoted cells lose surrounding blanks.
void splitLine(std::string& line, char delimiter, std::vector<std::string_view>& cells)
{
    cells.clear();
    char* data = line.data();
    const std::size_t size = line.size();
    std::size_t read = 0;
    while (true) {
        while (read < size && isBlank(data[read], delimiter))
            ++read;
        std::size_t start = read;
        std::size_t end = read;
        if (read < size && data[read] == '"') {
            start = ++read;
            std::size_t write = read;
            while (read < size) {
                if (data[read] == '"') {
                    if (read + 1 < size && data[read + 1] == '"') {
                        data[write++] = '"';
                        read += 2;
                        continue;
                    }
                    ++read;
                    break;
                }
                data[write++] = data[read++];
            }
            end = write;
            while (read < size && data[read] != delimiter)
                ++read;
        } else {
            while (read < size && data[read] != delimiter)
                ++read;
            end = read;
            while (end > start && isBlank(data[end - 1], delimiter))
                --end;
        }
        cells.emplace_back(data + start, end - start);
        if (read >= size)
            break;
        ++read;
    }
}

/// Parses a whole cell as a number; a leading '+' is allowed, and a decimal comma
/// when allowDecimalComma is set.
bool parseNumber(std::string_view text, bool allowDecimalComma, std::string& scratch, double& value)
{
    if (!text.empty() && text.front() == '+')
        text.remove_prefix(1);
    const char* end = text.data() + text.size();
    const auto [next, error] = std::from_chars(text.data(), end, value);
    if (error == std::errc() && next == end)
        return true;
    if (!allowDecimalComma || std::count(text.begin(), text.end(), ',') != 1)
        return false;
    scratch.assign(text);
    std::replace(scratch.begin(), scratch.end(), ',', '.');
    const char* scratchEnd = scratch.data() + scratch.size();
    const auto [scratchNext, scratchError] = std::from_chars(scratch.data(), scratchEnd, value);
    return scratchError == std::errc() && scratchNext == scratchEnd;
}

double toSeconds(double value, TimeUnit unit)
{
    // Divisions rather than multiplications by 1e-3 and 1e-6: exact for exact quotients.
    switch (unit) {
    case TimeUnit::Milliseconds:
        return value / 1e3;
    case TimeUnit::Microseconds:
        return value / 1e6;
    case TimeUnit::Minutes:
        return value * 60.0;
    case TimeUnit::Seconds:
        break;
    }
    return value;
}

QString cellText(std::string_view cell)
{
    const QString text = QString::fromUtf8(cell.data(), static_cast<qsizetype>(cell.size()));
    return text.size() > QuotedCellLength ? text.left(QuotedCellLength) + QStringLiteral("...") : text;
}

/// Checks the configured columns against the file's and assigns each column its role.
QString assignRoles(const CsvTableReaderConfig& config, std::size_t columnCount,
                    std::vector<ColumnRole>& roles)
{
    const auto missing = [&](int column) {
        return column < 0 || static_cast<std::size_t>(column) >= columnCount;
    };
    if (config.timeColumn != -1 && missing(config.timeColumn))
        return Texts::missingColumnMessage().arg(config.timeColumn + 1).arg(columnCount);
    if (!config.triggerColumns.empty() && config.timeColumn < 0)
        return Texts::triggerWithoutTimeMessage();
    roles.assign(columnCount, ColumnRole());
    if (config.timeColumn >= 0)
        roles[config.timeColumn].kind = ColumnRole::Time;
    std::size_t events = 0;
    for (const int column : config.eventColumns) {
        if (missing(column))
            return Texts::missingColumnMessage().arg(column + 1).arg(columnCount);
        if (column == config.timeColumn)
            return Texts::timeAndEventColumnMessage().arg(column + 1);
        // A column listed twice is one event column.
        if (roles[column].kind != ColumnRole::Event)
            roles[column] = ColumnRole{ColumnRole::Event, events++};
    }
    std::size_t triggers = 0;
    for (const CsvTriggerColumn& trigger : config.triggerColumns) {
        if (missing(trigger.column))
            return Texts::missingColumnMessage().arg(trigger.column + 1).arg(columnCount);
        if (roles[trigger.column].kind != ColumnRole::Data)
            return Texts::twoRolesColumnMessage().arg(trigger.column + 1);
        roles[trigger.column] = ColumnRole{ColumnRole::Trigger, triggers++};
    }
    std::size_t data = 0;
    for (ColumnRole& role : roles) {
        if (role.kind == ColumnRole::Data)
            role.slot = data++;
    }
    return QString();
}

/// A time unit named in a header, for event columns whose times are written in it.
std::optional<TimeUnit> timeUnitNamed(const QString& unit)
{
    const QString u = unit.toLower();
    if (u == QStringLiteral("s") || u == QStringLiteral("sec") || u == QStringLiteral("seconds"))
        return TimeUnit::Seconds;
    if (u == QStringLiteral("ms"))
        return TimeUnit::Milliseconds;
    if (u == QStringLiteral("us") || u == QString::fromUtf8("\u00b5s"))
        return TimeUnit::Microseconds;
    if (u == QStringLiteral("min"))
        return TimeUnit::Minutes;
    return std::nullopt;
}

/// Names every column from the header cells (empty when there is no header); columns
/// without a header text get the generated names. Returns each column's unit.
QStringList nameColumns(const std::vector<std::string_view>& header, const std::vector<ColumnRole>& roles,
                        CsvTable& table)
{
    QStringList units;
    for (std::size_t c = 0; c < roles.size(); ++c) {
        auto [name, unit] = splitHeaderUnit(
            c < header.size() ? QString::fromUtf8(header[c].data(), static_cast<qsizetype>(header[c].size()))
                              : QString());
        if (name.isEmpty()) {
            const ColumnRole& role = roles[c];
            if (role.kind == ColumnRole::Time)
                name = FileDefinitions::TimeKey;
            else if (role.kind == ColumnRole::Event)
                name = FileDefinitions::EventPattern.arg(role.slot + 1);
            else if (role.kind == ColumnRole::Trigger)
                name = FileDefinitions::EventPattern.arg(table.events.size() + role.slot + 1);
            else
                name = FileDefinitions::SensorPattern.arg(role.slot + 1);
        }
        table.columnNames.append(name);
        units.append(unit);
    }
    for (std::size_t c = 0; c < roles.size(); ++c) {
        if (roles[c].kind == ColumnRole::Data)
            table.columns.push_back(CsvColumn{table.columnNames[c], units[c], {}});
    }
    for (std::size_t c = 0; c < roles.size(); ++c) {
        if (roles[c].kind == ColumnRole::Event)
            table.events[roles[c].slot] = CsvColumn{table.columnNames[c], units[c], {}};
        else if (roles[c].kind == ColumnRole::Trigger)
            table.triggers[roles[c].slot].name = table.columnNames[c];
    }
    return units;
}

/// The pulses of a sampled digital line: high above the threshold (half-way between the
/// lowest and highest values unless one is given).
void findPulses(const std::vector<double>& values, const std::vector<double>& time,
                std::optional<double> threshold, CsvPulses& pulses)
{
    if (values.empty())
        return;
    const auto [low, high] = std::minmax_element(values.begin(), values.end());
    pulses.threshold = threshold.value_or(*low + (*high - *low) / 2.0);
    DigitalEdges edges;
    for (std::size_t i = 0; i < values.size(); ++i)
        edges.add(values[i] > pulses.threshold, time[i]);
    edges.finish();
    pulses.onsets = edges.onsets();
    pulses.offsets = edges.offsets();
}

/// Turns rows of cell texts into the table, with the same rules whether the rows come
/// from the lines of a delimited text file or from the rows of a workbook sheet. The
/// first row fixes the number of columns and, when the table has a header, names them.
class TableBuilder
{
public:
    TableBuilder(const CsvTableReaderConfig& config, CsvTable& table, bool allowDecimalComma)
        : m_config(config), m_table(table), m_allowDecimalComma(allowDecimalComma),
          m_headerPending(config.hasHeader)
    {
    }

    std::size_t columnCount() const { return m_columnCount; }

    /// Adds one row; `expectedRows` sizes the columns when it is the first. False with the
    /// table's error set when the row cannot be read.
    bool add(const std::vector<std::string_view>& cells, std::size_t lineNumber, std::size_t expectedRows)
    {
        if (m_columnCount == 0) {
            if (!start(cells, expectedRows))
                return false;
            if (m_headerPending) {
                m_headerPending = false;
                return true;
            }
        }
        if (cells.size() != m_columnCount) {
            m_table.error = Texts::columnCountMessage().arg(lineNumber).arg(cells.size()).arg(m_columnCount);
            return false;
        }
        for (std::size_t c = 0; c < m_columnCount; ++c) {
            const std::string_view cell = cells[c];
            const ColumnRole role = m_roles[c];
            if (cell.empty()) {
                if (role.kind == ColumnRole::Event)
                    continue;
                m_table.error = Texts::emptyCellMessage().arg(lineNumber).arg(c + 1);
                return false;
            }
            double value = 0.0;
            if (!parseNumber(cell, m_allowDecimalComma, m_scratch, value)) {
                m_table.error = Texts::notNumberMessage().arg(lineNumber).arg(c + 1).arg(cellText(cell));
                return false;
            }
            switch (role.kind) {
            case ColumnRole::Time:
                m_table.time.push_back(toSeconds(value, m_config.timeUnit));
                break;
            case ColumnRole::Event:
                m_table.events[role.slot].values.push_back(toSeconds(value, m_eventUnits[role.slot]));
                break;
            case ColumnRole::Trigger:
                m_triggerValues[role.slot].push_back(value);
                break;
            case ColumnRole::Data:
                m_table.columns[role.slot].values.push_back(value);
                break;
            }
        }
        ++m_rows;
        return true;
    }

    /// Checks that the table holds rows and finds the trigger columns' pulses.
    void finish(const QString& path)
    {
        if (m_columnCount == 0)
            m_table.error = Texts::emptyFileMessage().arg(path);
        else if (m_rows == 0)
            m_table.error = Texts::noDataRowsMessage().arg(path);
        for (std::size_t t = 0; m_table.ok() && t < m_triggerValues.size(); ++t)
            findPulses(m_triggerValues[t], m_table.time, m_config.triggerColumns[t].threshold,
                       m_table.triggers[t]);
    }

private:
    bool start(const std::vector<std::string_view>& cells, std::size_t expectedRows)
    {
        m_columnCount = cells.size();
        m_table.error = assignRoles(m_config, m_columnCount, m_roles);
        if (!m_table.error.isEmpty())
            return false;
        m_table.events.resize(std::count_if(m_roles.begin(), m_roles.end(), [](const ColumnRole& role) {
            return role.kind == ColumnRole::Event;
        }));
        m_table.triggers.resize(m_config.triggerColumns.size());
        m_triggerValues.resize(m_config.triggerColumns.size());
        m_eventUnits.assign(m_table.events.size(), m_config.timeUnit);
        const QStringList units =
            nameColumns(m_headerPending ? cells : std::vector<std::string_view>(), m_roles, m_table);
        for (std::size_t c = 0; c < m_roles.size(); ++c) {
            if (m_roles[c].kind == ColumnRole::Event)
                m_eventUnits[m_roles[c].slot] = timeUnitNamed(units[c]).value_or(m_config.timeUnit);
        }
        if (m_config.timeColumn >= 0)
            m_table.time.reserve(expectedRows);
        for (CsvColumn& column : m_table.columns)
            column.values.reserve(expectedRows);
        return true;
    }

    const CsvTableReaderConfig& m_config;
    CsvTable& m_table;
    const bool m_allowDecimalComma;
    bool m_headerPending;
    std::vector<ColumnRole> m_roles;
    std::size_t m_columnCount = 0;
    std::size_t m_rows = 0;
    std::string m_scratch;
    // Trigger columns are held as sampled until their levels are known.
    std::vector<std::vector<double>> m_triggerValues;
    std::vector<TimeUnit> m_eventUnits;
};

/// Reads a sheet of a workbook: its rows, widened to the widest, in place of lines.
/// Workbooks store numbers with a decimal point whatever the reader's locale, so a
/// decimal comma is a text cell, not a number.
CsvTable readSheet(const CsvTableReaderConfig& config, Feedback* feedback)
{
    CsvTable table;
    std::vector<XlsxRow> rows;
    if (!XlsxSheetReader::readSheet(config.path, config.sheet, rows, table.error))
        return table;
    std::size_t width = 0;
    for (const XlsxRow& row : rows)
        width = std::max(width, row.cells.size());
    ProgressTracker progress(feedback, rows.size());
    TableBuilder builder(config, table, false);
    std::vector<std::string_view> cells;
    for (std::size_t r = 0; r < rows.size(); ++r) {
        if (progress.isCanceled()) {
            table.canceled = true;
            table.error = Texts::canceledMessage();
            return table;
        }
        progress.update(r);
        cells.assign(width, std::string_view());
        std::copy(rows[r].cells.begin(), rows[r].cells.end(), cells.begin());
        if (!builder.add(cells, rows[r].number, rows.size()))
            return table;
    }
    builder.finish(config.path);
    return table;
}

} // namespace

std::pair<QString, QString> splitHeaderUnit(const QString& header)
{
    static const QRegularExpression withUnit(QStringLiteral("^(.*\\S)\\s*\\(([^()]+)\\)\\s*$"));
    const QRegularExpressionMatch match = withUnit.match(header.trimmed());
    if (!match.hasMatch())
        return {header.trimmed(), QString()};
    return {match.captured(1), match.captured(2).trimmed()};
}

bool parseTriggerColumns(const QString& text, std::vector<CsvTriggerColumn>& columns)
{
    columns.clear();
    for (const QString& item : text.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        const QStringList parts = item.split(QLatin1Char(':'));
        bool ok = parts.size() <= 2;
        CsvTriggerColumn trigger;
        trigger.column = ok ? parts[0].trimmed().toInt(&ok) - 1 : -1;
        if (ok && parts.size() == 2) {
            trigger.threshold = parts[1].trimmed().toDouble(&ok);
            ok = ok && std::isfinite(*trigger.threshold);
        }
        if (!ok || trigger.column < 0)
            return false;
        columns.push_back(trigger);
    }
    return true;
}

CsvPreview CsvTableReader::preview(const QString& path, int lineCount, CsvDelimiter delimiter,
                                   const QString& sheet)
{
    CsvPreview preview;
    if (XlsxSheetReader::isWorkbook(path)) {
        std::vector<XlsxRow> rows;
        if (!XlsxSheetReader::readSheet(path, sheet, rows, preview.error,
                                        static_cast<std::size_t>(lineCount)))
            return preview;
        for (const XlsxRow& row : rows) {
            QStringList texts;
            for (const std::string& cell : row.cells)
                texts << QString::fromStdString(cell);
            preview.lines.push_back(texts);
        }
        return preview;
    }
    std::ifstream in(std::filesystem::path(path.toStdU16String()), std::ios::binary);
    if (!QFileInfo(path).isFile() || !in) {
        preview.error = Texts::unableToOpenMessage().arg(path);
        return preview;
    }
    std::string line;
    std::vector<std::string_view> cells;
    char used = 0;
    while (static_cast<int>(preview.lines.size()) < lineCount && std::getline(in, line)) {
        if (preview.lines.empty() && used == 0 && line.starts_with("\xEF\xBB\xBF"))
            line.erase(0, 3);
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (isBlankLine(line))
            continue;
        if (used == 0)
            used = delimiterOf(delimiter, line);
        splitLine(line, used, cells);
        QStringList texts;
        for (const std::string_view cell : cells)
            texts << QString::fromUtf8(cell.data(), static_cast<qsizetype>(cell.size()));
        preview.lines.push_back(texts);
    }
    return preview;
}

CsvTable CsvTableReader::read(const CsvTableReaderConfig& config, Feedback* feedback)
{
    CsvTable table;
    const QFileInfo info(config.path);
    if (!info.isFile()) {
        table.error = Texts::missingFileMessage().arg(config.path);
        return table;
    }
    if (XlsxSheetReader::isWorkbook(config.path))
        return readSheet(config, feedback);
    std::ifstream in(std::filesystem::path(config.path.toStdU16String()), std::ios::binary);
    if (!in) {
        table.error = Texts::unableToOpenMessage().arg(config.path);
        return table;
    }

    ProgressTracker progress(feedback, static_cast<std::size_t>(info.size()));
    std::string line;
    std::vector<std::string_view> cells;
    std::size_t lineNumber = 0;
    std::size_t bytesRead = 0;
    std::optional<TableBuilder> builder;

    while (std::getline(in, line)) {
        ++lineNumber;
        bytesRead += line.size() + 1;
        if (progress.isCanceled()) {
            table.canceled = true;
            table.error = Texts::canceledMessage();
            return table;
        }
        progress.update(bytesRead);
        if (lineNumber == 1 && line.starts_with("\xEF\xBB\xBF"))
            line.erase(0, 3);
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (isBlankLine(line))
            continue;

        if (!builder) {
            table.delimiter = delimiterOf(config.delimiter, line);
            builder.emplace(config, table, table.delimiter != ',');
            splitLine(line, table.delimiter, cells);
            // A delimiter after the last cell of the first line is a habit of the writing
            // program, not an extra column.
            if (cells.size() > 1 && cells.back().empty())
                cells.pop_back();
        } else {
            splitLine(line, table.delimiter, cells);
            if (cells.size() == builder->columnCount() + 1 && cells.back().empty())
                cells.pop_back();
        }
        // Room for all rows, judged from the length of the first line.
        if (!builder->add(cells, lineNumber, static_cast<std::size_t>(info.size()) / (line.size() + 1) + 1))
            return table;
    }

    if (in.bad()) {
        table.error = Texts::readFailedMessage().arg(config.path);
        return table;
    }
    if (!builder) {
        table.error = Texts::emptyFileMessage().arg(config.path);
        return table;
    }
    builder->finish(config.path);
    return table;
}

} // namespace zarvi
