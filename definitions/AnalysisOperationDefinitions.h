#pragma once

#include <QCoreApplication>
#include <QString>

namespace zarvi {

/// Holds the names, parameter keys, values, labels and messages of the analysis
/// operations. Keys and values are written to the file or compared with file
/// contents and are never translated; labels, tooltips and messages go through tr.
/// Constants only, safe from any thread.
class AnalysisOperationDefinitions
{
    Q_DECLARE_TR_FUNCTIONS(AnalysisOperationDefinitions)

public:
    static inline const QString Perievents = QStringLiteral("Perievents");

    // Perievent parameter keys.
    static inline const QString EventPath = QStringLiteral("EventPath");
    static inline const QString Event = QStringLiteral("Event");
    static inline const QString PerieventTimeFrame = QStringLiteral("PerieventTimeFrame");
    /// Key of the onset side, and the "Onset" choice of an onset/offset array.
    static inline const QString Onset = QStringLiteral("Onset");
    /// Key of the offset side, and the "Offset" choice of an onset/offset array.
    static inline const QString Offset = QStringLiteral("Offset");
    static inline const QString StatisticTimeFrames = QStringLiteral("StatisticTimeFrames");
    static inline const QString TimeFramesNames = QStringLiteral("TimeFramesNames");
    static inline const QString Statistic = QStringLiteral("Statistic");
    static inline const QString Statistics = QStringLiteral("Statistics");
    static inline const QString SelectEvents = QStringLiteral("SelectEvents");
    static inline const QString EventRange = QStringLiteral("EventRange");
    static inline const QString TimePeriod = QStringLiteral("TimePeriod");
    static inline const QString TimePeriodPath = QStringLiteral("TimePeriodPath");
    static inline const QString TimePeriodName = QStringLiteral("TimePeriodName");
    static inline const QString Resample = QStringLiteral("Resample");
    static inline const QString ResampleFrequency = QStringLiteral("ResampleFrequency");
    static inline const QString ResampleMethod = QStringLiteral("ResampleMethod");
    static inline const QString NormalizeWindow = QStringLiteral("NormalizeWindow");
    static inline const QString NormalizeMethod = QStringLiteral("NormalizeMethod");
    static inline const QString NormalizeEvent = QStringLiteral("NormalizeEvent");
    static inline const QString NormalizeEventPath = QStringLiteral("NormalizeEventPath");
    /// The offset side's window and statistic table when both sides are taken; the
    /// keys above then describe the onset side.
    static inline const QString OffsetPerieventTimeFrame = QStringLiteral("OffsetPerieventTimeFrame");
    static inline const QString OffsetStatisticTimeFrames = QStringLiteral("OffsetStatisticTimeFrames");
    static inline const QString OffsetTimeFramesNames = QStringLiteral("OffsetTimeFramesNames");
    /// 1: an onset/offset array is read as plain events of its onsets (or, with
    /// "Offset", its offsets), the choices "Only Onsets" and "Only Offsets".
    static inline const QString PlainEvents = QStringLiteral("PlainEvents");

    // Saved results. A run writes "Perievents<K>" groups; each analysed side holds the
    // matrix, its "Time" axis and one dataset per statistic, named by the statistic.
    static inline const QString PerieventMatrix = QStringLiteral("Perievents");

    // Attribute keys describing a saved result matrix (its unit uses FileDefinitions::Unit).
    static inline const QString RowNames = QStringLiteral("RowNames");
    static inline const QString RowLabel = QStringLiteral("RowLabel");
    static inline const QString ColumnNames = QStringLiteral("ColumnNames");
    /// A table whose columns differ in unit names each column's unit here instead of in "Unit".
    static inline const QString ColumnUnits = QStringLiteral("ColumnUnits");
    static inline const QString ColumnLabel = QStringLiteral("ColumnLabel");
    static inline const QString ColumnRange = QStringLiteral("ColumnRange");

