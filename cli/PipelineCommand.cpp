#include "cli/PipelineCommand.h"

#include "cli/TerminalProgress.h"
#include "framework/PipelineFile.h"
#include "framework/PipelineHistory.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTextStream>

namespace zarvi {

namespace {

const char* usage = "usage: zarvi-cli pipeline FILE RESULT_PATH [--out PIPELINE.json]\n";

} // namespace

int PipelineCommand::run(const QStringList& arguments)
{
    QTextStream err(stderr);
    QStringList positional;
    QString out;
    for (int i = 0; i < arguments.size(); ++i) {
        if (arguments[i] == QStringLiteral("--out") && i + 1 < arguments.size())
            out = arguments[++i];
        else if (!arguments[i].startsWith(QStringLiteral("--")))
            positional << arguments[i];
        else {
            err << "Unexpected argument: " << arguments[i] << '\n' << usage;
            return 2;
        }
    }
    if (positional.size() != 2) {
        err << usage;
        return 2;
    }
    const PipelineHistory::Result history = PipelineHistory::of(positional[0], positional[1]);
    if (!history.error.isEmpty()) {
        err << "Error: " << TerminalProgress::plainText(history.error) << '\n';
        return 1;
    }
    QTextStream stdOut(stdout);
    if (out.isEmpty()) {
        QJsonArray steps;
        for (const QVariantMap& step : history.steps)
            steps.append(QJsonObject::fromVariantMap(step));
        stdOut << QJsonDocument(steps).toJson();
        return 0;
    }
    QString error;
    if (!PipelineFile::write(out, history.steps, error)) {
        err << "Error: " << error << '\n';
        return 1;
    }
    for (int i = 0; i < history.steps.size(); ++i)
        stdOut << i + 1 << ". " << PipelineFile::describe(history.steps[i]) << '\n';
    stdOut << "from " << history.origin << '\n';
    return 0;
}

} // namespace zarvi
