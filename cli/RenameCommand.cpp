#include "cli/RenameCommand.h"

#include "cli/TerminalProgress.h"
#include "framework/DatasetRenaming.h"

#include <QTextStream>

namespace zarvi {

int RenameCommand::run(const QStringList& arguments)
{
    if (arguments.size() != 3) {
        QTextStream(stderr) << "usage: zarvi-cli rename FILE OLD_PATH NEW_NAME\n";
        return 2;
    }
    const DatasetRenaming::Result result = DatasetRenaming::rename(arguments[0], arguments[1], arguments[2]);
    if (!result.error.isEmpty()) {
        QTextStream(stderr) << "Error: " << TerminalProgress::plainText(result.error) << '\n';
        return 1;
    }
    QTextStream(stdout) << result.newPath << '\n';
    return 0;
}

} // namespace zarvi
