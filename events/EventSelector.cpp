#include "events/EventSelector.h"

#include "definitions/AnalysisOperationDefinitions.h"

#include <algorithm>

namespace zarvi {

namespace {

EventSelector::Result failure(const QString& what)
{
    return {{}, AnalysisOperationDefinitions::cannotPickEventsMessage().arg(what)};
}

EventSelector::Result byNumber(const EventArray& events, int first, int last)
{
    const auto count = static_cast<long long>(events.size());
    if (first < 1 || last < first || last > count)
        return failure(QStringLiteral("%1-%2").arg(first).arg(last));
    EventSelector::Result result;
    for (int number = first; number <= last; ++number)
        result.indices.push_back(static_cast<std::size_t>(number - 1));
    return result;
}

EventSelector::Result byTimePeriod(const EventArray& events, const TimePeriodArray& periods,
                                   const QString& name)
{
    const std::size_t rows = std::min(
        {periods.starts.size(), periods.ends.size(), static_cast<std::size_t>(periods.names.size())});
    std::vector<std::size_t> named;
    for (std::size_t p = 0; p < rows; ++p) {
        if (periods.names[static_cast<qsizetype>(p)] == name)
            named.push_back(p);
    }
    EventSelector::Result result;
    const std::vector<double>& onsets = events.onsets();
    for (std::size_t i = 0; i < onsets.size(); ++i) {
        const bool inside = std::any_of(named.begin(), named.end(), [&](std::size_t p) {
            return onsets[i] >= periods.starts[p] && onsets[i] <= periods.ends[p];
        });
        if (inside)
            result.indices.push_back(i);
    }
    if (result.indices.empty())
        return failure(name);
    return result;
}

} // namespace

EventSelector::Result EventSelector::select(const EventArray& events, const EventSelection& selection)
{
    switch (selection.mode) {
    case EventSelection::Mode::ByNumber:
        return byNumber(events, selection.first, selection.last);
    case EventSelection::Mode::ByTimePeriod:
        return byTimePeriod(events, selection.periods, selection.periodName);
    case EventSelection::Mode::All:
        break;
    }
    Result all;
    all.indices.resize(events.size());
    for (std::size_t i = 0; i < events.size(); ++i)
        all.indices[i] = i;
    return all;
}

} // namespace zarvi
