#include "fileeditor/DataExporter.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QScopeGuard>
#include <QUuid>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "datafile/DataFileTree.h"
#include "datafile/HDF5Reader_V6.h"
#include "datafile/ImageFrameReader.h"
#include "datafile/SignalDataset.h"
#include "definitions/AnalysisOperationDefinitions.h"
#include "definitions/ExportDefinitions.h"
#include "definitions/FileDefinitions.h"
#include "definitions/FileEditorOperationDefinitions.h"
#include "fileeditor/CsvTableWriter.h"
#include "fileeditor/StackFrameCopy.h"
#include "fileeditor/TableData.h"
#include "fileeditor/TiffStackWriter.h"
#include "fileeditor/XlsxTableWriter.h"
#include "framework/LockedFileRead.h"

namespace zarvi {

namespace {

using FD = FileDefinitions;
using Texts = FileEditorOperationDefinitions;
using ExportTexts = ExportDefinitions;

enum class OutputFormat
{
    Csv,
    Xlsx,
    Tiff,
    Unknown
};

/// A name for a new file in the folder of `path` that no other file has.
QString siblingPath(const QString& path)
{
    const QFileInfo output(path);
    return output.absoluteDir().filePath(
        QStringLiteral(".%1.%2").arg(output.fileName(), QUuid::createUuid().toString(QUuid::Id128)));
}

/// Percent of the progress given to reading the datasets of a table.
constexpr int ReadPercent = 30;

OutputFormat formatOf(const QString& path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (suffix == QStringLiteral("csv"))
        return OutputFormat::Csv;
    if (suffix == QStringLiteral("xlsx"))
        return OutputFormat::Xlsx;
    if (suffix == QStringLiteral("tif") || suffix == QStringLiteral("tiff"))
        return OutputFormat::Tiff;
    return OutputFormat::Unknown;
}

QString parentOf(const QString& path)
{
    const qsizetype slash = path.lastIndexOf(QLatin1Char('/'));
    return slash < 0 ? QString() : path.left(slash);
}

QString leafOf(const QString& path)
{
    return path.mid(path.lastIndexOf(QLatin1Char('/')) + 1);
}

QString siblingOf(const QString& path, const QString& name)
{
    const QString parent = parentOf(path);
    return parent.isEmpty() ? name : parent + QLatin1Char('/') + name;
}

bool readWhole(HDF5Manager_V6& file, const QString& path, std::vector<double>& values, QString& error)
{
    const hid_t dataset = file.openDataset(file.fileId(), path);
    const bool ok = dataset >= 0 && file.read(dataset, values);
    if (!ok)
        error = file.lastError();
    file.closeDataset(dataset);
    return ok;
}

QVariant attributeOf(HDF5Manager_V6& file, const QString& path, const QString& name)
{
    const hid_t dataset = file.openDataset(file.fileId(), path);
    const QVariant value = file.readAttribute(dataset, name);
    file.closeDataset(dataset);
    return value;
}

bool checkCanceled(ProgressTracker& progress, DataExportResult& result)
{
    if (!progress.isCanceled())
        return false;
    result.canceled = true;
    result.error = Texts::canceledMessage();
    return true;
}

/// "Time (s)", then one column per signal, named by its sensor (by its group path when
/// two sensors share a name).
bool readSignals(HDF5Manager_V6& file, const std::vector<ExportableDataset>& items, TableData& table,
                 DataExportResult& result, Feedback* feedback)
{
    QStringList names;
    for (const ExportableDataset& item : items) {
        const QString dataset = leafOf(item.path);
        names << (dataset == FD::SignalValues ? leafOf(parentOf(item.path)) : dataset);
    }
    QStringList unique = names;
    for (qsizetype i = 0; i < names.size(); ++i) {
        if (names.count(names[i]) > 1)
            unique[i] = parentOf(items[i].path);
    }
    ProgressTracker progress(feedback, items.size());
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (checkCanceled(progress, result))
            return false;
        Signal signal;
        if (!SignalDataset::read(file, items[i].path, signal, result.error))
            return false;
        if (i == 0) {
            table.columns.push_back(TableColumn{FD::TimeKey, Texts::SecondsUnit, std::move(signal.time)});
        } else if (signal.time != table.columns.front().values) {
            result.error = ExportTexts::exportTimeBaseMessage().arg(items.front().path, items[i].path);
            return false;
        }
        table.columns.push_back(TableColumn{unique[i], signal.unit, std::move(signal.values)});
        progress.update(i + 1);
    }
    return true;
}

/// Onset and offset columns per array, rows named "Event1", "Event2"...
bool readEvents(HDF5Manager_V6& file, const std::vector<ExportableDataset>& items, TableData& table,
                DataExportResult& result, Feedback* feedback)
{
    std::size_t rows = 0;
    ProgressTracker progress(feedback, items.size());
    std::vector<double> values;
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (checkCanceled(progress, result))
            return false;
        const ExportableDataset& item = items[i];
        if (!readWhole(file, item.path, values, result.error))
            return false;
        const auto events = static_cast<std::size_t>(item.dimensions[0]);
        const auto width = static_cast<std::size_t>(item.dimensions[1]);
        QString unit = attributeOf(file, item.path, FD::Unit).toString();
        if (unit.isEmpty())
            unit = Texts::SecondsUnit;
        const QString name = leafOf(item.path);
        for (std::size_t c = 0; c < width; ++c) {
            TableColumn column{(c == 0 ? Texts::OnsetColumnPattern : Texts::OffsetColumnPattern).arg(name),
                               unit, std::vector<double>(events)};
            for (std::size_t e = 0; e < events; ++e)
                column.values[e] = values[e * width + c];
            table.columns.push_back(std::move(column));
        }
        rows = std::max(rows, events);
        progress.update(i + 1);
    }
    table.rowNamesTitle = Texts::EventRowsTitle;
    for (std::size_t e = 0; e < rows; ++e)
        table.rowNames << FD::EventPattern.arg(e + 1);
    return true;
}

