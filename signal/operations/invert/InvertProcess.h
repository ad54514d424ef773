#pragma once

#include "signal/SignalOperationProcess.h"

namespace zarvi {

/// "Invert": mirrors each selected signal about InvertOffset; written under
/// "InvertedSignals". Worker thread.
class InvertProcess : public SignalOperationProcess
{
    Q_OBJECT

protected:
    bool computeOperation() override;
};

} // namespace zarvi
