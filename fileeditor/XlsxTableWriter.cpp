#include "fileeditor/XlsxTableWriter.h"

#include <QFile>

#include <algorithm>
#include <cmath>
#include <memory>

#include <xlsxwriter.h>

#include "definitions/FileEditorOperationDefinitions.h"

namespace zarvi {

namespace {

using Texts = FileEditorOperationDefinitions;

/// Above this many cells the zipped workbook may pass 4 GB and needs ZIP64, which some
/// older readers refuse; smaller workbooks stay plain zip files.
constexpr double Zip64Cells = 1e8;
/// Progress percent reached when every row is written, before the workbook is packed.
constexpr int RowsProgressShare = 70;

lxw_error writeValue(lxw_worksheet* sheet, lxw_row_t row, lxw_col_t column, double value)
{
    if (std::isfinite(value))
        return worksheet_write_number(sheet, row, column, value, nullptr);
    const char* text = std::isnan(value) ? "NaN" : (value > 0 ? "Inf" : "-Inf");
    return worksheet_write_string(sheet, row, column, text, nullptr);
}

} // namespace

TableWriteResult XlsxTableWriter::write(const TableData& table, const XlsxTableWriterConfig& config,
                                        Feedback* feedback)
{
    TableWriteResult result;
    if (table.columns.empty()) {
        result.error = Texts::emptyTableMessage();
        return result;
    }
    const std::size_t columns = table.columnCount();
    if (columns > SheetColumns) {
        result.error = Texts::tooManySheetColumnsMessage().arg(columns).arg(SheetColumns);
        return result;
    }
    const std::size_t rows = table.rowCount();
    const std::size_t rowsPerSheet = SheetRows - 1;
    const std::size_t sheets = std::max<std::size_t>(1, (rows + rowsPerSheet - 1) / rowsPerSheet);

    lxw_workbook_options options = {};
    options.constant_memory = LXW_TRUE;
    options.use_zip64 = static_cast<double>(rows) * static_cast<double>(columns) > Zip64Cells;
    // libxlsxwriter takes UTF-8 file names on every platform.
    const QByteArray path = config.path.toUtf8();
    // Freed without writing anything unless it is closed below.
    std::unique_ptr<lxw_workbook, decltype(&lxw_workbook_free)> book(
        workbook_new_opt(path.constData(), &options), &lxw_workbook_free);
    if (!book) {
        result.error = Texts::unableToCreateMessage().arg(
            config.path, QString::fromUtf8(lxw_strerror(LXW_ERROR_MEMORY_MALLOC_FAILED)));
        return result;
    }
    lxw_format* bold = workbook_add_format(book.get());
    format_set_bold(bold);

    const bool withRowNames = !table.rowNames.isEmpty();
    const lxw_col_t firstValueColumn = withRowNames ? 1 : 0;
    std::vector<QByteArray> headers;
    if (withRowNames)
        headers.push_back(table.rowNamesTitle.toUtf8());
    for (const TableColumn& column : table.columns)
        headers.push_back(column.header().toUtf8());

    // The rows take about two thirds of the time; packing the workbook at the end the rest.
    ProgressTracker progress(feedback, rows, 0, RowsProgressShare);
    lxw_error error = LXW_NO_ERROR;
    for (std::size_t s = 0; s < sheets && error == LXW_NO_ERROR; ++s) {
        const QByteArray name = FileEditorOperationDefinitions::SheetPattern.arg(s + 1).toUtf8();
        lxw_worksheet* sheet = workbook_add_worksheet(book.get(), name.constData());
        if (!sheet) {
            error = LXW_ERROR_MEMORY_MALLOC_FAILED;
            break;
        }
        for (std::size_t c = 0; c < headers.size(); ++c)
            worksheet_write_string(sheet, 0, static_cast<lxw_col_t>(c), headers[c].constData(), bold);

        const std::size_t first = s * rowsPerSheet;
        const std::size_t last = std::min(rows, first + rowsPerSheet);
        for (std::size_t r = first; r < last && error == LXW_NO_ERROR; ++r) {
            if (progress.isCanceled()) {
                result.canceled = true;
                result.error = Texts::canceledMessage();
                return result;
            }
            const auto row = static_cast<lxw_row_t>(r - first + 1);
            if (withRowNames && r < static_cast<std::size_t>(table.rowNames.size())) {
                const QByteArray rowName = table.rowNames[static_cast<qsizetype>(r)].toUtf8();
                error = worksheet_write_string(sheet, row, 0, rowName.constData(), nullptr);
            }
            for (std::size_t c = 0; c < table.columns.size() && error == LXW_NO_ERROR; ++c) {
                const std::vector<double>& values = table.columns[c].values;
                if (r < values.size())
                    error = writeValue(sheet, row, static_cast<lxw_col_t>(firstValueColumn + c), values[r]);
            }
            progress.update(r + 1);
        }
    }
    if (error != LXW_NO_ERROR) {
        result.error = Texts::unableToWriteMessage().arg(config.path, QString::fromUtf8(lxw_strerror(error)));
        return result;
    }
    error = workbook_close(book.release());
    if (error != LXW_NO_ERROR) {
        QFile::remove(config.path);
        result.error = Texts::unableToWriteMessage().arg(config.path, QString::fromUtf8(lxw_strerror(error)));
        return result;
    }
    if (feedback)
        feedback->setProgress(100);
    result.sheetCount = static_cast<int>(sheets);
    return result;
}

} // namespace zarvi
