#pragma once

#include "datafile/DataFileTree.h"
#include "events/EventArray.h"
#include "events/TimePeriodArray.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace zarvi {

class HDF5Manager_V6;

/// An event array or a time-period array as stored in a data file.
struct StoredArray
{
    /// The group holding the array and the array's (dataset's) name.
    QString path;
    QString name;
    std::size_t rows = 0;
    /// Event arrays: a second column of offsets. Time-period arrays: always true.
    bool hasOffsets = false;
    /// Time-period arrays: the distinct period names, in order of first appearance.
    QStringList periodNames;
};

/// Finds and reads the event arrays ("<cat>/<dev>/Events/Series<N>/<name>", float64
/// [events, 1|2] of onset and offset times) and the time-period arrays ("TimePeriods",
/// float64 [periods, 2] with a "PeriodNames" attribute) of a data file. Plain
/// functions on the thread that holds the file.
class EventArrayFile
{
public:
    /// The event arrays among the nodes of a file's tree, in tree order.
    static std::vector<StoredArray> eventArrays(const std::vector<DataFileNode>& nodes);
    /// The time-period arrays among the nodes of a file's tree, in tree order.
    static std::vector<StoredArray> timePeriodArrays(const std::vector<DataFileNode>& nodes);

    /// The events of the array `name` in the group `path`, named "Event1", ... by row;
    /// nullopt when it is missing, not numeric or not [events], [events, 1] or [events, 2].
    static std::optional<EventArray> readEvents(HDF5Manager_V6& file, const QString& path,
                                                const QString& name);
    /// The periods of the array `name` in the group `path` with their names; nullopt
    /// when it is missing, not [periods, 2] or its names do not pair with the rows.
    static std::optional<TimePeriodArray> readTimePeriods(HDF5Manager_V6& file, const QString& path,
                                                          const QString& name);
};

} // namespace zarvi
