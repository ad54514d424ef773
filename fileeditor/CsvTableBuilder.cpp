#include "fileeditor/CsvTableBuilder.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include "definitions/FileDefinitions.h"
#include "definitions/FileEditorOperationDefinitions.h"
#include "fileeditor/DigitalEdges.h"

namespace zarvi {

namespace {

using Texts = FileEditorOperationDefinitions;
using ColumnRole = CsvColumnRole;

/// Longest cell text quoted in a message.
constexpr qsizetype QuotedCellLength = 40;

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

CsvTableBuilder::CsvTableBuilder(const CsvTableReaderConfig& config, CsvTable& table, bool allowDecimalComma)
    : m_config(config), m_table(table), m_allowDecimalComma(allowDecimalComma),
      m_headerPending(config.hasHeader)
{
}

bool CsvTableBuilder::add(const std::vector<std::string_view>& cells, std::size_t lineNumber,
                          std::size_t expectedRows)
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

void CsvTableBuilder::finish(const QString& path)
{
    if (m_columnCount == 0)
        m_table.error = Texts::emptyFileMessage().arg(path);
    else if (m_rows == 0)
        m_table.error = Texts::noDataRowsMessage().arg(path);
    for (std::size_t t = 0; m_table.ok() && t < m_triggerValues.size(); ++t)
        findPulses(m_triggerValues[t], m_table.time, m_config.triggerColumns[t].threshold,
                   m_table.triggers[t]);
}

bool CsvTableBuilder::start(const std::vector<std::string_view>& cells, std::size_t expectedRows)
{
    if (cells.size() > MaxColumns) {
        m_table.error = Texts::tooManyColumnsMessage().arg(cells.size()).arg(MaxColumns);
        return false;
    }
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

} // namespace zarvi
