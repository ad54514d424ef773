#pragma once

#include <QStringList>

namespace zarvi {

/// `zarvi-cli check FILE`, not listed in the usage: what the desktop application runs in
/// a child process before it opens a file itself. Classifies the file and reads its whole
/// tree with every attribute, as opening it in a tab would, so that a file that crashes
/// or hangs the HDF5 library ends this process instead of the application. Prints the
/// kind ("data", "experiment" or "unrecognized") on the first line and the message for
/// the user, if any, on the second; exits 0 for a file to open, 1 otherwise. Main thread.
class CheckCommand
{
public:
    static int run(const QStringList& arguments);
};

} // namespace zarvi
