#include "cli/DemoCommand.h"

#include "datafile/DemoRecording.h"

#include <QTextStream>

namespace zarvi {

int DemoCommand::run(const QStringList& arguments)
{
    QTextStream out(stdout);
    QTextStream err(stderr);
    DemoSettings settings;
    QString path;
    for (int i = 0; i < arguments.size(); ++i) {
        if (arguments[i] == QStringLiteral("--seed") && i + 1 < arguments.size()) {
            bool ok = false;
            settings.seed = arguments[++i].toUInt(&ok);
            if (!ok) {
                err << "Error: --seed takes a non-negative integer.\n";
                return 2;
            }
        } else if (path.isEmpty() && !arguments[i].startsWith(QLatin1Char('-'))) {
            path = arguments[i];
        } else {
            err << "usage: zarvi-cli demo OUT.orvel [--seed N]\n";
            return 2;
        }
    }
    if (path.isEmpty()) {
        err << "usage: zarvi-cli demo OUT.orvel [--seed N]\n";
        return 2;
    }
    DemoTruth truth;
    QString error;
    if (!DemoRecording::write(path, settings, truth, error)) {
        err << "Error: " << error << '\n';
        return 1;
    }
    out << "Demo recording written to " << path << " (seed " << settings.seed << ")\n";
    out << "  isosbestic: " << truth.isosbesticPath << '\n';
    out << "  biosensor:  " << truth.biosensorPath << '\n';
    out << "  events:     " << truth.eventPath << '/' << truth.eventName << " (" << truth.eventOnsets.size()
        << " events)\n";
    out << "  image stack: " << truth.imageStackPath << '\n';
    out << "  video:      " << truth.videoGroupPath << " -> " << truth.videoFilePath << '\n';
    return 0;
}

} // namespace zarvi
