#include "cli/ConvertCommand.h"

#include <QMap>
#include <QTextStream>

#include <optional>

#include "cli/InterruptibleFeedback.h"
#include "cli/TerminalProgress.h"
#include "definitions/FileEditorOperationDefinitions.h"
#include "fileeditor/FileConversion.h"
#include "fileeditor/RecordingImport.h"
#include "fileeditor/SourceDetector.h"

namespace zarvi {

namespace {

constexpr int exitFailed = 1;
constexpr int exitUsage = 2;
constexpr int exitRefused = 4;
constexpr int exitCanceled = 130;

const QString tiffOption = QStringLiteral("--tiff");
const QString videoOption = QStringLiteral("--video");
const QString csvOption = QStringLiteral("--csv");
const QString v5Option = QStringLiteral("--v5");
const QString asStackOption = QStringLiteral("--as-stack");
/// The source given without a format option, its format taken from its content.
const QString fileSource = QStringLiteral("FILE");
const QString storesOption = QStringLiteral("--stores");
const QString digitalInputsOption = QStringLiteral("--digital-inputs");

/// The options each source takes besides itself; every other option is refused.
const QMap<QString, QStringList>& optionsOfSource()
{
    static const QMap<QString, QStringList> options{
        {tiffOption, {"--rate", "--timestamps", "--device", "--sensor", "--series", "--into"}},
        {videoOption, {"--device", "--sensor", "--series", "--into"}},
        {csvOption,
         {"--sheet", "--time-column", "--time-unit", "--event-columns", "--trigger-columns", "--unit",
          "--device", "--series", "--into"}},
        {v5Option, {"--into"}},
        {fileSource,
         {"--device", "--series", "--into", "--stores", "--digital-inputs", "--sensor", "--rate",
          "--timestamps", "--sheet", "--time-column", "--time-unit", "--event-columns", "--trigger-columns",
          "--unit"}},
    };
    return options;
}

struct Arguments
{
    QString source;
    QMap<QString, QString> values;
    bool asStack = false;
};

std::optional<int> positiveInt(const QString& text)
{
    bool ok = false;
    const int value = text.toInt(&ok);
    return ok && value >= 1 ? std::optional<int>(value) : std::nullopt;
}

/// Every option given applies to the source.
bool optionsFit(const Arguments& parsed, QString& problem)
{
    const QStringList allowed = optionsOfSource().value(parsed.source);
    for (auto it = parsed.values.cbegin(); it != parsed.values.cend(); ++it) {
        if (it.key() != parsed.source && !allowed.contains(it.key())) {
            problem = QStringLiteral("%1 does not apply to %2").arg(it.key(), parsed.source);
            return false;
        }
    }
    if (parsed.asStack && parsed.source != videoOption && parsed.source != fileSource) {
        problem = QStringLiteral("--as-stack applies to --video only");
        return false;
    }
    return true;
}

/// Reads the options; a problem is a usage error.
bool parse(const QStringList& arguments, Arguments& parsed, QString& problem)
{
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments[i];
        if (!argument.startsWith(QStringLiteral("--"))) {
            if (!parsed.source.isEmpty()) {
                problem = QStringLiteral("Give one source: %1 or %2")
                              .arg(parsed.values.value(parsed.source), argument);
                return false;
            }
            parsed.source = fileSource;
            parsed.values.insert(fileSource, argument);
            continue;
        }
        if (argument == asStackOption) {
            parsed.asStack = true;
            continue;
        }
        const bool isSource = argument != fileSource && optionsOfSource().contains(argument);
        bool known = isSource;
        for (const QStringList& options : optionsOfSource())
            known = known || options.contains(argument);
        if (!known || i + 1 >= arguments.size() || parsed.values.contains(argument)) {
            problem = QStringLiteral("Unexpected argument: %1").arg(argument);
            return false;
        }
        if (isSource) {
            if (!parsed.source.isEmpty()) {
                problem = QStringLiteral("Give one source: %1 or %2").arg(parsed.source, argument);
                return false;
            }
            parsed.source = argument;
        }
        parsed.values.insert(argument, arguments[++i]);
    }
    if (parsed.source.isEmpty()) {
        problem = QStringLiteral("Give a source: FILE, --tiff, --video, --csv or --v5");
        return false;
    }
    return optionsFit(parsed, problem);
}

bool destinationFrom(const Arguments& parsed, bool needsSensor, ConversionDestination& to, QString& problem,
                     bool needsDevice = true)
{
    to.filepath = parsed.values.value(QStringLiteral("--into"));
    to.device = parsed.values.value(QStringLiteral("--device"));
    to.sensor = parsed.values.value(QStringLiteral("--sensor"));
    if (to.filepath.isEmpty() || (needsDevice && to.device.isEmpty()) ||
        (needsSensor && to.sensor.isEmpty())) {
        problem = needsSensor ? QStringLiteral("--into, --device and --sensor are required")
                              : QStringLiteral("--into and --device are required");
        return false;
    }
    if (parsed.values.contains(QStringLiteral("--series"))) {
        const std::optional<int> series = positiveInt(parsed.values.value(QStringLiteral("--series")));
        if (!series) {
            problem = QStringLiteral("--series takes a number from 1");
            return false;
        }
        to.series = *series;
    }
    return true;
}

bool spreadsheetFrom(const Arguments& parsed, SpreadsheetConversionConfig& config, QString& problem)
{
    const std::optional<int> timeColumn = positiveInt(parsed.values.value(QStringLiteral("--time-column")));
    if (!timeColumn) {
        problem = QStringLiteral("--time-column takes the time column's number, from 1");
        return false;
    }
    config.timeColumn = *timeColumn - 1;
    static const QMap<QString, TimeUnit> units{{"s", TimeUnit::Seconds},
                                               {"ms", TimeUnit::Milliseconds},
                                               {"us", TimeUnit::Microseconds},
                                               {"min", TimeUnit::Minutes}};
    const QString unit = parsed.values.value(QStringLiteral("--time-unit"), QStringLiteral("s"));
    if (!units.contains(unit)) {
        problem = QStringLiteral("--time-unit takes s, ms, us or min");
        return false;
    }
    config.timeUnit = units.value(unit);
    if (!parseEventColumns(parsed.values.value(QStringLiteral("--event-columns")), config.eventColumns)) {
        problem = QStringLiteral("--event-columns takes column numbers from 1, separated by commas");
        return false;
    }
    if (!parseTriggerColumns(parsed.values.value(QStringLiteral("--trigger-columns")),
                             config.triggerColumns)) {
        problem = QStringLiteral("--trigger-columns takes column numbers from 1, each with an optional "
                                 "threshold after a colon (6 or 6:2.5), separated by commas");
        return false;
    }
    config.signalUnit = parsed.values.value(QStringLiteral("--unit"));
    config.sheet = parsed.values.value(QStringLiteral("--sheet"));
    return true;
}

/// A recording of an acquisition system; the device defaults to the format's name.
std::optional<ConversionRequest> recordingFrom(const Arguments& parsed, QString& problem)
{
    RecordingConversionConfig config;
    config.sourcePath = parsed.values.value(fileSource);
    Arguments named = parsed;
    const QString format = RecordingImport::formatName(config.sourcePath);
    if (!named.values.contains(QStringLiteral("--device")) && !format.isEmpty())
        named.values.insert(QStringLiteral("--device"), format);
    // Content of no known format has no device to default to; its conversion reports why.
    if (!destinationFrom(named, false, config.destination, problem, !format.isEmpty()))
        return std::nullopt;
    config.stores = parsed.values.value(storesOption).split(QLatin1Char(','), Qt::SkipEmptyParts);
    for (QString& store : config.stores)
        store = store.trimmed();
    config.digitalInputsPath = parsed.values.value(digitalInputsOption);
    return config;
}

std::optional<ConversionRequest> requestFrom(const Arguments& given, QString& problem)
{
    Arguments parsed = given;
    if (parsed.source == fileSource) {
        const QString path = parsed.values.take(fileSource);
        switch (SourceDetector::detect(path)) {
        case SourceFormat::PyPhotometry:
        case SourceFormat::Neurophotometrics:
        case SourceFormat::TdtBlock:
        case SourceFormat::Doric:
        case SourceFormat::Unknown:
            parsed.values.insert(fileSource, path);
            return recordingFrom(parsed, problem);
        case SourceFormat::Spreadsheet:
        case SourceFormat::Workbook:
            parsed.source = csvOption;
            break;
        case SourceFormat::HDF5:
            parsed.source = v5Option;
            break;
        case SourceFormat::TiffStack:
        case SourceFormat::TiffFolder:
            parsed.source = tiffOption;
            break;
        case SourceFormat::Video:
            parsed.source = videoOption;
            break;
        }
        parsed.values.insert(parsed.source, path);
        if (!optionsFit(parsed, problem))
            return std::nullopt;
        if (parsed.source == csvOption && !parsed.values.contains(QStringLiteral("--time-column")))
            parsed.values.insert(QStringLiteral("--time-column"), QStringLiteral("1"));
    }
    const QString source = parsed.values.value(parsed.source);
    if (parsed.source == v5Option)
        return Version5ConversionConfig{source, parsed.values.value(QStringLiteral("--into"))};
    if (parsed.source == videoOption) {
        VideoConversionConfig config{source, {}, parsed.asStack};
        if (!destinationFrom(parsed, parsed.asStack, config.destination, problem))
            return std::nullopt;
        return config;
    }
    if (parsed.source == csvOption) {
        SpreadsheetConversionConfig config;
        config.sourcePath = source;
        if (!destinationFrom(parsed, false, config.destination, problem) ||
            !spreadsheetFrom(parsed, config, problem))
            return std::nullopt;
        return config;
    }
    TiffStackConversionConfig config;
    config.sourcePath = source;
    if (!destinationFrom(parsed, true, config.destination, problem))
        return std::nullopt;
    const bool hasRate = parsed.values.contains(QStringLiteral("--rate"));
    config.timestampsPath = parsed.values.value(QStringLiteral("--timestamps"));
    if (hasRate == !config.timestampsPath.isEmpty()) {
        problem = QStringLiteral("--tiff takes either --rate HZ or --timestamps CSV");
        return std::nullopt;
    }
    if (hasRate) {
        bool ok = false;
        config.frameRate = parsed.values.value(QStringLiteral("--rate")).toDouble(&ok);
        if (!ok || !(config.frameRate > 0.0)) {
            problem = QStringLiteral("--rate takes a frame rate above 0, in Hz");
            return std::nullopt;
        }
    }
    return config;
}

} // namespace

