#pragma once

#include <QStringList>

#include <vector>

namespace zarvi {

/// Rows of a time-period array: each period runs from its start to its end
/// (seconds) and carries a name; several periods may share one name. Plain data.
struct TimePeriodArray
{
    std::vector<double> starts;
    std::vector<double> ends;
    QStringList names;
};

} // namespace zarvi
