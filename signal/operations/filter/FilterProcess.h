#pragma once

#include "signal/SignalOperationProcess.h"

namespace zarvi {

/// "Filter": an order-10 Butterworth low-pass, high-pass, band-pass or band-stop
/// filter applied without phase shift to each selected signal, at the sample rate of
/// the signal's own time vector; written under "FilteredSignals". Worker thread.
class FilterProcess : public SignalOperationProcess
{
    Q_OBJECT

protected:
    bool computeOperation() override;
};

} // namespace zarvi
