#include "app/StartupOptions.h"

#include <QCommandLineParser>

namespace zarvi {

StartupOptions StartupOptions::parse(const QStringList& arguments)
{
    QCommandLineParser parser;
    const QCommandLineOption demoOption(QStringLiteral("demo"),
                                        QStringLiteral("Write the demo recording and open it."));
    parser.addOption(demoOption);
    parser.addPositionalArgument(QStringLiteral("files"), QStringLiteral("Data or experiment files to open."),
                                 QStringLiteral("[FILE...]"));

    StartupOptions options;
    if (!parser.parse(arguments))
        options.error = parser.errorText();
    options.demo = parser.isSet(demoOption);
    options.files = parser.positionalArguments();
    return options;
}

} // namespace zarvi
