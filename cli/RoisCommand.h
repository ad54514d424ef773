#pragma once

#include <QStringList>

namespace zarvi {

/// `zarvi-cli rois FILE --image PATH [--add JSON | --import FILE.roi|RoiSet.zip |
/// --remove NAME]`: lists the regions of interest of an image stack, one JSON object
/// per line in the form --add takes, or adds, imports or removes them under the file's
/// access lock. Exit status: 0 success, 1 refused or failed (nothing written), 2 usage.
/// Main thread.
class RoisCommand
{
public:
    static int run(const QStringList& arguments);
    static const char* usage();
};

} // namespace zarvi
