#pragma once

#include "datafile/SignalDataset.h"
#include "events/EventDisplayData.h"

#include <QStringList>

#include <utility>
#include <vector>

namespace zarvi {

/// What one display shows, as read from the file: signals with the names they are
/// shown by, event arrays with their labels, the paths read, and why the others
/// could not be.
struct DisplayData
{
    std::vector<std::pair<QString, Signal>> signalList;
    std::vector<LabelledEvents> eventList;
    QStringList readPaths;
    QStringList errors;
};

/// Reads the signals and event arrays of a display in one short read of the file
/// under its access lock, so that no file stays open between reads. Widget-free;
/// called on the GUI thread, which never waits for a busy file.
class DisplayDataReader
{
public:
    /// False with `error` set when the file is busy or cannot be opened; a dataset
    /// that cannot be read is left out with its message in `data.errors`.
    static bool read(const QString& filePath, const QStringList& signalPaths, const QStringList& eventPaths,
                     DisplayData& data, QString& error);

    /// The name a display shows for a dataset: what follows the series level, without
    /// the name of the dataset that holds the values ("Biosensor" for
    /// ".../Series1/Biosensor/Signal", "FilteredSignals1/Biosensor" for a processed one).
    static QString displayName(const QString& path);
};

} // namespace zarvi
