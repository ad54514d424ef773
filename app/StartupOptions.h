#pragma once

#include <QString>
#include <QStringList>

namespace zarvi {

/// What the command line asks for: `zarvi FILE...` opens the files, `zarvi --demo`
/// writes the demo recording into the temporary folder and opens it. GUI thread.
struct StartupOptions
{
    QStringList files;
    bool demo = false;
    /// Unknown options; they are reported and otherwise ignored.
    QString error;

    /// Parses the arguments as QCoreApplication::arguments() gives them (program first).
    static StartupOptions parse(const QStringList& arguments);
};

} // namespace zarvi
