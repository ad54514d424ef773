#pragma once

#include <QStringList>

namespace zarvi {

/// `zarvi-cli export FILE --data PATH... --to OUT.(csv|xlsx|tif) [--frames A:B]`: writes
/// signals, event arrays or a 2-D result to a table, or an image stack to a TIFF, through
/// the same exporter as the Export dialog; Ctrl-C cancels.
/// Exit status: 0 success, 1 the export failed, 2 usage, 130 cancelled. Main thread.
class ExportCommand
{
public:
    static int run(const QStringList& arguments);
    static const char* usage();
};

} // namespace zarvi
