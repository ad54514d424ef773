#pragma once

#include <QStringList>

namespace zarvi {

/// `zarvi-cli compact FILE`: rewrites a data file without the space its deleted data
/// left, under the file's access lock, and prints the sizes before and after. Ctrl-C
/// cancels and leaves the file as it was. Exit status: 0 success, 1 failed (the file
/// is unchanged), 2 usage, 130 cancelled. Main thread.
class CompactCommand
{
public:
    static int run(const QStringList& arguments);
};

} // namespace zarvi
