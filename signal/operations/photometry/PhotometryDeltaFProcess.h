#pragma once

#include "signal/SignalOperationProcess.h"

namespace zarvi {

/// "Photometry deltaF/F": pairs every selected isosbestic signal with the biosensor
/// signal of the same recording (IsosbesticName / BiosensorName; the partner of a
/// selected signal is looked up in the file when it was not selected), runs the ΔF/F
/// chain on each pair and writes the result under "DFFSignals", in a sensor group
/// named after the biosensor. Its Unit is "a.u." for the ratio, "z-score" after
/// standardisation and the biosensor's own unit for the difference of detrended
/// signals. Nothing is written when no pair is found or any pair fails. Worker thread.
class PhotometryDeltaFProcess : public SignalOperationProcess
{
    Q_OBJECT

protected:
    /// The isosbestic/biosensor pairs of the selection; the run records both signals
    /// of every pair as its inputs, whichever were selected.
    QList<QStringList> inputsOf(HDF5Manager_V6& file) override;
    QString outputSensor() const override;
    /// ΔF/F of the current pair: the isosbestic signal with m_input (the biosensor) into m_output.
    bool computeOperation() override;
    /// Without discard, decimation or slope removal only the rates are needed, and the
    /// output's time is the biosensor's own "Time", linked under the output.
    bool readsTime() const override;
    bool keepsInputTime() const override { return !readsTime(); }
};

} // namespace zarvi