/// One row per row of the result, named by its "EventNames", "PeriodNames" or "RowNames"
/// when it has them (else "Row1"...). With a "Time" of one entry per column beside it, the
/// columns are headed by their time; otherwise by its "ColumnNames", or by the dataset's
/// name and the column's number, each with its "ColumnUnits" entry when every column has
/// one, else the dataset's "Unit". Beside an "ImageStack", with a "Time" of one entry per
/// row, the rows are the stack's frames: a first column "Time (s)" instead of row names.
bool readMatrix(HDF5Manager_V6& file, const ExportableDataset& item, TableData& table,
                DataExportResult& result)
{
    std::vector<double> values;
    if (!readWhole(file, item.path, values, result.error))
        return false;
    const auto rows = static_cast<std::size_t>(item.dimensions[0]);
    const auto width = static_cast<std::size_t>(item.dimensions[1]);
    const QString name = leafOf(item.path);
    QStringList rowNames;
    for (const QString& key : {FD::EventNames, FD::PeriodNames, AnalysisOperationDefinitions::RowNames}) {
        const QStringList names = attributeOf(file, item.path, key).toStringList();
        if (rowNames.isEmpty() && static_cast<std::size_t>(names.size()) == rows)
            rowNames = names;
    }
    for (std::size_t r = rowNames.size(); r < rows; ++r)
        rowNames << Texts::RowPattern.arg(r + 1);

    // A "Time" beside the result times its columns; beside an image stack, whose frames
    // it times, it times the rows of per-frame values (the shifts of a motion correction).
    const QString timePath = siblingOf(item.path, FD::Time);
    const bool frameRows =
        file.objectKind(file.fileId(), siblingOf(item.path, FD::ImageStack)) == ObjectKind::Dataset;
    std::vector<double> time;
    if (timePath != item.path && file.objectKind(file.fileId(), timePath) == ObjectKind::Dataset) {
        const hid_t dataset = file.openDataset(file.fileId(), timePath);
        const std::vector<hsize_t> dims = file.dimensions(dataset);
        file.closeDataset(dataset);
        if (dims.size() == 1 && dims[0] == (frameRows ? rows : width) &&
            !readWhole(file, timePath, time, result.error))
            return false;
    }
    if (!time.empty() && !frameRows) {
        table = TableData::fromRows(name, rowNames, time, Texts::SecondsUnit, values);
        return true;
    }
    const QString unit = attributeOf(file, item.path, FD::Unit).toString();
    const QStringList columnNames =
        attributeOf(file, item.path, AnalysisOperationDefinitions::ColumnNames).toStringList();
    const bool namedColumns = static_cast<std::size_t>(columnNames.size()) == width;
    const QStringList columnUnits =
        attributeOf(file, item.path, AnalysisOperationDefinitions::ColumnUnits).toStringList();
    const bool unitPerColumn = static_cast<std::size_t>(columnUnits.size()) == width;
    if (time.empty()) {
        table.rowNamesTitle = name;
        table.rowNames = rowNames;
    } else {
        table.columns.push_back(TableColumn{FD::TimeKey, Texts::SecondsUnit, std::move(time)});
    }
    for (std::size_t c = 0; c < width; ++c) {
        TableColumn column{namedColumns ? columnNames[static_cast<qsizetype>(c)]
                                        : Texts::MatrixColumnPattern.arg(name).arg(c + 1),
                           unitPerColumn ? columnUnits[static_cast<qsizetype>(c)] : unit,
                           std::vector<double>(rows)};
        for (std::size_t r = 0; r < rows; ++r)
            column.values[r] = values[r * width + c];
        table.columns.push_back(std::move(column));
    }
    return true;
}

