#include "app/browser/DisplayDataReader.h"

#include "definitions/DatasetDefinitions.h"
#include "definitions/FileDefinitions.h"
#include "framework/LockedFileRead.h"

namespace zarvi {

using DD = DatasetDefinitions;
using FD = FileDefinitions;

bool DisplayDataReader::read(const QString& filePath, const QStringList& signalPaths,
                             const QStringList& eventPaths, DisplayData& data, QString& error)
{
    LockedFileRead file(filePath);
    if (!file.isOpen()) {
        error = file.isBusy() ? file.error() : DD::readFailedMessage().arg(filePath, file.error());
        return false;
    }
    for (const QString& path : signalPaths) {
        Signal signal;
        QString failure;
        if (SignalDataset::read(file.reader(), path, signal, failure)) {
            data.signalList.emplace_back(displayName(path), std::move(signal));
            data.readPaths << path;
        } else {
            data.errors << DD::readFailedMessage().arg(path, failure);
        }
    }
    for (const QString& path : eventPaths) {
        LabelledEvents events;
        QString failure;
        if (EventDisplayData::read(file.reader(), path, events, failure)) {
            data.eventList.push_back(std::move(events));
            data.readPaths << path;
        } else {
            data.errors << DD::readFailedMessage().arg(path, failure);
        }
    }
    return true;
}

QString DisplayDataReader::displayName(const QString& path)
{
    QStringList parts = path.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    if (parts.size() > 1 && (parts.last() == FD::SignalValues || parts.last() == FD::ImageStack))
        parts.removeLast();
    qsizetype series = -1;
    for (qsizetype i = 0; i < parts.size(); ++i)
        if (parts[i].contains(FD::SeriesText))
            series = i;
    const qsizetype first = series >= 0 && series + 1 < parts.size() ? series + 1 : parts.size() - 1;
    return parts.mid(first).join(QLatin1Char('/'));
}

} // namespace zarvi
