#pragma once

#include <QStringList>

namespace zarvi {

/// `zarvi-cli export-perievents FILE --data PATH --to OUT.csv`: writes a saved
/// perievent result (its matrix dataset, or the group holding it) to OUT.csv, one row
/// per event, and each of its statistics beside it as OUT_<statistic>.csv. Prints the
/// written files. Runs on the main thread.
class ExportPerieventsCommand
{
public:
    static int run(const QStringList& arguments);
};

} // namespace zarvi
