#pragma once

#include "analysis/AnalysisOperationProcess.h"
#include "analysis/operations/perievents/PerieventAnalysis.h"

namespace zarvi {

/// "Perievents": cuts each selected signal around the events of an event array,
/// normalises and summarises the chunks (PerieventAnalysis) and saves, per signal,
/// the trial-by-time matrix, its time axis and the statistic matrices
/// (PerieventResultFile) under "Perievents<K>/<sensor>", the sides of a "Both" run in
/// the sub-groups "Onset" and "Offset". Worker thread.
class PerieventsProcess : public AnalysisOperationProcess
{
    Q_OBJECT

protected:
    bool computeOperation() override;

private:
    /// Reused from one signal to the next.
    PerieventAnalysisResult m_result;
};

} // namespace zarvi
