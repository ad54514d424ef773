#pragma once

#include "analysis/operations/perievents/PerieventAnalysis.h"
#include "framework/ParameterValues.h"

#include <QString>
#include <QStringList>

namespace zarvi {

class HDF5Manager_V6;

/// What a perievent parameter map asks for: the analysis configuration, and where in
/// the file its event arrays are.
struct PerieventRequest
{
    /// Which times of the analysed array are its events.
    enum class Columns
    {
        /// As stored: onsets, and offsets when the array has them.
        AsStored,
        /// Only the onsets of an onset/offset array, as plain events ("Only Onsets").
        Onsets,
        /// Only the offsets, as plain events ("Only Offsets").
        Offsets
    };

    PerieventAnalysisConfig config;
    Columns columns = Columns::AsStored;
    /// The time-period array used by "By Time Period".
    QString timePeriodPath;
    QString timePeriodArray;

    /// True when the results are named with their side ("Onset", "Offset").
    bool namesSides() const { return columns == Columns::AsStored && hasOffsetSide(); }
    bool hasOffsetSide() const { return config.sides != PerieventAnalysisConfig::Sides::Onset; }
};

/// Turns the parameter map of "Perievents" into a PerieventRequest, and reads the event
/// arrays it names. The keys:
/// - `EventPath`, `Event`: the analysed event array (required);
/// - `Onset`, `Offset` (0 or 1): the sides of an onset/offset array taken; neither
///   given means the onsets. `PlainEvents` 1 reads the chosen side's times as plain
///   events ("Only Onsets", "Only Offsets");
/// - `PerieventTimeFrame` [start, end] (required), `StatisticTimeFrames` [s1, e1, s2,
///   e2, ...], `TimeFramesNames`: the window and statistic table of the side taken (of
///   the onset side when both are); `OffsetPerieventTimeFrame`,
///   `OffsetStatisticTimeFrames`, `OffsetTimeFramesNames`: the offset side's when both are;
/// - `Statistics` (list) and `Statistic` (one name): "AUC", "Mean", "Median", "Maximum", "Minimum";
/// - `NormalizeWindow` [start, end] switches the baseline alignment on, `NormalizeMethod`
///   ("Mean" when absent), `NormalizeEventPath`/`NormalizeEvent` the baseline events
///   (absent or "Current Event": the analysed chunks);
/// - `SelectEvents` 1: by time period when `TimePeriod` names an array (with
///   `TimePeriodPath`, `TimePeriodName`), else by number with `EventRange` [first, last]
///   counted from 1;
/// - `Resample` 1 with `ResampleFrequency` (Hz) and `ResampleMethod` ("Linear" when absent).
/// Plain functions; the reading runs on the thread that holds the file.
class PerieventParameters
{
public:
    /// The messages of every missing or invalid parameter; empty when `request` is complete.
    static QStringList parse(const ParameterValues& parameters, PerieventRequest& request);

    /// Reads the analysed event array into `events` and the baseline events and time
    /// periods into request.config. The message when one cannot be read, else empty.
    static QString loadEvents(HDF5Manager_V6& file, PerieventRequest& request, EventArray& events);
};

} // namespace zarvi
