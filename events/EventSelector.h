#pragma once

#include "events/EventArray.h"
#include "events/TimePeriodArray.h"

#include <QString>

#include <cstddef>
#include <vector>

namespace zarvi {

/// Which events of an array take part in the analysis.
struct EventSelection
{
    enum class Mode
    {
        All,
        ByNumber,
        ByTimePeriod
    };
    Mode mode = Mode::All;
    /// "By Number": event numbers as a user counts trials, 1 for the first event;
    /// first..last inclusive.
    int first = 1;
    int last = 1;
    /// "By Time Period": the periods and the name of the ones to keep events from.
    TimePeriodArray periods;
    QString periodName;
};

/// Picks the events of an array that a selection asks for. Plain functions on the
/// caller's thread.
class EventSelector
{
public:
    struct Result
    {
        /// Indices into the array, ascending; empty when `error` is set.
        std::vector<std::size_t> indices;
        QString error;
    };

    /// "By Number" fails when the range is reversed or reaches outside 1..size.
    /// "By Time Period" keeps the events whose onset lies in [start, end] of any
    /// period of that name; both ends count, since period bounds are usually stamped
    /// on the same clock as the events that open and close them. It fails when no
    /// period has the name or no event falls inside one. The message is
    /// "Cannot pick selected events %1." with the range ("2-5") or the period name.
    static Result select(const EventArray& events, const EventSelection& selection);
};

} // namespace zarvi
