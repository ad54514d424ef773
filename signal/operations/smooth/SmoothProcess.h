#pragma once

#include "signal/SignalOperationProcess.h"

namespace zarvi {

/// "Smooth Signals": a running average over SmoothTimeFrame(sec) or a zero-phase
/// low-pass Butterworth filter at SmoothFrequency(Hz) on each selected signal; an
/// empty or unknown SmoothMethod leaves the signal as it is. Written under
/// "SmoothedSignals". Worker thread.
class SmoothProcess : public SignalOperationProcess
{
    Q_OBJECT

protected:
    bool computeOperation() override;
    bool keepsInputTime() const override { return true; }
    bool readsTime() const override { return false; }
};

} // namespace zarvi
