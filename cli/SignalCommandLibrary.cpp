#include "analysis/AnalysisOperations.h"
#include "cli/RunCommand.h"
#include "framework/OperationRegistry.h"
#include "signal/SignalOperations.h"

#include <QString>
#include <QStringList>

/// `run` for the signal and analysis operations alone, without OpenCV, libtiff and the
/// spreadsheet writer that the full commands library loads for the other families: these
/// runs are short enough that loading those would be a noticeable part of them. Returns
/// the run's exit status, or -1 for a run of another family's operation or of a saved
/// pipeline (or a command other than `run`), which leaves it to the full commands library.
extern "C" __attribute__((visibility("default"))) int zarviRunSignalCommand(const QString* command,
                                                                            const QStringList* arguments)
{
    if (*command != QStringLiteral("run"))
        return -1;
    zarvi::registerSignalOperations(zarvi::OperationRegistry::instance());
    zarvi::registerAnalysisOperations(zarvi::OperationRegistry::instance());
    return zarvi::RunCommand::run(*arguments, zarvi::RunCommand::OtherFamilies::LeftToCaller);
}
