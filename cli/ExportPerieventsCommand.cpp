#include "cli/ExportPerieventsCommand.h"

#include "analysis/PerieventExport.h"
#include "cli/TerminalProgress.h"

#include <QTextStream>

namespace zarvi {

namespace {

const char* usage = "usage: zarvi-cli export-perievents FILE --data PATH --to OUT.csv\n"
                    "PATH is a perievent matrix (.../Perievents<K>/<sensor>/Perievents) or its group;\n"
                    "each statistic is written beside OUT.csv as OUT_<statistic>.csv.\n";

} // namespace

int ExportPerieventsCommand::run(const QStringList& arguments)
{
    QTextStream err(stderr);
    QString file, datapath, target;
    for (int i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments[i];
        const bool hasValue = i + 1 < arguments.size();
        if (argument == QStringLiteral("--data") && hasValue)
            datapath = arguments[++i];
        else if (argument == QStringLiteral("--to") && hasValue)
            target = arguments[++i];
        else if (file.isEmpty() && !argument.startsWith(QStringLiteral("--")))
            file = argument;
        else {
            err << "Unexpected argument: " << argument << '\n' << usage;
            return 2;
        }
    }
    if (file.isEmpty() || datapath.isEmpty() || target.isEmpty()) {
        err << usage;
        return 2;
    }
    QStringList written;
    const QString error = PerieventExport::exportFromFile(file, datapath, target, written);
    if (!error.isEmpty()) {
        err << "Error: " << TerminalProgress::plainText(error) << '\n';
        return 1;
    }
    QTextStream out(stdout);
    for (const QString& path : written)
        out << path << '\n';
    return 0;
}

} // namespace zarvi
