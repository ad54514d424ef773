#include "cli/ExportCommand.h"

#include <QTextStream>

#include "cli/InterruptibleFeedback.h"
#include "cli/TerminalProgress.h"
#include "definitions/ExportDefinitions.h"
#include "fileeditor/DataExporter.h"

namespace zarvi {

namespace {

constexpr int exitFailed = 1;
constexpr int exitUsage = 2;
constexpr int exitCanceled = 130;

/// "A:B" (frames A to B), "A:" (A to the last) or "A", counted from 1.
bool parseFrames(const QString& text, DataExportConfig& config)
{
    const QStringList parts = text.split(QLatin1Char(':'));
    if (parts.size() > 2)
        return false;
    bool ok = false;
    const qlonglong first = parts[0].toLongLong(&ok);
    if (!ok || first < 1)
        return false;
    qlonglong last = first;
    if (parts.size() == 2) {
        last = parts[1].isEmpty() ? 0 : parts[1].toLongLong(&ok);
        if (!ok || (!parts[1].isEmpty() && last < first))
            return false;
    }
    config.firstFrame = static_cast<std::size_t>(first - 1);
    config.frameCount = last == 0 ? 0 : static_cast<std::size_t>(last - first + 1);
    return true;
}

} // namespace

const char* ExportCommand::usage()
{
    return "usage: zarvi-cli export FILE.orvel --data PATH... --to OUT.(csv|xlsx|tif) [--frames A:B]\n"
           "Signals (sharing one Time), event arrays or one 2-D result go to .csv or .xlsx; one image\n"
           "stack goes to .tif, optionally frames A to B only (from 1; \"A:\" to the last frame).\n";
}

int ExportCommand::run(const QStringList& arguments)
{
    QTextStream err(stderr);
    DataExportConfig config;
    bool framesGiven = false;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments[i];
        const bool hasValue = i + 1 < arguments.size();
        if (argument == QStringLiteral("--to") && hasValue && config.outputPath.isEmpty()) {
            config.outputPath = arguments[++i];
        } else if (argument == QStringLiteral("--frames") && hasValue && !framesGiven) {
            framesGiven = true;
            if (!parseFrames(arguments[++i], config)) {
                err << "--frames takes A:B with 1 <= A <= B\n" << usage();
                return exitUsage;
            }
        } else if (argument == QStringLiteral("--data")) {
            while (i + 1 < arguments.size() && !arguments[i + 1].startsWith(QStringLiteral("--")))
                config.datapaths << arguments[++i];
        } else if (config.filepath.isEmpty() && !argument.startsWith(QStringLiteral("--"))) {
            config.filepath = argument;
        } else {
            err << "Unexpected argument: " << argument << '\n' << usage();
            return exitUsage;
        }
    }
    if (config.filepath.isEmpty() || config.datapaths.isEmpty() || config.outputPath.isEmpty()) {
        err << usage();
        return exitUsage;
    }

    DataExportResult result;
    {
        InterruptibleFeedback feedback;
        feedback.setLabel(
            TerminalProgress::plainText(ExportDefinitions::exportingLabel().arg(config.outputPath)));
        result = DataExporter::run(config, &feedback);
        feedback.finish();
    }
    if (result.canceled) {
        err << "Cancelled; nothing was written.\n";
        return exitCanceled;
    }
    if (!result.ok()) {
        err << "Error: " << TerminalProgress::plainText(result.error) << '\n';
        return exitFailed;
    }
    QTextStream(stdout) << result.outputPath << '\n';
    return 0;
}

} // namespace zarvi
