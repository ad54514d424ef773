#include "fileeditor/CsvTableReader.h"

#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>

#include "definitions/FileEditorOperationDefinitions.h"
#include "fileeditor/CsvTableBuilder.h"
#include "fileeditor/SourceDetector.h"
#include "fileeditor/XlsxSheetReader.h"

namespace zarvi {

namespace {

using Texts = FileEditorOperationDefinitions;

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
    CsvTableBuilder builder(config, table, false);
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

bool parseEventColumns(const QString& text, std::vector<int>& columns)
{
    columns.clear();
    for (const QString& item : text.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        bool ok = false;
        const int column = item.trimmed().toInt(&ok);
        if (!ok || column < 1)
            return false;
        columns.push_back(column - 1);
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
    // Checked before opening: opening a pipe waits for a writer.
    if (!QFileInfo(path).isFile() || SourceDetector::isSpecialFile(path)) {
        preview.error = Texts::unableToOpenMessage().arg(path);
        return preview;
    }
    std::ifstream in(std::filesystem::path(path.toStdU16String()), std::ios::binary);
    if (!in) {
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
    if (SourceDetector::isSpecialFile(config.path)) {
        table.error = Texts::notRegularFileMessage().arg(config.path);
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
    std::optional<CsvTableBuilder> builder;

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
