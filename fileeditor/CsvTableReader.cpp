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

CsvPreview CsvTableReader::preview(const QString& path, int lineCount, CsvDelimiter delimiter)
{
    CsvPreview preview;
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
    std::ifstream in(std::filesystem::path(config.path.toStdU16String()), std::ios::binary);
    if (!in) {
        table.error = Texts::unableToOpenMessage().arg(config.path);
        return table;
    }

    ProgressTracker progress(feedback, static_cast<std::size_t>(info.size()));
    std::string line;
    std::string scratch;
    std::vector<std::string_view> cells;
    std::vector<ColumnRole> roles;
    std::size_t columnCount = 0;
    std::size_t lineNumber = 0;
    std::size_t bytesRead = 0;
    std::size_t rows = 0;
    bool headerPending = config.hasHeader;
    bool allowDecimalComma = false;
    // Trigger columns are held as sampled until their levels are known.
    std::vector<std::vector<double>> triggerValues;
    std::vector<TimeUnit> eventUnits;

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

        if (columnCount == 0) {
            table.delimiter = delimiterOf(config.delimiter, line);
            allowDecimalComma = table.delimiter != ',';
            splitLine(line, table.delimiter, cells);
            // A delimiter after the last cell of the first line is a habit of the writing
            // program, not an extra column.
            if (cells.size() > 1 && cells.back().empty())
                cells.pop_back();
            columnCount = cells.size();
            table.error = assignRoles(config, columnCount, roles);
            if (!table.error.isEmpty())
                return table;
            table.events.resize(std::count_if(roles.begin(), roles.end(), [](const ColumnRole& role) {
                return role.kind == ColumnRole::Event;
            }));
            table.triggers.resize(config.triggerColumns.size());
            triggerValues.resize(config.triggerColumns.size());
            eventUnits.assign(table.events.size(), config.timeUnit);
            const QStringList units =
                nameColumns(headerPending ? cells : std::vector<std::string_view>(), roles, table);
            for (std::size_t c = 0; c < roles.size(); ++c) {
                if (roles[c].kind == ColumnRole::Event)
                    eventUnits[roles[c].slot] = timeUnitNamed(units[c]).value_or(config.timeUnit);
            }
            // Room for all rows, judged from the length of the first line.
            const std::size_t expectedRows = static_cast<std::size_t>(info.size()) / (line.size() + 1) + 1;
            if (config.timeColumn >= 0)
                table.time.reserve(expectedRows);
            for (CsvColumn& column : table.columns)
                column.values.reserve(expectedRows);
            if (headerPending) {
                headerPending = false;
                continue;
            }
        } else {
            splitLine(line, table.delimiter, cells);
            if (cells.size() == columnCount + 1 && cells.back().empty())
                cells.pop_back();
        }

        if (cells.size() != columnCount) {
            table.error = Texts::columnCountMessage().arg(lineNumber).arg(cells.size()).arg(columnCount);
            return table;
        }
        for (std::size_t c = 0; c < columnCount; ++c) {
            const std::string_view cell = cells[c];
            const ColumnRole role = roles[c];
            if (cell.empty()) {
                if (role.kind == ColumnRole::Event)
                    continue;
                table.error = Texts::emptyCellMessage().arg(lineNumber).arg(c + 1);
                return table;
            }
            double value = 0.0;
            if (!parseNumber(cell, allowDecimalComma, scratch, value)) {
                table.error = Texts::notNumberMessage().arg(lineNumber).arg(c + 1).arg(cellText(cell));
                return table;
            }
            switch (role.kind) {
            case ColumnRole::Time:
                table.time.push_back(toSeconds(value, config.timeUnit));
                break;
            case ColumnRole::Event:
                table.events[role.slot].values.push_back(toSeconds(value, eventUnits[role.slot]));
                break;
            case ColumnRole::Trigger:
                triggerValues[role.slot].push_back(value);
                break;
            case ColumnRole::Data:
                table.columns[role.slot].values.push_back(value);
                break;
            }
        }
        ++rows;
    }

    if (in.bad())
        table.error = Texts::readFailedMessage().arg(config.path);
    else if (columnCount == 0)
        table.error = Texts::emptyFileMessage().arg(config.path);
    else if (rows == 0)
        table.error = Texts::noDataRowsMessage().arg(config.path);
    for (std::size_t t = 0; table.ok() && t < triggerValues.size(); ++t)
        findPulses(triggerValues[t], table.time, config.triggerColumns[t].threshold, table.triggers[t]);
    return table;
}

} // namespace zarvi
