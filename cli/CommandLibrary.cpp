#include "analysis/AnalysisOperations.h"
#include "behavior/BehaviorOperations.h"
#include "cli/CompactCommand.h"
#include "cli/ConvertCommand.h"
#include "cli/DemoCommand.h"
#include "cli/ExportCommand.h"
#include "cli/HelpCommand.h"
#include "cli/PipelineCommand.h"
#include "cli/RenameCommand.h"
#include "cli/RoisCommand.h"
#include "cli/RunCommand.h"
#include "framework/OperationRegistry.h"
#include "image/ImageOperations.h"
#include "signal/SignalOperations.h"

#include <QString>
#include <QStringList>

/// The commands that run operations or read outside data, with every operation family,
/// OpenCV and the numeric libraries behind them: zarvi-cli loads this library only for
/// them, so that `info`, `check` and `repair` start without it. Returns the command's exit
/// status, or -1 for a command it does not know.
extern "C" __attribute__((visibility("default"))) int zarviRunCommand(const QString* command,
                                                                      const QStringList* arguments)
{
    zarvi::registerSignalOperations(zarvi::OperationRegistry::instance());
    zarvi::registerAnalysisOperations(zarvi::OperationRegistry::instance());
    zarvi::registerImageOperations(zarvi::OperationRegistry::instance());
    zarvi::registerBehaviorOperations(zarvi::OperationRegistry::instance());

    const QString& name = *command;
    const QStringList& args = *arguments;
    if (name == QStringLiteral("demo"))
        return zarvi::DemoCommand::run(args);
    if (name == QStringLiteral("ops"))
        return zarvi::HelpCommand::listOperations();
    if (name == QStringLiteral("help"))
        return zarvi::HelpCommand::describe(args);
    if (name == QStringLiteral("run"))
        return zarvi::RunCommand::run(args);
    if (name == QStringLiteral("pipeline"))
        return zarvi::PipelineCommand::run(args);
    if (name == QStringLiteral("convert"))
        return zarvi::ConvertCommand::run(args);
    if (name == QStringLiteral("export"))
        return zarvi::ExportCommand::run(args);
    if (name == QStringLiteral("rois"))
        return zarvi::RoisCommand::run(args);
    if (name == QStringLiteral("rename"))
        return zarvi::RenameCommand::run(args);
    if (name == QStringLiteral("compact"))
        return zarvi::CompactCommand::run(args);
    return -1;
}
