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
    if (!SuperblockRepair::repairInto(arguments[0], arguments[2], error)) {
        QTextStream(stderr) << "Error: " << TerminalProgress::plainText(error) << '\n';
        return 1;
    }
    QTextStream(stdout) << "repaired copy: " << arguments[2] << '\n';
    return 0;
}

} // namespace zarvi
