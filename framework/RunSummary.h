#pragma once

#include <QString>
#include <QStringList>

namespace zarvi {

/// What a run wrote, in words for the user: one "<output group>: <n> signals" part
/// per output group ("DFFSignals1: 2 signals"), counting the sensors written under
/// it. Pure text logic; any thread.
class RunSummary
{
public:
    /// `datapaths` as a run reports them, "<category>/<device>/<kind>/<series>/<Output><K>/<sensor>/...".
    static QString describe(const QStringList& datapaths);
};

} // namespace zarvi
