#pragma once

#include <QCoreApplication>
#include <QString>

namespace zarvi {

/// Labels and messages of the dataset and experiment plug-ins and of the
/// dataset browsers (file tree, attributes, signal and image viewers).
/// Constants only, safe to read from any thread; labels go through tr.
class DatasetDefinitions
{
    Q_DECLARE_TR_FUNCTIONS(DatasetDefinitions)

public:
    // Pages of the view area.
    static QString pipelineTitle() { return tr("Pipeline"); }
    static QString analysisTitle() { return tr("Analysis"); }
    static QString behaviorTitle() { return tr("Behavior"); }
    static QString pipelinePlaceholder() { return tr("The processing pipeline appears here."); }
    static QString analysisPlaceholder() { return tr("The analysis view appears here."); }
    static QString behaviorPlaceholder() { return tr("The behaviour view appears here."); }

    // Modes shown by the main window.
    static QString datasetMode() { return tr("Dataset"); }
    static QString experimentMode() { return tr("Experiment"); }

    // File tree and attributes.
    static QString nameHeader() { return tr("Name"); }
    static QString shapeHeader() { return tr("Shape"); }
    static QString typeHeader() { return tr("Type"); }
    static QString groupType() { return tr("group"); }
    static QString attributeHeader() { return tr("Attribute"); }
    static QString valueHeader() { return tr("Value"); }
    static QString sourceSection() { return tr("Source: %1"); }

    // Access and display messages.
    static QString fileBusyMessage() { return tr("File is busy"); }
    /// Reading the file stopped the separate check that runs before a file is opened.
    static QString damagedFileMessage()
    {
        return tr("The file <b>%1</b> could not be read; it may be damaged.");
    }
    static QString nothingToDisplayMessage() { return tr("Nothing to display in %1."); }
    static QString deleteQuestion()
    {
        return tr("Delete <b>%1</b> from the file?<br>The space it used is reclaimed only when the file is "
                  "repacked.");
    }
    static QString deleteFailedMessage() { return tr("Unable to delete <b>%1</b>: %2"); }
    static QString readFailedMessage() { return tr("Unable to read %1: %2"); }
    static QString notEventArrayMessage() { return tr("not an array of event times in one or two columns"); }

    // Actions of the file tree.
    static QString displayAction() { return tr("Display"); }
    static QString deleteAction() { return tr("Delete"); }

    // Renaming a result.
    static QString renameAction() { return tr("Rename..."); }
    static QString renameTitle() { return tr("Rename"); }
    static QString renameLabel() { return tr("New name of <b>%1</b>:"); }
    static QString renameEmptyMessage() { return tr("The new name is empty."); }
    static QString renameForbiddenTextMessage() { return tr("A name cannot contain <b>%1</b>."); }
    static QString renameReservedMessage()
    {
        return tr("<b>%1</b> is a name the file keeps for its own levels and datasets.");
    }
    static QString renameExistsMessage() { return tr("<b>%1</b> already exists in this group."); }
    static QString renameRefusedMessage()
    {
        return tr("<b>%1</b> cannot be renamed: only the results of processing and analyses can.");
    }
    static QString renameFailedMessage() { return tr("Unable to rename <b>%1</b>: %2"); }
    static QString renamedMessage() { return tr("Renamed %1 to %2"); }

    // Saving the steps that produced a result.
    static QString savePipelineAction() { return tr("Save Pipeline..."); }
    static QString savePipelineTip()
    {
        return tr("Save the operations that produced this result as a pipeline");
    }

    // Compacting the file.
    static QString compactAction() { return tr("Compact File"); }
    static QString compactTip() { return tr("Rewrite the file without the space of deleted data"); }
    static QString compactQuestion()
    {
        return tr("Compact the file now to reclaim the space of deleted data?");
    }
    static QString compactLabel() { return tr("Compacting %1..."); }
    static QString compactedMessage() { return tr("File compacted: %1 → %2"); }

    // Viewers.
    static QString timeAxisLabel() { return tr("Time (s)"); }
    static QString signalAxisLabel() { return tr("Signal"); }
    /// %1 the unit the signals shown share.
    static QString signalUnitAxisLabel() { return tr("Signal (%1)"); }
    static QString frameLabel() { return tr("Frame %1 / %2"); }
    static QString frameTimeLabel() { return tr("Frame %1 / %2   t = %3 s"); }
    static QString pixelLabel() { return tr("x %1  y %2  value %3"); }
    static QString autoContrastLabel() { return tr("Autocontrast"); }
    static QString signalsTabTitle() { return tr("Signals"); }
    static QString eventsTabTitle() { return tr("Events"); }
    static QString showOverSignalsLabel() { return tr("Show over signals"); }
    static QString showOverSignalsTooltip()
    {
        return tr("Draw the events over the signals recorded with them (same device and series)");
    }
    static QString noRecordingSignalsMessage() { return tr("No signals were recorded with %1."); }
    static QString analysisNeedsDataFileMessage()
    {
        return tr("Open a data file and choose the signals to analyse first.");
    }
    static QString previewBoxTooltip()
    {
        return tr("The series and the datasets chosen above, which the operations below run on. Each "
                  "operation's dialog lists them again and previews one of them.");
    }

    /// Percentiles of a frame that autocontrast maps to black and to white.
    static constexpr double AutoContrastLow = 0.5;
    static constexpr double AutoContrastHigh = 99.5;
};

} // namespace zarvi
