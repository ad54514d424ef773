#include "fileeditor/CsvTableWriter.h"

#include <QSaveFile>

#include <algorithm>
#include <charconv>
#include <string>

#include "definitions/FileEditorOperationDefinitions.h"

namespace zarvi {

namespace {

using Texts = FileEditorOperationDefinitions;

/// Text gathered before each write to the file.
constexpr std::size_t FlushBytes = 1 << 20;

bool isAscii(const QString& text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x80; });
}

void appendText(std::string& out, const QString& text, char delimiter)
{
    const QByteArray utf8 = text.toUtf8();
    const bool quote = utf8.contains(delimiter) || utf8.contains('"') || utf8.contains('\n') ||
                       utf8.contains('\r') || utf8.startsWith(' ') || utf8.endsWith(' ');
    if (!quote) {
        out.append(utf8.constData(), static_cast<std::size_t>(utf8.size()));
        return;
    }
    out.push_back('"');
    for (const char c : utf8) {
        if (c == '"')
            out.push_back('"');
        out.push_back(c);
    }
    out.push_back('"');
}

void appendNumber(std::string& out, double value)
{
    char text[32];
    const auto result = std::to_chars(text, text + sizeof text, value);
    out.append(text, result.ptr);
}

} // namespace

TableWriteResult CsvTableWriter::write(const TableData& table, const CsvTableWriterConfig& config,
                                       Feedback* feedback)
{
    TableWriteResult result;
    if (table.columns.empty()) {
        result.error = Texts::emptyTableMessage();
        return result;
    }
    QSaveFile file(config.path);
    if (!file.open(QIODevice::WriteOnly)) {
        result.error = Texts::unableToCreateMessage().arg(config.path, file.errorString());
        return result;
    }

    const bool withRowNames = !table.rowNames.isEmpty();
    const char delimiter = config.delimiter;
    std::string out;
    out.reserve(FlushBytes + 4096);

    bool ascii = isAscii(table.rowNamesTitle);
    for (const QString& name : table.rowNames)
        ascii = ascii && isAscii(name);
    for (const TableColumn& column : table.columns)
        ascii = ascii && isAscii(column.header());
    if (!ascii)
        out.append("\xEF\xBB\xBF");

    if (withRowNames) {
        appendText(out, table.rowNamesTitle, delimiter);
        out.push_back(delimiter);
    }
    for (std::size_t c = 0; c < table.columns.size(); ++c) {
        if (c > 0)
            out.push_back(delimiter);
        appendText(out, table.columns[c].header(), delimiter);
    }
    out.push_back('\n');

    const std::size_t rows = table.rowCount();
    ProgressTracker progress(feedback, rows);
    for (std::size_t r = 0; r < rows; ++r) {
        if (progress.isCanceled()) {
            result.canceled = true;
            result.error = Texts::canceledMessage();
            return result;
        }
        if (withRowNames) {
            if (r < static_cast<std::size_t>(table.rowNames.size()))
                appendText(out, table.rowNames[static_cast<qsizetype>(r)], delimiter);
            out.push_back(delimiter);
        }
        for (std::size_t c = 0; c < table.columns.size(); ++c) {
            if (c > 0)
                out.push_back(delimiter);
            const std::vector<double>& values = table.columns[c].values;
            if (r < values.size())
                appendNumber(out, values[r]);
        }
        out.push_back('\n');
        if (out.size() >= FlushBytes) {
            if (file.write(out.data(), static_cast<qint64>(out.size())) != static_cast<qint64>(out.size())) {
                result.error = Texts::unableToWriteMessage().arg(config.path, file.errorString());
                return result;
            }
            out.clear();
        }
        progress.update(r + 1);
    }
    if (file.write(out.data(), static_cast<qint64>(out.size())) != static_cast<qint64>(out.size()) ||
        !file.commit()) {
        result.error = Texts::unableToWriteMessage().arg(config.path, file.errorString());
        return result;
    }
    result.sheetCount = 1;
    return result;
}

} // namespace zarvi