    // Values of those attributes.
    static inline const QString TrialsAxis = QStringLiteral("Trials");
    static inline const QString TimeAxis = QStringLiteral("Time (sec)");
    static inline const QString ZScoreUnit = QStringLiteral("z-score");
    /// Column label of a saved statistic matrix.
    static inline const QString TimeFramesAxis = QStringLiteral("Statistic Time Frames");
    /// Header of the event-name column of an exported table.
    static inline const QString EventColumn = QStringLiteral("Event");
    /// The exported mean ± SEM trace: "<base>_MeanSEM.csv" with these column titles.
    static inline const QString MeanSemFileSuffix = QStringLiteral("MeanSEM");
    static QString timeColumnTitle() { return tr("Time"); }
    static QString meanColumnTitle() { return tr("Mean"); }
    static QString semColumnTitle() { return tr("SEM"); }

    // Choice values.
    static inline const QString Both = QStringLiteral("Both");
    static inline const QString OnlyOnsets = QStringLiteral("Only Onsets");
    static inline const QString OnlyOffsets = QStringLiteral("Only Offsets");
    static inline const QString ByNumber = QStringLiteral("By Number");
    static inline const QString ByTimePeriod = QStringLiteral("By Time Period");
    static inline const QString CurrentEvent = QStringLiteral("Current Event");

    // Statistic names. "Mean" is also the plain-subtraction normalisation method.
    static inline const QString AUC = QStringLiteral("AUC");
    static inline const QString Mean = QStringLiteral("Mean");
    static inline const QString Median = QStringLiteral("Median");
    static inline const QString Maximum = QStringLiteral("Maximum");
    static inline const QString Minimum = QStringLiteral("Minimum");
    static inline const QString Frequency = QStringLiteral("Frequency");
    static inline const QString Count = QStringLiteral("Count");

    // Normalisation methods besides "Mean".
    static inline const QString StandardZScore = QStringLiteral("Standard Z-Score");
    static inline const QString ModifiedZScore = QStringLiteral("Modified Z-Score");

    // Resampling methods.
    static inline const QString LinearMethod = QStringLiteral("Linear");

    // Patterns of result names, filled with signal name, event name, time-frame or statistic name.
    static inline const QString TwoPartNamePattern = QStringLiteral("%1 %2");
    static inline const QString QualifiedNamePattern = QStringLiteral("%1 (%2)");
    static inline const QString ThreePartNamePattern = QStringLiteral("%1 %2 %3");

    /// Style of a statistic-table cell that fails the check before running.
    static inline const QString InvalidCellStyle = QStringLiteral("background-color: red;");

    // Fixed texts of matrix index errors; they stop a run like any other message.
    static inline const QString SubmatBoundsError =
        QStringLiteral("Mat::submat(): indices out of bounds or incorrectly used");
    static inline const QString MedianNaNError = QStringLiteral("median(): detected NaN");

    // Labels and tooltips of the perievent view.
    static QString perieventsDescription()
    {
        return tr("<b>Perievents</b> operation takes a continuous signal and a set of event timestamps, "
                  "and extracts signal segments within a defined time window around each event. These "
                  "event‑centered segments are stacked to form a trial‑by‑time matrix (each event is a "
                  "row), which is then visualized either as a heat map or a line plot. This "
                  "representation highlights how the signal behaves before, during, and after each event, "
                  "making temporal patterns and event‑locked dynamics easy to compare across trials. A "
                  "per-trial average is also available to highlight how the signal changes globally in "
                  "response to the event.");
    }
    // Labels and tooltips of the keys that have no field of their own in the dialog.
    static QString eventPathLabel() { return tr("Event group"); }
    static QString eventPathTooltip()
    {
        return tr("Data path of the group holding the analysed event array.");
    }
    static QString eventTooltip() { return tr("Name of the analysed event array."); }
    static QString plainEventsLabel() { return tr("Plain events"); }
    static QString plainEventsTooltip()
    {
        return tr("1 reads the chosen side of an onset/offset array as plain events (Only Onsets, Only "
                  "Offsets).");
    }
    static QString timeFramesNamesLabel() { return tr("Time frame names"); }
    static QString timeFramesNamesTooltip() { return tr("One name per statistic time frame."); }
    static QString offsetTimeFrameLabel() { return tr("Offset time frame"); }
    static QString offsetStatisticTimeFramesLabel() { return tr("Offset statistic time frames"); }
    static QString offsetTimeFramesNamesLabel() { return tr("Offset time frame names"); }
    static QString eventRangeTooltip() { return tr("First and last event number, counted from 1."); }
    static QString timePeriodTooltip()
    {
        return tr("Event array (with its group and the name of the period) whose periods select the events.");
    }
    static QString timePeriodPathLabel() { return tr("Time period group"); }
    static QString timePeriodNameLabel() { return tr("Time period name"); }
    static QString normalizeEventTooltip()
    {
        return tr("Events whose chunks give the baselines; \"Current Event\" or absent uses the analysed "
                  "chunks.");
    }
    static QString normalizeEventPathLabel() { return tr("Normalization event group"); }

