#pragma once

#include <QCoreApplication>
#include <QString>

namespace zarvi {

/// The texts of the export: the Export dialog's labels and the messages of the export to
/// tables and TIFF stacks. Messages go through tr. Constants only, safe from any thread.
class ExportDefinitions
{
    Q_DECLARE_TR_FUNCTIONS(ExportDefinitions)

public:
    // Labels of the Export dialog.
    static QString exportWindowTitle() { return tr("Export"); }
    static QString datasetsLabel() { return tr("Datasets"); }
    static QString formatLabel() { return tr("Format"); }
    static QString outputLabel() { return tr("Export to"); }
    static QString framesTitle() { return tr("Frames"); }
    static QString firstFrameLabel() { return tr("First"); }
    static QString lastFrameLabel() { return tr("Last"); }
    static QString exportButtonText() { return tr("Export"); }
    static QString csvFilter() { return tr("Comma-separated values (*.csv)"); }
    static QString xlsxFilter() { return tr("Excel workbooks (*.xlsx)"); }
    static QString tiffExportFilter() { return tr("TIFF stacks (*.tif)"); }
    static QString chooseOutputMessage() { return tr("Choose the file to export to."); }
    static QString signalKindText() { return tr("signal"); }
    static QString eventsKindText() { return tr("events"); }
    static QString matrixKindText() { return tr("2-D result"); }
    static QString imageStackKindText() { return tr("image stack"); }
    static QString coordinatesKindText() { return tr("coordinates"); }

    // Export.
    static QString exportNothingMessage() { return tr("Choose at least one dataset to export."); }
    static QString exportUnknownDatasetMessage()
    {
        return tr("<b>%1</b> is not a signal, an event array, a 2-D result or an image stack; it cannot be "
                  "exported.");
    }
    static QString exportMixedMessage()
    {
        return tr("Signals, event arrays, 2-D results and image stacks are exported separately; choose "
                  "datasets of one kind.");
    }
    static QString exportTimeBaseMessage()
    {
        return tr("<b>%1</b> and <b>%2</b> do not share their time vectors; signals exported together "
                  "must have the same Time. Export them one at a time.");
    }
    static QString exportOneMatrixMessage()
    {
        return tr("2-D results are exported one per file; choose one.");
    }
    static QString exportOneCoordinatesMessage()
    {
        return tr("Coordinates are exported one set per file; choose one.");
    }
    static QString exportOneStackMessage()
    {
        return tr("Image stacks are exported one per file; choose one.");
    }
    static QString exportFormatMessage()
    {
        return tr("Signals, event arrays and 2-D results are exported to .csv or .xlsx, image stacks to "
                  ".tif or .tiff; <b>%1</b> does not fit what was chosen.");
    }
    static QString exportFrameRangeMessage()
    {
        return tr("Frames %1 to %2 do not lie within the stack's %3 frames.");
    }
    static QString exportExtensionMessage()
    {
        return tr("Choose an output file ending in .csv, .xlsx, .tif or .tiff, not <b>%1</b>.");
    }
    static QString fileBusyMessage()
    {
        return tr("<b>%1</b> is in use by a running operation; try again when it has finished.");
    }
    static QString exportedTitle() { return tr("Export"); }
    static QString exportedMessage() { return tr("Exported to <b>%1</b>."); }
    static QString exportingLabel() { return tr("Exporting to <b>%1</b>..."); }
};

} // namespace zarvi