/// "Time (s)", "X (px)" and "Y (px)", one row per frame.
bool readCoordinates(HDF5Manager_V6& file, const ExportableDataset& item, TableData& table,
                     DataExportResult& result)
{
    std::vector<double> values;
    std::vector<double> time;
    if (!readWhole(file, item.path, values, result.error) ||
        !readWhole(file, siblingOf(item.path, FD::Time), time, result.error))
        return false;
    const auto rows = static_cast<std::size_t>(item.dimensions[0]);
    TableColumn x{Texts::XColumn, Texts::PixelUnit, std::vector<double>(rows)};
    TableColumn y{Texts::YColumn, Texts::PixelUnit, std::vector<double>(rows)};
    for (std::size_t r = 0; r < rows; ++r) {
        x.values[r] = values[2 * r];
        y.values[r] = values[2 * r + 1];
    }
    table.columns.push_back(TableColumn{FD::TimeKey, Texts::SecondsUnit, std::move(time)});
    table.columns.push_back(std::move(x));
    table.columns.push_back(std::move(y));
    return true;
}

/// Streams the chosen frames into a TIFF written beside the output under a temporary
/// name, which replaces the output only when complete.
void exportStack(HDF5Manager_V6& file, const ExportableDataset& item, const DataExportConfig& config,
                 DataExportResult& result, Feedback* feedback)
{
    const std::size_t height = item.dimensions[0];
    const std::size_t width = item.dimensions[1];
    const std::size_t frames = item.dimensions[2];
    const std::size_t first = config.firstFrame;
    const std::size_t count =
        config.frameCount > 0 ? config.frameCount : (frames > first ? frames - first : std::size_t(0));
    if (first >= frames || count == 0 || count > frames - first) {
        result.error = ExportTexts::exportFrameRangeMessage().arg(first + 1).arg(first + count).arg(frames);
        return;
    }
    // The frames go to a file beside the output (same folder, so same file system),
    // renamed over it once complete, so a failed export leaves any earlier file as it
    // was. That file is made by a plain create, so it gets the permissions the user's
    // umask gives, as every other export; the writer fills it without truncating it.
    const QString temporaryPath = siblingPath(config.outputPath);
    QFile temporary(temporaryPath);
    if (!temporary.open(QIODevice::WriteOnly | QIODevice::NewOnly)) {
        result.error = Texts::unableToCreateMessage().arg(config.outputPath, temporary.errorString());
        return;
    }
    temporary.close();
    auto removeTemporary = qScopeGuard([&temporaryPath] { QFile::remove(temporaryPath); });

    TiffStackWriter writer;
    TiffStackWriterConfig tiff;
    tiff.path = temporaryPath;
    tiff.width = static_cast<int>(width);
    tiff.height = static_cast<int>(height);
    tiff.frameCount = count;
    if (!writer.open(tiff)) {
        result.error = writer.lastError();
        return;
    }
    ImageFrameReader stack;
    if (!stack.open(file, item.path, result.error))
        return;
    ProgressTracker progress(feedback, count);
    const StackFrameCopy::Outcome copied =
        StackFrameCopy::copy(stack, first, count, writer, progress, result.error);
    stack.close();
    // The copy stops on the user's cancel, which stays requested: record it as every export does.
    if (copied == StackFrameCopy::Outcome::Canceled)
        checkCanceled(progress, result);
    if (copied != StackFrameCopy::Outcome::Copied)
        return;
    if (!writer.finish()) {
        result.error = writer.lastError();
        return;
    }
    // One rename replaces the output, so it is never missing, even for a moment.
    if (std::rename(QFile::encodeName(temporaryPath).constData(),
                    QFile::encodeName(config.outputPath).constData()) != 0) {
        result.error = Texts::unableToWriteMessage().arg(config.outputPath,
                                                         QString::fromLocal8Bit(std::strerror(errno)));
        return;
    }
    removeTemporary.dismiss();
    result.written = count;
}

