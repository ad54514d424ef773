#include "cli/RunCommand.h"

#include "cli/TerminalProgress.h"
#include "datafile/FileClassifier.h"
#include "framework/OperationRegistry.h"
#include "framework/OperationRunner.h"
#include "framework/PipelineFile.h"

#include <QFile>
#include <QTextStream>

#include <csignal>

namespace zarvi {

namespace {

constexpr int exitFailed = 1;
constexpr int exitUsage = 2;
constexpr int exitBadParameters = 3;
constexpr int exitRefusedFile = 4;
constexpr int exitCanceled = 130;

OperationRunner* activeRunner = nullptr;

void onInterrupt(int)
{
    if (activeRunner)
        activeRunner->requestCancel();
}

const char* usage = "usage: zarvi-cli run FILE --operation NAME --params PARAMS.json --data PATH...\n"
                    "       zarvi-cli run FILE --pipeline PIPELINE.json --data PATH...\n"
                    "PARAMS.json holds one JSON object of parameter keys (or pass the object inline);\n"
                    "PIPELINE.json holds a list of such objects, each with its \"Operations\".\n";

} // namespace

int RunCommand::run(const QStringList& arguments, OtherFamilies otherFamilies)
{
    QTextStream err(stderr);
    QString file, operation, paramsArgument, pipelinePath;
    QStringList datapaths;
    for (int i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments[i];
        const bool hasValue = i + 1 < arguments.size();
        if (argument == QStringLiteral("--operation") && hasValue)
            operation = arguments[++i];
        else if (argument == QStringLiteral("--params") && hasValue)
            paramsArgument = arguments[++i];
        else if (argument == QStringLiteral("--pipeline") && hasValue)
            pipelinePath = arguments[++i];
        else if (argument == QStringLiteral("--data")) {
            while (i + 1 < arguments.size() && !arguments[i + 1].startsWith(QStringLiteral("--")))
                datapaths << arguments[++i];
        } else if (file.isEmpty() && !argument.startsWith(QStringLiteral("--")))
            file = argument;
        else {
            err << "Unexpected argument: " << argument << '\n' << usage;
            return exitUsage;
        }
    }
    if (file.isEmpty() || datapaths.isEmpty() || (operation.isEmpty() == pipelinePath.isEmpty())) {
        err << usage;
        return exitUsage;
    }

    // Decided before the parameters or the pipeline are read: either may come from a pipe,
    // which the caller could not read a second time.
    if (otherFamilies == OtherFamilies::LeftToCaller &&
        (!pipelinePath.isEmpty() || !OperationRegistry::instance().find(operation)))
        return LeftToCallerStatus;

    QList<QVariantMap> steps;
    QString error;
    if (!pipelinePath.isEmpty()) {
        if (!PipelineFile::read(pipelinePath, steps, error)) {
            err << "Error: " << error << '\n';
            return exitBadParameters;
        }
    } else {
        QVariantMap parameters;
        if (!paramsArgument.isEmpty() && !PipelineFile::readParameters(paramsArgument, parameters, error)) {
            err << "Error: " << error << '\n';
            return exitBadParameters;
        }
        parameters.insert(QStringLiteral("Operations"), operation);
        steps << parameters;
    }
    QStringList problems;
    for (const QVariantMap& step : steps) {
        QVariantMap normalized;
        OperationRegistry::instance().normalize(step, normalized, problems);
    }
    if (!problems.isEmpty()) {
        for (const QString& problem : problems)
            err << "Error: " << TerminalProgress::plainText(problem) << '\n';
        return exitBadParameters;
    }

    const FileClassification classification = FileClassifier::classify(file);
    if (classification.kind != FileKind::Data) {
        err << "Error: " << TerminalProgress::plainText(classification.message) << '\n';
        if (!classification.detail.isEmpty())
            err << "       " << classification.detail << '\n';
        return exitRefusedFile;
    }

    OperationRunner runner;
    TerminalProgress progress;
    runner.onProgress = [&](int percent) { progress.setPercent(percent); };
    runner.onLabel = [&](const QString& label) { progress.setLabel(label); };
    runner.onMessage = [&](const QString& title, const QString& message, const QString& details, int) {
        progress.printMessage(title, message, details);
    };
    activeRunner = &runner;
    std::signal(SIGINT, onInterrupt);
    const RunResult result = runner.runPipeline(steps, file, datapaths);
    // The run's outcome stands: a Ctrl-C from now on must not report a written result as
    // cancelled.
    std::signal(SIGINT, SIG_IGN);
    activeRunner = nullptr;
    progress.finish();

    QTextStream out(stdout);
    if (result.canceled) {
        err << "Cancelled; nothing was written.\n";
        return exitCanceled;
    }
    if (!result.succeeded()) {
        for (const QString& problem : result.errors)
            err << "Error: " << TerminalProgress::plainText(problem) << '\n';
        return exitFailed;
    }
    for (const QString& path : result.datapaths)
        out << path << '\n';
    return 0;
}

} // namespace zarvi
