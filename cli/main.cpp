#include "analysis/AnalysisOperations.h"
#include "behavior/BehaviorOperations.h"
#include "cli/CheckCommand.h"
#include "cli/CompactCommand.h"
#include "cli/ConvertCommand.h"
#include "cli/DemoCommand.h"
#include "cli/ExportCommand.h"
#include "cli/HelpCommand.h"
#include "cli/InfoCommand.h"
#include "cli/PipelineCommand.h"
#include "cli/RenameCommand.h"
#include "cli/RepairCommand.h"
#include "cli/RoisCommand.h"
#include "cli/RunCommand.h"
#include "definitions/ZarviMainDefinitions.h"
#include "framework/OperationRegistry.h"
#include "image/ImageOperations.h"
#include "signal/SignalOperations.h"

#include <QCoreApplication>
#include <QTextStream>

#include <csignal>
#include <cstdlib>

namespace {

const char* usage =
    "usage: zarvi-cli <command> [arguments]\n"
    "commands:\n"
    "  info FILE                 classification, root attributes and tree of a data file\n"
    "  demo OUT.orvel [--seed N] write the synthetic demo recording\n"
    "  ops                       list the operations by family\n"
    "  help NAME                 an operation's parameters, their kinds, units, defaults and ranges\n"
    "  run FILE --operation NAME --params PARAMS.json --data PATH...\n"
    "  run FILE --pipeline PIPELINE.json --data PATH...\n"
    "                            run operations headless (Ctrl-C cancels)\n"
    "  pipeline FILE RESULT_PATH [--out PIPELINE.json]\n"
    "                            the steps that produced a result, as a pipeline for run --pipeline\n"
    "  convert --tiff PATH|FOLDER (--rate HZ | --timestamps CSV) --device NAME --sensor NAME\n"
    "          [--series N] --into FILE.orvel\n"
    "  convert --video PATH [--as-stack] --device NAME [--sensor NAME] [--series N] --into FILE.orvel\n"
    "  convert --csv PATH [--sheet NAME] --time-column N [--time-unit s|ms|us|min] [--event-columns I,J]\n"
    "          [--trigger-columns K[:LEVEL],...] [--unit UNIT] --device NAME [--series N] --into FILE.orvel\n"
    "  convert --v5 FILE [--into NEW.orvel]\n"
    "                            bring files into a data file (Ctrl-C cancels)\n"
    "  export FILE --data PATH... --to OUT.(csv|xlsx|tif) [--frames A:B]\n"
    "                            write datasets to a table or a TIFF stack\n"
    "  rois FILE --image PATH [--add JSON | --import FILE.roi|RoiSet.zip | --remove NAME]\n"
    "                            list, add, import (ImageJ) or remove the ROIs of an image stack\n"
    "  rename FILE OLD_PATH NEW_NAME\n"
    "                            give a result group or dataset a new name\n"
    "  compact FILE              reclaim the space of deleted data; prints the sizes before and after\n"
    "  repair FILE --into COPY.orvel\n"
    "                            a repaired copy of a file an interrupted write left unopenable\n";

} // namespace

int main(int argc, char* argv[])
{
    // Until a command takes Ctrl-C over (and turns it into a cancel), nothing has been
    // written yet: leave at once with the status of a cancel.
    std::signal(SIGINT, [](int) { std::_Exit(130); });
    QCoreApplication app(argc, argv);
    QCoreApplication::setOrganizationName(zarvi::ZarviMainDefinitions::OrganizationName);
    QCoreApplication::setApplicationName(zarvi::ZarviMainDefinitions::ApplicationName);
    QCoreApplication::setApplicationVersion(zarvi::ZarviMainDefinitions::VersionText);

    zarvi::registerSignalOperations(zarvi::OperationRegistry::instance());
    zarvi::registerAnalysisOperations(zarvi::OperationRegistry::instance());
    zarvi::registerImageOperations(zarvi::OperationRegistry::instance());
    zarvi::registerBehaviorOperations(zarvi::OperationRegistry::instance());

    QStringList arguments = QCoreApplication::arguments().mid(1);
    if (arguments.isEmpty() || arguments.first() == QStringLiteral("--help") ||
        arguments.first() == QStringLiteral("-h")) {
        QTextStream(arguments.isEmpty() ? stderr : stdout) << usage;
        return arguments.isEmpty() ? 2 : 0;
    }
    const QString command = arguments.takeFirst();
    if (command == QStringLiteral("info"))
        return zarvi::InfoCommand::run(arguments);
    if (command == QStringLiteral("check"))
        return zarvi::CheckCommand::run(arguments);
    if (command == QStringLiteral("demo"))
        return zarvi::DemoCommand::run(arguments);
    if (command == QStringLiteral("ops"))
        return zarvi::HelpCommand::listOperations();
    if (command == QStringLiteral("help"))
        return zarvi::HelpCommand::describe(arguments);
    if (command == QStringLiteral("run"))
        return zarvi::RunCommand::run(arguments);
    if (command == QStringLiteral("pipeline"))
        return zarvi::PipelineCommand::run(arguments);
    if (command == QStringLiteral("convert"))
        return zarvi::ConvertCommand::run(arguments);
    if (command == QStringLiteral("export"))
        return zarvi::ExportCommand::run(arguments);
    if (command == QStringLiteral("rois"))
        return zarvi::RoisCommand::run(arguments);
    if (command == QStringLiteral("rename"))
        return zarvi::RenameCommand::run(arguments);
    if (command == QStringLiteral("repair"))
        return zarvi::RepairCommand::run(arguments);
    if (command == QStringLiteral("compact"))
        return zarvi::CompactCommand::run(arguments);
    QTextStream(stderr) << "Unknown command: " << command << '\n' << usage;
    return 2;
}