/// True when a 1-D "Time" of `length` entries lies beside the dataset at `path`.
bool sameLengthTime(HDF5Manager_V6& file, const QString& path, hsize_t length)
{
    const QString timePath = siblingOf(path, FD::Time);
    if (file.objectKind(file.fileId(), timePath) != ObjectKind::Dataset)
        return false;
    const hid_t time = file.openDataset(file.fileId(), timePath);
    const std::vector<hsize_t> timeDims = file.dimensions(time);
    file.closeDataset(time);
    return timeDims == std::vector<hsize_t>{length};
}

} // namespace

std::optional<ExportableDataset> DataExporter::classify(HDF5Manager_V6& file, const QString& path)
{
    const hid_t root = file.fileId();
    QString datasetPath = path;
    while (datasetPath.startsWith(QLatin1Char('/')))
        datasetPath.remove(0, 1);
    const ObjectKind kind = file.objectKind(root, datasetPath);
    if (kind == ObjectKind::Group) {
        const QString signal = datasetPath + QLatin1Char('/') + FD::SignalValues;
        const QString stack = datasetPath + QLatin1Char('/') + FD::ImageStack;
        if (file.objectKind(root, signal) == ObjectKind::Dataset)
            datasetPath = signal;
        else if (file.objectKind(root, stack) == ObjectKind::Dataset)
            datasetPath = stack;
        else
            return std::nullopt;
    } else if (kind != ObjectKind::Dataset) {
        return std::nullopt;
    }
    const hid_t dataset = file.openDataset(root, datasetPath);
    if (dataset < 0)
        return std::nullopt;
    ExportableDataset item{datasetPath, ExportKind::Signal, file.dimensions(dataset)};
    const ElementClass element = file.elementType(dataset).elementClass;
    file.closeDataset(dataset);
    if (element != ElementClass::Integer && element != ElementClass::Float)
        return std::nullopt;

    const QString name = leafOf(datasetPath);
    const std::vector<hsize_t>& dims = item.dimensions;
    if (dims.size() == 3 && name == FD::ImageStack) {
        item.kind = ExportKind::ImageStack;
        return item;
    }
    if (dims.size() == 2 && dims[1] == 2 && datasetPath.split(QLatin1Char('/')).contains(FD::Coordinates) &&
        sameLengthTime(file, datasetPath, dims[0])) {
        item.kind = ExportKind::Coordinates;
        return item;
    }
    if (dims.size() == 2) {
        const bool events =
            datasetPath.split(QLatin1Char('/')).contains(FD::Events) && (dims[1] == 1 || dims[1] == 2);
        item.kind = events ? ExportKind::Events : ExportKind::Matrix;
        return item;
    }
    if (dims.size() != 1 || name == FD::Time || !sameLengthTime(file, datasetPath, dims[0]))
        return std::nullopt;
    return item;
}

