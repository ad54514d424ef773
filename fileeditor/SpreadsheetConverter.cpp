#include "fileeditor/SpreadsheetConverter.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>

#include "datafile/SignalDataset.h"
#include "definitions/FileDefinitions.h"
#include "definitions/FileEditorOperationDefinitions.h"
#include "fileeditor/XlsxSheetReader.h"

namespace zarvi {

namespace {

using FD = FileDefinitions;
using Texts = FileEditorOperationDefinitions;

/// Percent of the progress given to reading the table.
constexpr int ReadPercent = 40;

/// A name for a column that can be a group or dataset name and differs from the names
/// already used in its series: slashes become "_", a structural name gives way to the
/// generated one, and a repeated name gets "_2", "_3"...
QString storedName(const QString& name, const QString& generated, QSet<QString>& used)
{
    QString safe = name;
    for (const QString& text : HDF5Writer_V6::forbiddenNameTexts())
        safe.replace(text, QStringLiteral("_"));
    safe = safe.trimmed();
    if (safe.isEmpty() || FD::isStructuralName(safe))
        safe = generated;
    QString unique = safe;
    for (int k = 2; used.contains(unique); ++k)
        unique = QStringLiteral("%1_%2").arg(safe).arg(k);
    used.insert(unique);
    return unique;
}

/// Writes one signal per value column, all on the table's time.
bool writeSignals(const SpreadsheetConversionConfig& config, CsvTable& table, ConversionTarget& target,
                  ConversionResult& result, ProgressTracker& progress, std::size_t& done)
{
    if (table.columns.empty())
        return true;
    const ConversionDestination& to = config.destination;
    const int series = target.seriesNumber(to.device, FD::Signals, to.series);
    const QString source = QFileInfo(config.sourcePath).absoluteFilePath();
    QSet<QString> used;
    Signal signal;
    signal.time = std::move(table.time);
    for (std::size_t c = 0; c < table.columns.size(); ++c) {
        if (progress.isCanceled()) {
            result.canceled = true;
            result.error = Texts::canceledMessage();
            return false;
        }
        CsvColumn& column = table.columns[c];
        const QString name = storedName(column.name, FD::SensorPattern.arg(c + 1), used);
        if (name != column.name)
            result.notes << Texts::renamedColumnMessage().arg(column.name, name);
        const QString groupPath = ConversionTarget::dataPath(to.device, FD::Signals, series, name);
        const hid_t group = target.createGroup(groupPath, result.error);
        if (group < 0)
            return false;
        const bool sourceWritten = target.file().writeAttribute(group, FD::SourceFilepath, source);
        target.file().closeGroup(group);
        if (!sourceWritten) {
            result.error = Texts::unableToWriteMessage().arg(groupPath, target.file().lastError());
            return false;
        }
        signal.values = std::move(column.values);
        QVariantMap attributes{{FD::Username, column.name}};
        if (const QString unit = column.unit.isEmpty() ? config.signalUnit : column.unit; !unit.isEmpty())
            attributes.insert(FD::Unit, unit);
        if (!SignalDataset::write(target.file(), groupPath, signal, attributes, result.error))
            return false;
        signal.values = std::vector<double>();
        result.datapaths << SignalDataset::valuesPath(groupPath);
        progress.update(++done);
    }
    return true;
}

/// One event array as it is stored: rows of (onset) or (onset, offset).
struct StoredEvents
{
    QString name;
    /// Row-major, `columns` values a row.
    std::vector<double> values;
    hsize_t columns = 1;
};

/// The event columns sorted, then the trigger columns' pulses, in the order configured.
std::vector<StoredEvents> eventArrays(CsvTable& table)
{
    std::vector<StoredEvents> arrays;
    for (CsvColumn& column : table.events) {
        std::sort(column.values.begin(), column.values.end());
        arrays.push_back({column.name, std::move(column.values), 1});
    }
    for (const CsvPulses& pulses : table.triggers) {
        StoredEvents stored{pulses.name, {}, 2};
        stored.values.reserve(2 * pulses.onsets.size());
        for (std::size_t k = 0; k < pulses.onsets.size(); ++k)
            stored.values.insert(stored.values.end(), {pulses.onsets[k], pulses.offsets[k]});
        arrays.push_back(std::move(stored));
    }
    return arrays;
}

/// Writes the event and trigger columns as event arrays into one Events series.
bool writeEvents(const SpreadsheetConversionConfig& config, CsvTable& table, ConversionTarget& target,
                 ConversionResult& result, ProgressTracker& progress, std::size_t& done)
{
    std::vector<StoredEvents> arrays = eventArrays(table);
    if (arrays.empty())
        return true;
    const ConversionDestination& to = config.destination;
    const int series = target.seriesNumber(to.device, FD::Events, to.series);
    const QString seriesPath =
        QStringList{FD::DataConverted, to.device, FD::Events, FD::SeriesPattern.arg(series)}.join(
            QLatin1Char('/'));
    const hid_t group = target.openOrCreateGroup(seriesPath, result.error);
    if (group < 0)
        return false;
    HDF5Writer_V6& file = target.file();
    const QString source = QFileInfo(config.sourcePath).absoluteFilePath();
    QSet<QString> used;
    bool ok = true;
    for (std::size_t e = 0; ok && e < arrays.size(); ++e) {
        const StoredEvents& array = arrays[e];
        const QString name = storedName(array.name, FD::EventPattern.arg(e + 1), used);
        if (name != array.name)
            result.notes << Texts::renamedColumnMessage().arg(array.name, name);
        const QString path = seriesPath + QLatin1Char('/') + name;
        if (file.exists(group, name)) {
            result.error = Texts::pathExistsMessage().arg(path, config.destination.filepath);
            ok = false;
            break;
        }
        const hsize_t n = array.values.size() / array.columns;
        const hid_t dataset =
            file.createDataset(group, ElementKind::Float64, name, 2, {H5S_UNLIMITED, array.columns},
                               {std::clamp<hsize_t>(n, 1, 65536), array.columns}, {n, array.columns}, 0);
        if (dataset >= 0)
            target.track(path);
        ok = dataset >= 0 &&
             (n == 0 || file.write(dataset, array.values.data(), {0, 0}, {n, array.columns})) &&
             file.writeAttribute(dataset, FD::Unit, Texts::SecondsUnit) &&
             file.writeAttribute(dataset, FD::Username, array.name) &&
             file.writeAttribute(dataset, FD::SourceFilepath, source);
        if (!ok)
            result.error =
                FD::unableToCreateDatasetMessage().arg(path) + QStringLiteral("<br>") + file.lastError();
        file.closeDataset(dataset);
        if (ok)
            result.datapaths << path;
        progress.update(++done);
    }
    file.closeGroup(group);
    return ok;
}

} // namespace

bool SpreadsheetConverter::startsWithHeader(const QString& path, const QString& sheet)
{
    if (XlsxSheetReader::isWorkbook(path)) {
        const CsvPreview first = CsvTableReader::preview(path, 1, CsvDelimiter::Automatic, sheet);
        return !first.lines.empty() &&
               std::any_of(first.lines[0].begin(), first.lines[0].end(), [](const QString& cell) {
                   bool number = false;
                   cell.toDouble(&number);
                   return !cell.isEmpty() && !number;
               });
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return false;
    static const QRegularExpression separators(QStringLiteral("[,;\\t]"));
    while (!file.atEnd()) {
        QString line = QString::fromUtf8(file.readLine()).trimmed();
        if (line.startsWith(QChar(0xFEFF)))
            line.remove(0, 1);
        if (line.isEmpty())
            continue;
        for (QString cell : line.split(separators)) {
            cell = cell.trimmed();
            if (cell.size() >= 2 && cell.startsWith(QLatin1Char('"')) && cell.endsWith(QLatin1Char('"')))
                cell = cell.mid(1, cell.size() - 2).trimmed();
            bool number = false;
            cell.toDouble(&number);
            if (!cell.isEmpty() && !number)
                return true;
        }
        return false;
    }
    return false;
}

ConversionResult SpreadsheetConverter::convert(const SpreadsheetConversionConfig& config, Feedback* feedback)
{
    ConversionResult result;
    const ConversionDestination& to = config.destination;
    result.filepath = to.filepath;
    if (!ConversionTarget::isUsableName(to.device))
        result.error = Texts::deviceNameMessage().arg(to.device);
    else if (to.series < 0)
        result.error = Texts::seriesNumberMessage().arg(to.series);
    else if (config.timeColumn < 0)
        result.error = Texts::noTimeColumnMessage();
    if (!result.ok())
        return result;

    CsvTableReaderConfig csv;
    csv.path = config.sourcePath;
    csv.sheet = config.sheet;
    csv.delimiter = config.delimiter;
    csv.hasHeader = startsWithHeader(config.sourcePath, config.sheet);
    csv.timeColumn = config.timeColumn;
    csv.timeUnit = config.timeUnit;
    csv.eventColumns = config.eventColumns;
    csv.triggerColumns = config.triggerColumns;
    ScaledFeedback reading(feedback, 0, ReadPercent);
    CsvTable table = CsvTableReader::read(csv, &reading);
    if (!table.ok()) {
        result.error = table.error;
        result.canceled = table.canceled;
        return result;
    }
    if (table.columns.empty() && table.events.empty() && table.triggers.empty()) {
        result.error = Texts::noValueColumnsMessage().arg(config.sourcePath);
        return result;
    }

    ConversionTarget target;
    if (!target.open(to.filepath, false, result.error))
        return result;
    ProgressTracker progress(feedback, table.columns.size() + table.events.size() + table.triggers.size(),
                             ReadPercent, 100);
    std::size_t done = 0;
    if (!writeSignals(config, table, target, result, progress, done) ||
        !writeEvents(config, table, target, result, progress, done) || !target.commit(result.error)) {
        target.rollback();
        result.datapaths.clear();
        result.notes.clear();
    }
    return result;
}

} // namespace zarvi