    static QString perieventsWindowTitle() { return tr("Perievents Parameters"); }
    static QString eventLabel() { return tr("Event"); }
    static QString onsetOffsetLabel() { return tr("Onset/Offset"); }
    static QString onsetOffsetTooltip()
    {
        return tr("If event array contains onsets and offsets, it is possible to calculate perievents before "
                  "onset, or offset, or both.");
    }
    static QString onsetLabel() { return tr("Onset"); }
    static QString offsetLabel() { return tr("Offset"); }
    static QString onsetBoxTooltip()
    {
        return tr(
            "Onset perievent parameters. Select perievent time frame and area under curve time frames.");
    }
    static QString offsetBoxTooltip()
    {
        return tr(
            "Offset perievent parameters. Select perievent time frame and area under curve time frames.");
    }
    static QString timeFrameLabel() { return tr("Time Frame"); }
    static QString timeFrameTooltip() { return tr("Perievent time frame before and after the event"); }
    static QString timeFrameDetailedTooltip()
    {
        return tr(
            "For each timestamp of the selected event array, a perievent chunk is taken from the signal. "
            "The beginning of each chunk corresponds to the (event timestamp - time frame start), and the "
            "end -- to the (event timestamp + time frame end).");
    }
    static QString statisticTimeFramesLabel() { return tr("Statistic Time Frames"); }
    static QString nameColumnLabel() { return tr("Name"); }
    static QString startColumnLabel() { return tr("Start"); }
    static QString endColumnLabel() { return tr("End"); }
    static QString statisticTimeFramesTooltip()
    {
        return tr(
            "Perievent statistic is calculated only for the time frames indicated in the table. Add as "
            "many time frames as needed. The start and end of the time frames must not exceed the limits "
            "of the perievent time frame indicated above.");
    }
    static QString addStatisticRowTooltip() { return tr("Add a row to statistic table."); }
    static QString statisticLabel() { return tr("Statistic"); }
    static QString statisticTooltip()
    {
        return tr(
            "Select statistic to be calculated on the perievent signal chunks:<br><b>AUC</b> calculates "
            "area under curve of the signal chunk, and normalizes to 1 second;<br><b>Mean</b> calculates "
            "mean value of the signal chunk;<br><b>Median</b> calculates median value of the signal "
            "chunk;<br><b>Maximum</b> finds maximum signal intensity;<br><b>Minimum</b> finds minimum "
            "signal intensity.");
    }
    static QString normalizeLabel() { return tr("Normalize"); }
    static QString normalizeTooltip() { return tr("Aligns signal chunks to the same zero level"); }
    static QString normalizeDetailedTooltip()
    {
        return tr(
            "Allows to align all the perievent chunks of the selected signal to the same 0 level by "
            "calculating signal average value within the Normalize time frame (e.g. -2 - -1 sec) and "
            "subtracting it from the perievent chunk.  If the time frame is 0 - 0 sec, no normalization "
            "is applied, and the chunks are aligned to the global 0 level.");
    }
    static QString selectEventsLabel() { return tr("Select Events"); }
    static QString selectEventsTooltip()
    {
        return tr(
            "If checked, user can select the <b>number</b> and <b>the position</b> of the events for the "
            "perievent analysis.<br>For example, if user enters 2 in event number and selects 'from "
            "start' - first 2 events are used for the analysis.<br>In the default unchecked state, the "
            "analysis is performed using all the events.");
    }
    static QString timePeriodLabel() { return tr("Time Period"); }
    static QString resampleLabel() { return tr("Resample"); }
    static QString resampleTooltip()
    {
        return tr("Resamples time to the specified frequency and interpolates signal.");
    }
    static QString rangeLabel() { return tr("Range"); }
    static QString previewLabel() { return tr("Select signal chunk for preview."); }
    static QString otherEventLabel() { return tr("Other Event"); }
    static QString methodLabel() { return tr("Method"); }
    static QString sourceLabel() { return tr("Source"); }
    static QString frequencyLabel() { return tr("Frequency (Hz)"); }
    static QString removeStatisticRowTooltip()
    {
        return tr("Remove the selected rows from statistic table.");
    }
    /// %1 first, %2 last event time whose whole chunk fits in the signal, seconds.
    static QString rangeText() { return tr("Events between %1 and %2 sec"); }
    static QString noRangeText() { return tr("No signal selected"); }
    /// Name of a new statistic time frame, %1 its 1-based row.
    static QString defaultFrameName() { return tr("TimeFrame%1"); }

