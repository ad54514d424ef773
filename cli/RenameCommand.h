#pragma once

#include <QStringList>

namespace zarvi {

/// `zarvi-cli rename FILE OLD_PATH NEW_NAME`: gives a result group or dataset a new
/// name in its group, under the file's access lock, and prints its new path. Exit
/// status: 0 success, 1 refused or failed (nothing changed), 2 usage. Main thread.
class RenameCommand
{
public:
    static int run(const QStringList& arguments);
};

} // namespace zarvi
