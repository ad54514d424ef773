#include "cli/CheckCommand.h"
#include "cli/InfoCommand.h"
#include "cli/RepairCommand.h"
#include "datafile/OwnLibrary.h"
#include "definitions/ZarviMainDefinitions.h"

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

    QStringList arguments = QCoreApplication::arguments().mid(1);
    if (arguments.isEmpty() || arguments.first() == QStringLiteral("--help") ||
        arguments.first() == QStringLiteral("-h")) {
        QTextStream(arguments.isEmpty() ? stderr : stdout) << usage;
        return arguments.isEmpty() ? 2 : 0;
    }
    const QString command = arguments.takeFirst();
    // The commands that only read or copy a data file run here; the others are in a
    // library loaded for them, with every operation family, OpenCV and the numeric
    // libraries, which would otherwise make every start slower (and the application's
    // file check, which runs `check` for each file it opens).
    if (command == QStringLiteral("info"))
        return zarvi::InfoCommand::run(arguments);
    if (command == QStringLiteral("check"))
        return zarvi::CheckCommand::run(arguments);
    if (command == QStringLiteral("repair"))
        return zarvi::RepairCommand::run(arguments);
    static const QStringList loadedCommands{"demo",    "ops",    "help", "run",    "pipeline",
                                            "convert", "export", "rois", "rename", "compact"};
    if (!loadedCommands.contains(command)) {
        QTextStream(stderr) << "Unknown command: " << command << '\n' << usage;
        return 2;
    }
    // The numeric library's only work here is solving systems of a few unknowns, and
    // each of its worker threads would spin on a core for a tenth of a second after the
    // load, taking that core from our own two threads. A user's own setting stands.
    setenv("OPENBLAS_NUM_THREADS", "1", 0);
    QString error;
    using Entry = int (*)(const QString*, const QStringList*);
    // A run of signal or analysis operations is served by a smaller library that starts
    // without OpenCV, libtiff and the spreadsheet writer; it hands back any other run.
    if (command == QStringLiteral("run")) {
        if (const auto signalEntry = reinterpret_cast<Entry>(zarvi::OwnLibrary::entry(
                "libzarvi_cli_signal_commands.so", "zarviRunSignalCommand", error))) {
            const int status = signalEntry(&command, &arguments);
            if (status >= 0)
                return status;
        }
    }
    const auto entry = reinterpret_cast<Entry>(
        zarvi::OwnLibrary::entry("libzarvi_cli_commands.so", "zarviRunCommand", error));
    if (!entry) {
        QTextStream(stderr) << "Error: the commands library could not be loaded: " << error << '\n';
        return 1;
    }
    return entry(&command, &arguments);
}
