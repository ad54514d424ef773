#pragma once

#include "behavior/BehaviorRegions.h"
#include "behavior/CoordinatesDataset.h"
#include "behavior/operations/measures/PathMeasures.h"
#include "framework/AbstractOperationProcess.h"

namespace zarvi {

class RunTransaction;

/// The "Measures" operation: for each selected Coordinates dataset, the distance, speed
/// and time in the arena and each zone (measurePath()), whole and per time bin, written as
/// one table "DataBehavior/<device>/Measures/<series>/Measures<K>/<coordinates>/Measures",
/// and each zone's visits as an event array "DataBehavior/<device>/Events/<series>/<zone>"
/// ("<zone>_2", ... when a name is taken) of onsets and offsets, ready for the perievent
/// analysis. The arena, zones and calibration come from the parameters; a run without an
/// arena is refused before the file is opened. All or nothing, like every run. Lives on
/// the operation's worker thread.
class MeasuresProcess : public AbstractOperationProcess
{
    Q_OBJECT

public:
    using AbstractOperationProcess::AbstractOperationProcess;

protected:
    void runOperation() override;
    /// Measures the current input and writes its table and event arrays.
    bool computeOperation() override;

private:
    bool writeTable(const TrackedPath& tracked, const std::vector<MeasuredRegion>& regions,
                    const PathMeasuresResult& result, bool calibrated);
    bool writeVisits(const std::vector<MeasuredRegion>& regions, const PathMeasuresResult& result);

    RunTransaction* m_run = nullptr;
    QString m_input;
    BehaviorRegions m_regions;
};

} // namespace zarvi