const char* ConvertCommand::usage()
{
    return "usage: zarvi-cli convert FILE [--device NAME] [--series N] [--stores A,B] [--digital-inputs "
           "CSV]\n"
           "                         --into FILE.orvel\n"
           "       zarvi-cli convert --tiff PATH|FOLDER (--rate HZ | --timestamps CSV)\n"
           "                         --device NAME --sensor NAME [--series N] --into FILE.orvel\n"
           "       zarvi-cli convert --video PATH [--as-stack] --device NAME [--sensor NAME]\n"
           "                         [--series N] --into FILE.orvel\n"
           "       zarvi-cli convert --csv PATH [--sheet NAME] --time-column N [--time-unit s|ms|us|min]\n"
           "                         [--event-columns I,J] [--trigger-columns K[:LEVEL],...] [--unit UNIT]\n"
           "                         --device NAME [--series N] --into FILE.orvel\n"
           "       zarvi-cli convert --v5 FILE [--into NEW.orvel]\n"
           "FILE's format is taken from its content: a pyPhotometry .ppd, a Neurophotometrics .csv\n"
           "(--digital-inputs: its digital-input .csv), a TDT block folder (--stores: the stores to\n"
           "bring in), or any source above with that source's options. Recordings are described\n"
           "before they are written; their device defaults to the format's name.\n"
           "--csv reads a .csv file or a sheet of an .xlsx workbook (--sheet: its name; the first\n"
           "sheet by default). Columns count from 1. The data file is created when missing; --series\n"
           "defaults to the next free series. --as-stack (with --sensor) also stores the video's frames in "
           "grey.\n";
}

