#pragma once

#include "signal/SignalOperationProcess.h"

namespace zarvi {

/// "Decimation": keeps every M-th sample of each selected signal and its time,
/// written under "DecimatedSignals". Worker thread.
class DecimationProcess : public SignalOperationProcess
{
    Q_OBJECT

protected:
    bool computeOperation() override;
};

} // namespace zarvi