std::vector<ExportableDataset> DataExporter::exportableDatasets(const QString& filepath, QString& error)
{
    std::vector<ExportableDataset> items;
    LockedFileRead read(filepath);
    if (!read.isOpen()) {
        error = read.isBusy()
                    ? ExportTexts::fileBusyMessage().arg(filepath)
                    : Texts::unableToOpenMessage().arg(filepath) + QStringLiteral("<br>") + read.error();
        return items;
    }
    HDF5Reader_V6& file = read.reader();
    for (const DataFileNode& node : DataFileTree::collect(file)) {
        if (node.kind != ObjectKind::Dataset)
            continue;
        if (std::optional<ExportableDataset> item = classify(file, node.path))
            items.push_back(std::move(*item));
    }
    return items;
}

DataExportResult DataExporter::run(const DataExportConfig& config, Feedback* feedback)
{
    DataExportResult result;
    result.outputPath = config.outputPath;
    const OutputFormat format = formatOf(config.outputPath);
    if (format == OutputFormat::Unknown) {
        result.error = ExportTexts::exportExtensionMessage().arg(config.outputPath);
        return result;
    }
    if (config.datapaths.isEmpty()) {
        result.error = ExportTexts::exportNothingMessage();
        return result;
    }
    auto source = std::make_optional<LockedFileRead>(config.filepath, LockedFileRead::Wait::Yes);
    if (!source->isOpen()) {
        result.error =
            Texts::unableToOpenMessage().arg(config.filepath) + QStringLiteral("<br>") + source->error();
        return result;
    }
    HDF5Reader_V6& file = source->reader();
    std::vector<ExportableDataset> items;
    for (const QString& path : config.datapaths) {
        std::optional<ExportableDataset> item = classify(file, path);
        if (!item) {
            result.error = ExportTexts::exportUnknownDatasetMessage().arg(path);
            return result;
        }
        items.push_back(std::move(*item));
    }
    const ExportKind kind = items.front().kind;
    if (std::any_of(items.begin(), items.end(),
                    [kind](const ExportableDataset& i) { return i.kind != kind; }))
        result.error = ExportTexts::exportMixedMessage();
    else if ((kind == ExportKind::ImageStack) != (format == OutputFormat::Tiff))
        result.error = ExportTexts::exportFormatMessage().arg(config.outputPath);
    else if (kind == ExportKind::ImageStack && items.size() > 1)
        result.error = ExportTexts::exportOneStackMessage();
    else if (kind == ExportKind::Matrix && items.size() > 1)
        result.error = ExportTexts::exportOneMatrixMessage();
    else if (kind == ExportKind::Coordinates && items.size() > 1)
        result.error = ExportTexts::exportOneCoordinatesMessage();
    if (!result.ok())
        return result;
    if (kind == ExportKind::ImageStack) {
        exportStack(file, items.front(), config, result, feedback);
        return result;
    }

    TableData table;
    ScaledFeedback reading(feedback, 0, ReadPercent);
    const bool read = kind == ExportKind::Signal        ? readSignals(file, items, table, result, &reading)
                      : kind == ExportKind::Events      ? readEvents(file, items, table, result, &reading)
                      : kind == ExportKind::Coordinates ? readCoordinates(file, items.front(), table, result)
                                                        : readMatrix(file, items.front(), table, result);
    // The tables are written after the file is closed and its lock released.
    source.reset();
    if (!read)
        return result;
    ScaledFeedback writing(feedback, ReadPercent, 100);
    const TableWriteResult written =
        format == OutputFormat::Csv
            ? CsvTableWriter::write(table, CsvTableWriterConfig{config.outputPath}, &writing)
            : XlsxTableWriter::write(table, XlsxTableWriterConfig{config.outputPath}, &writing);
    result.error = written.error;
    result.canceled = written.canceled;
    if (result.ok())
        result.written = table.rowCount();
    return result;
}

} // namespace zarvi