int ConvertCommand::run(const QStringList& arguments)
{
    QTextStream err(stderr);
    Arguments parsed;
    QString problem;
    std::optional<ConversionRequest> request;
    if (parse(arguments, parsed, problem))
        request = requestFrom(parsed, problem);
    if (!request) {
        err << problem << '\n' << usage();
        return exitUsage;
    }

    // Refused before the recording is described: describing reads the source too.
    if (const QString special = FileConversion::sourceProblem(*request); !special.isEmpty()) {
        err << "Error: " << TerminalProgress::plainText(special) << '\n';
        return exitFailed;
    }
    if (const auto* recording = std::get_if<RecordingConversionConfig>(&*request)) {
        const RecordingSummary summary = RecordingImport::describe(*recording);
        if (!summary.ok()) {
            err << "Error: " << TerminalProgress::plainText(summary.error) << '\n';
            return exitFailed;
        }
        err << TerminalProgress::plainText(summary.text(recording->sourcePath)
                                               .replace(QStringLiteral("<br>"), QStringLiteral("\n  ")))
            << '\n';
        err.flush();
    }
    ConversionResult result;
    {
        InterruptibleFeedback feedback;
        feedback.setLabel(TerminalProgress::plainText(
            FileEditorOperationDefinitions::convertingLabel().arg(FileConversion::sourcePath(*request))));
        result = FileConversion::run(*request, &feedback);
        feedback.finish();
    }
    if (result.canceled) {
        err << "Cancelled; nothing was written.\n";
        return exitCanceled;
    }
    if (result.refused) {
        err << "Warning: " << result.title << ": " << TerminalProgress::plainText(result.error) << '\n';
        return exitRefused;
    }
    if (!result.ok()) {
        err << "Error: " << TerminalProgress::plainText(result.error) << '\n';
        return exitFailed;
    }
    for (const QString& note : result.notes)
        err << "Note: " << TerminalProgress::plainText(note) << '\n';
    QTextStream out(stdout);
    out << result.filepath << '\n';
    for (const QString& path : result.datapaths)
        out << "  " << path << '\n';
    return 0;
}

} // namespace zarvi
