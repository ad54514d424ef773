#pragma once

#include "signal/SignalOperationProcess.h"

namespace zarvi {

/// "Filter": an order-10 Butterworth low-pass, high-pass, band-pass or band-stop
/// filter applied without phase shift to each selected signal, at the sample rate of
/// the signal's own time vector (from its ends; the time itself is copied, not read); written under
/// "FilteredSignals". Worker thread.
class FilterProcess : public SignalOperationProcess
{
    Q_OBJECT

protected:
    bool computeOperation() override;
    bool keepsInputTime() const override { return true; }
    bool readsTime() const override { return false; }
};

} // namespace zarvi
