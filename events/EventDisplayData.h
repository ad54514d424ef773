#pragma once

#include "datafile/DataFileTree.h"
#include "events/EventArray.h"

#include <QString>
#include <QStringList>

#include <vector>

namespace zarvi {

class HDF5Manager_V6;

/// An event array as the browser shows it: the path of its dataset, the name it is
/// shown by ("Username", else the dataset's name) and its events.
struct LabelledEvents
{
    QString path;
    QString label;
    EventArray events;
};

/// What the browser needs to draw event arrays: which datasets are event arrays,
/// which recording (device and series) an event array or a signal belongs to, the
/// signals recorded with an event array, and the events with their labels. Plain
/// functions on the thread that holds the file.
class EventDisplayData
{
public:
    /// An event array: a numeric [events], [events, 1] or [events, 2] dataset in
    /// "<category>/<device>/Events/Series<N>".
    static bool isEventArray(const DataFileNode& node);
    /// "<device>/<series>" of an event array or of a signal (raw or processed), empty
    /// for a path under neither "Events" nor "Signals".
    static QString recording(const QString& path);
    /// The event arrays among `eventPaths` recorded with one of `signalPaths`.
    static QStringList sameRecording(const QStringList& eventPaths, const QStringList& signalPaths);
    /// The values datasets of the signals recorded with the event array at `eventPath`:
    /// "<category>/<device>/Signals/<series>/<sensor>/Signal" of the same category,
    /// device and series, in the order of `nodes`.
    static QStringList recordingSignals(const std::vector<DataFileNode>& nodes, const QString& eventPath);
    /// Reads the event array at `path`; false with `error` set when it is not one.
    static bool read(HDF5Manager_V6& file, const QString& path, LabelledEvents& events, QString& error);
};

} // namespace zarvi
