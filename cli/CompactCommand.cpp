#include "cli/CompactCommand.h"

#include "cli/InterruptibleFeedback.h"
#include "cli/TerminalProgress.h"
#include "definitions/DatasetDefinitions.h"
#include "fileeditor/FileCompaction.h"

#include <QFileInfo>
#include <QLocale>
#include <QTextStream>

namespace zarvi {

namespace {

constexpr int exitFailed = 1;
constexpr int exitUsage = 2;
constexpr int exitCanceled = 130;

QString sizeLine(const char* when, qint64 bytes)
{
    return QStringLiteral("size %1: %2 bytes (%3)\n")
        .arg(QLatin1String(when))
        .arg(bytes)
        .arg(QLocale::c().formattedDataSize(bytes, 1, QLocale::DataSizeSIFormat));
}

} // namespace

int CompactCommand::run(const QStringList& arguments)
{
    QTextStream err(stderr);
    if (arguments.size() != 1 || arguments.first().startsWith(QLatin1Char('-'))) {
        err << "usage: zarvi-cli compact FILE\n";
        return exitUsage;
    }
    const QString path = arguments.first();
    FileCompaction::Result result;
    {
        InterruptibleFeedback feedback;
        feedback.setLabel(
            TerminalProgress::plainText(DatasetDefinitions::compactLabel().arg(QFileInfo(path).fileName())));
        result = FileCompaction::compact(path, &feedback);
        feedback.finish();
    }
    if (result.canceled) {
        err << "Cancelled; the file is unchanged.\n";
        return exitCanceled;
    }
    if (!result.ok) {
        err << "Error: " << TerminalProgress::plainText(result.error) << ' ' << result.reason << '\n';
        return exitFailed;
    }
    QTextStream(stdout) << sizeLine("before", result.sizeBefore) << sizeLine("after", result.sizeAfter);
    return 0;
}

} // namespace zarvi
