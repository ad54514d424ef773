#include "cli/ConvertCommand.h"

#include <QMap>
#include <QTextStream>

#include <optional>

#include "cli/InterruptibleFeedback.h"
#include "cli/TerminalProgress.h"
#include "definitions/FileEditorOperationDefinitions.h"
#include "fileeditor/FileConversion.h"

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

/// The options each source takes besides itself; every other option is refused.
const QMap<QString, QStringList>& optionsOfSource()
{
    static const QMap<QString, QStringList> options{
        {tiffOption, {"--rate", "--timestamps", "--device", "--sensor", "--series", "--into"}},
        {videoOption, {"--device", "--sensor", "--series", "--into"}},
        {csvOption, {"--time-column", "--time-unit", "--event-columns", "--device", "--series", "--into"}},
        {v5Option, {"--into"}},
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

/// Reads the options; a problem is a usage error.
bool parse(const QStringList& arguments, Arguments& parsed, QString& problem)
{
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments[i];
        if (argument == asStackOption) {
            parsed.asStack = true;
            continue;
        }
        const bool isSource = optionsOfSource().contains(argument);
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
        problem = QStringLiteral("Give a source: --tiff, --video, --csv or --v5");
        return false;
    }
    const QStringList allowed = optionsOfSource().value(parsed.source);
    for (auto it = parsed.values.cbegin(); it != parsed.values.cend(); ++it) {
        if (it.key() != parsed.source && !allowed.contains(it.key())) {
            problem = QStringLiteral("%1 does not apply to %2").arg(it.key(), parsed.source);
            return false;
        }
    }
    if (parsed.asStack && parsed.source != videoOption) {
        problem = QStringLiteral("--as-stack applies to --video only");
        return false;
    }
    return true;
}

bool destinationFrom(const Arguments& parsed, bool needsSensor, ConversionDestination& to, QString& problem)
{
    to.filepath = parsed.values.value(QStringLiteral("--into"));
    to.device = parsed.values.value(QStringLiteral("--device"));
    to.sensor = parsed.values.value(QStringLiteral("--sensor"));
    if (to.filepath.isEmpty() || to.device.isEmpty() || (needsSensor && to.sensor.isEmpty())) {
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
    const QString events = parsed.values.value(QStringLiteral("--event-columns"));
    for (const QString& text : events.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        const std::optional<int> column = positiveInt(text.trimmed());
        if (!column) {
            problem = QStringLiteral("--event-columns takes column numbers from 1, separated by commas");
            return false;
        }
        config.eventColumns.push_back(*column - 1);
    }
    return true;
}

std::optional<ConversionRequest> requestFrom(const Arguments& parsed, QString& problem)
{
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
    return "usage: zarvi-cli convert --tiff PATH|FOLDER (--rate HZ | --timestamps CSV)\n"
           "                         --device NAME --sensor NAME [--series N] --into FILE.orvel\n"
           "       zarvi-cli convert --video PATH [--as-stack] --device NAME [--sensor NAME]\n"
           "                         [--series N] --into FILE.orvel\n"
           "       zarvi-cli convert --csv PATH --time-column N [--time-unit s|ms|us|min]\n"
           "                         [--event-columns I,J] --device NAME [--series N] --into FILE.orvel\n"
           "       zarvi-cli convert --v5 FILE [--into NEW.orvel]\n"
           "Columns count from 1. The data file is created when missing; --series defaults to the\n"
           "next free series. --as-stack (with --sensor) also stores the video's frames in grey.\n";
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
