#include "cli/DemoCommand.h"
#include "cli/ExportPerieventsCommand.h"
#include "cli/InfoCommand.h"
#include "cli/RunCommand.h"
#include "definitions/ZarviMainDefinitions.h"

#include <QCoreApplication>
#include <QTextStream>

namespace {

const char* usage = "usage: zarvi-cli <command> [arguments]\n"
                    "commands:\n"
                    "  info FILE                 classification, root attributes and tree of a data file\n"
                    "  demo OUT.orvel [--seed N] write the synthetic demo recording\n"
                    "  run FILE --operation NAME --params PARAMS.json --data PATH...\n"
                    "  run FILE --pipeline PIPELINE.json --data PATH...\n"
                    "                            run operations headless (Ctrl-C cancels)\n"
                    "  export-perievents FILE --data PATH --to OUT.csv\n"
                    "                            a saved perievent result and its statistics as .csv\n";

} // namespace

int main(int argc, char* argv[])
{
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
    if (command == QStringLiteral("info"))
        return zarvi::InfoCommand::run(arguments);
    if (command == QStringLiteral("demo"))
        return zarvi::DemoCommand::run(arguments);
    if (command == QStringLiteral("run"))
        return zarvi::RunCommand::run(arguments);
    if (command == QStringLiteral("export-perievents"))
        return zarvi::ExportPerieventsCommand::run(arguments);
    QTextStream(stderr) << "Unknown command: " << command << '\n' << usage;
    return 2;
}