    // The result views.
    static QString heatMapTitle() { return tr("Heat Map"); }
    static QString tracesTitle() { return tr("Mean ± SEM"); }
    static QString statisticsTitle() { return tr("Statistics"); }
    static QString meanTraceName() { return tr("Mean"); }
    static QString semBandName() { return tr("SEM"); }
    static QString exportCsvLabel() { return tr("Export CSV..."); }
    static QString exportCsvTooltip()
    {
        return tr("Export the perievent matrix and every statistic to .csv files, one row per event.");
    }
    static QString csvFilter() { return tr("CSV File (*.csv)"); }
    /// %1 result path, %2 reason.
    static QString cannotReadResultMessage() { return tr("Cannot read the perievent result <b>%1</b>: %2"); }
    static QString notAResultMessage() { return tr("Not a perievent matrix."); }

    // Progress and messages.
    static QString perieventProgressLabel() { return tr("Calculating perievent arrays..."); }
    static QString noDatasetsMessage() { return tr("No datasets set to the operation"); }
    /// %1 event path, %2 event name.
    static QString cannotLoadEventMessage()
    {
        return tr("Cannot find/load event <b>%1/%2</b> from the file.");
    }
    /// %1 the selection that could not be satisfied.
    static QString cannotPickEventsMessage() { return tr("Cannot pick selected events %1."); }
    /// %1 normalisation event name, %2 analysed event name.
    static QString normalizationCountMessage()
    {
        return tr(
            "Events <b>%1</b> used for normalization and events <b>%2</b> do not have the same number of "
            "events.");
    }
    /// %1 normalisation event name, %2 analysed event name.
    static QString normalizationOnOffMessage()
    {
        return tr("Events <b>%1</b> used for normalization and events <b>%2</b> have not the same OnSet "
                  "OffSet.");
    }
    /// %1 signal duration, %2 window start, %3 window end (seconds).
    static QString signalTooShortMessage()
    {
        return tr(
            "Impossible to calculate perievents, since the duration of the signal (%1) is shorter than the "
            "selected perievent window (%2 -- %3).");
    }
    static QString incorrectTimeFramesMessage()
    {
        return tr(
            "Incorrect statistic time frames. Please verify that all the time frames are well defined.");
    }
    /// %1 kept events, %2 the most a result can name.
    static QString tooManyEventsMessage()
    {
        return tr(
            "The perievent result holds <b>%1</b> events, more than the <b>%2</b> a result can name. Select "
            "fewer events.");
    }
    static QString oldFormatMessage()
    {
        return tr("Perievent was saved in the old format, and has to be resaved.<br>Please be patient.");
    }
};

} // namespace zarvi
