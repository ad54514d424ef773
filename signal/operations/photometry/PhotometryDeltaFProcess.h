#pragma once

#include "signal/SignalOperationProcess.h"

namespace zarvi {

/// "Photometry deltaF/F": pairs every selected isosbestic signal with the biosensor
/// signal of the same recording (IsosbesticName / BiosensorName; the partner of a
/// selected signal is looked up in the file when it was not selected), runs the ΔF/F
/// chain on each pair and writes the result under "DFFSignals", in a sensor group
/// named after the biosensor. Its Unit is "a.u." for the ratio, "z-score" after
/// standardisation and the biosensor's own unit for the difference of detrended
/// signals. Nothing is written when a name is missing, no pair is found, or any pair
/// fails. Worker thread.
class PhotometryDeltaFProcess : public SignalOperationProcess
{
    Q_OBJECT

public:
    PhotometryDeltaFProcess();

protected:
    /// Replaces the family run: the inputs are pairs, not single signals.
    void runOperation() override;
    /// ΔF/F of the current pair: m_isosbestic with m_input (the biosensor) into m_output.
    bool computeOperation() override;

private:
    /// The isosbestic signal of the current pair.
    Signal m_isosbestic;
    /// Kernel warnings already shown in this run, so that each is shown once.
    QStringList m_warningsSent;
};

} // namespace zarvi
