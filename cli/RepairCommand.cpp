#include "cli/RepairCommand.h"

#include "cli/TerminalProgress.h"
#include "datafile/SuperblockRepair.h"

#include <QTextStream>

namespace zarvi {

int RepairCommand::run(const QStringList& arguments)
{
    if (arguments.size() != 3 || arguments[1] != QStringLiteral("--into")) {
        QTextStream(stderr) << "usage: zarvi-cli repair FILE --into COPY.orvel\n";
        return 2;
    }
    QString error;
    QStringList leftOut;
    if (!SuperblockRepair::repairInto(arguments[0], arguments[2], leftOut, error)) {
        QTextStream(stderr) << "Error: " << TerminalProgress::plainText(error) << '\n';
        return 1;
    }
    QTextStream out(stdout);
    out << "repaired copy: " << arguments[2] << '\n';
    if (!leftOut.isEmpty()) {
        out << "left out, unreadable (the interrupted write did not finish them): " << leftOut.size() << '\n';
        for (const QString& path : leftOut)
            out << "  " << path << '\n';
    }
    return 0;
}

} // namespace zarvi
