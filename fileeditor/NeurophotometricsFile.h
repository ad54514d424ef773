#pragma once

#include <QByteArray>
#include <QString>

#include "datafile/Feedback.h"
#include "fileeditor/ConversionTarget.h"
#include "fileeditor/RecordingSummary.h"

namespace zarvi {

/// Reads the .csv a Neurophotometrics system writes: one row per camera frame with a
/// FrameCounter, the frame's timestamp in seconds ("Timestamp" or "SystemTimestamp"), the
/// LEDs lit ("LedState": 1, 2 or 4; older files "Flags", whose lowest three bits say the
/// same) and one column per fibre region ("Region0G", "Region1R", ...). The LEDs take turns,
/// so each LED state and region becomes its own signal "<region>-<wavelength>" (1: 415 nm,
/// 2: 470 nm, 4: 560 nm; another state "LED<state>") on the times of its own frames; rows
/// with no LED lit carry no fluorescence and are skipped. Times start at 0 at the first
/// frame; "TimeOrigin(s)" keeps the first timestamp. The digital-input .csv recorded
/// beside it (a timestamp column and one column of 0/1 or False/True per input) gives one
/// event array "DIO%1" per input, on the same clock. Streams line by line. Runs on the
/// job's worker thread.
class NeurophotometricsFile
{
public:
    /// True when the first line names a FrameCounter, an LED state and a region column.
    static bool looksLike(const QByteArray& head);
    static RecordingSummary describe(const RecordingConversionConfig& config);
    static ConversionResult convert(const RecordingConversionConfig& config, Feedback* feedback = nullptr);
};

} // namespace zarvi
