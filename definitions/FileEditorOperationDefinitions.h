#pragma once

#include <QCoreApplication>
#include <QString>

namespace zarvi {

/// Holds the names and keys of the file-editing operations (conversion, export, merge, split)
/// and the messages of the file-format readers and writers they use. Keys are never
/// translated; messages go through tr. Constants only, safe from any thread.
class FileEditorOperationDefinitions
{
    Q_DECLARE_TR_FUNCTIONS(FileEditorOperationDefinitions)

public:
    static inline const QString Convert = QStringLiteral("Convert");
    static inline const QString Export = QStringLiteral("Export");
    static inline const QString Merge = QStringLiteral("Merge");
    static inline const QString Split = QStringLiteral("Split");

    /// Header of an exported column that carries a unit: "Time (s)".
    static inline const QString ColumnWithUnitPattern = QStringLiteral("%1 (%2)");
    /// Names of the sheets of an exported workbook, numbered from 1.
    static inline const QString SheetPattern = QStringLiteral("Sheet%1");

    // Shared by every reader and writer.
    static QString missingFileMessage() { return tr("<b>%1</b> does not exist."); }
    static QString folderNotFileMessage() { return tr("<b>%1</b> is a folder, not a file."); }
    static QString notRegularFileMessage()
    {
        return tr("<b>%1</b> is not a regular file (a pipe, a device or a socket); give a file.");
    }
    static QString unableToOpenMessage() { return tr("Unable to open <b>%1</b>."); }
    static QString unableToCreateMessage() { return tr("Unable to create <b>%1</b>: %2"); }
    static QString unableToWriteMessage() { return tr("Unable to write <b>%1</b>: %2"); }
    static QString sharedTimeLengthMessage()
    {
        return tr("Signal <b>%1</b> got %2 samples, but the times it shares with another signal number %3.");
    }
    static QString notOpenMessage() { return tr("No file is open."); }
    static QString canceledMessage() { return tr("The operation was canceled."); }

    // TIFF stacks. %1 in the page messages is the page's location (see tiffPageLocation).
    static QString tiffPageLocation() { return tr("Page %1 of <b>%2</b>"); }
    static QString notTiffMessage() { return tr("<b>%1</b> is not a TIFF file."); }
    static QString tiffReadErrorMessage() { return tr("Unable to read %1: %2"); }
    static QString emptyTiffFolderMessage() { return tr("The folder <b>%1</b> holds no TIFF files."); }
    /// %1 file, %2 frames its ImageJ description announces, %3 frames it holds.
    static QString fewerFramesMessage()
    {
        return tr(
            "Warning: <b>%1</b> announces %2 frames but holds %3; the %3 frames it holds were imported.");
    }
    static QString multiPageInFolderMessage()
    {
        return tr("<b>%1</b> holds %2 pages; a folder of images must hold single-page TIFF files.");
    }
    static QString rgbImageMessage()
    {
        return tr("%1 is an RGB image; only greyscale stacks can be converted.");
    }
    static QString multiSampleMessage()
    {
        return tr("%1 has %2 samples per pixel; only greyscale stacks can be converted.");
    }
    static QString paletteImageMessage()
    {
        return tr("%1 is a colour-palette image; only greyscale stacks can be converted.");
    }
    static QString bitDepthMessage()
    {
        return tr("%1 has %2 bits per sample; only 8-bit and 16-bit stacks can be converted.");
    }
    static QString floatSamplesMessage()
    {
        return tr("%1 holds floating-point samples; only unsigned integer stacks can be converted.");
    }
    static QString signedSamplesMessage()
    {
        return tr("%1 holds signed integer samples; only unsigned integer stacks can be converted.");
    }
    static QString mixedFrameSizeMessage()
    {
        return tr("%1 is %2 × %3 pixels, but the first frame is %4 × %5 pixels; all frames of a stack "
                  "must have the same size.");
    }
    static QString mixedBitDepthMessage()
    {
        return tr("%1 has %2 bits per sample, but the first frame has %3; all frames of a stack must "
                  "have the same bit depth.");
    }
    static QString noPixelsMessage() { return tr("%1 holds an image of %2 × %3 pixels."); }
    static QString incompleteImageText() { return tr("the image data is incomplete"); }
    /// %1 page location, %2 bytes the page declares, %3 bytes its file holds.
    static QString declaredBeyondFileMessage()
    {
        return tr("%1 declares <b>%2 bytes</b> of image data, but the file holds only %3 bytes; it is "
                  "damaged or not a valid TIFF file.");
    }
    /// %1 page location, %2 megabytes one frame needs, %3 megabytes of memory.
    static QString frameTooLargeMessage()
    {
        return tr("%1 declares images that need <b>%2 MB</b> of memory for each frame, more than the "
                  "%3 MB this computer has.");
    }
    static QString frameOutOfRangeMessage()
    {
        return tr("Frame %1 does not exist; the stack has %2 frames.");
    }
    static QString frameBufferSizeMessage()
    {
        return tr("The frame buffer holds %1 pixels, but a frame has %2 pixels.");
    }
    static QString invalidFrameSizeMessage() { return tr("A frame of %1 × %2 pixels cannot be written."); }
    static QString writeBitDepthMessage()
    {
        return tr("TIFF stacks are written with 8 or 16 bits per sample, not %1.");
    }
    static QString noFramesMessage() { return tr("A TIFF stack needs at least one frame."); }
    static QString classicTiffTooLargeMessage()
    {
        return tr("The stack needs %1 GB, more than a classic TIFF file can hold (4 GB); write it as "
                  "BigTIFF.");
    }
    static QString tooManyFramesMessage()
    {
        return tr("<b>%1</b> was opened for %2 frames; no further frame can be written.");
    }
    static QString missingFramesMessage()
    {
        return tr("Only %1 of the %2 frames were written to <b>%3</b>.");
    }

    // Videos.
    static QString videoOpenMessage()
    {
        return tr("<b>%1</b> could not be opened as a video; the file may be damaged or in a format "
                  "that cannot be decoded.");
    }
    static QString videoFrameLocation() { return tr("Frame %1 of <b>%2</b>"); }
    static QString videoTruncatedMessage()
    {
        return tr("Only %1 of the %2 frames announced by <b>%3</b> could be read; the file may be "
                  "truncated or damaged.");
    }

    // Spreadsheets. Line and column numbers count from 1.
    static QString emptyFileMessage() { return tr("<b>%1</b> is empty."); }
    static QString noDataRowsMessage() { return tr("<b>%1</b> holds a header but no data rows."); }
    static QString readFailedMessage() { return tr("Unable to read <b>%1</b> to the end."); }
    static QString notNumberMessage() { return tr("Line %1, column %2: '%3' is not a number."); }
    static QString emptyCellMessage() { return tr("Line %1, column %2 is empty."); }
    static QString columnCountMessage() { return tr("Line %1 has %2 columns, expected %3."); }
    static QString tooManyColumnsMessage()
    {
        return tr("The table has <b>%1</b> columns; at most <b>%2</b> can be converted.");
    }
    static QString missingColumnMessage() { return tr("Column %1 does not exist; the file has %2 columns."); }
    static QString timeAndEventColumnMessage()
    {
        return tr("Column %1 cannot be both the time column and an event column.");
    }
    static QString twoRolesColumnMessage() { return tr("Column %1 is given two roles; choose one."); }
    static QString triggerWithoutTimeMessage()
    {
        return tr("A trigger column needs the time column: its edges are taken at the times of the samples.");
    }
    static QString emptyTableMessage() { return tr("The table to export has no columns."); }
    static QString tooManySheetColumnsMessage()
    {
        return tr("The table has %1 columns, but an Excel sheet holds at most %2; export it as .csv "
                  "instead.");
    }

    // Names written by the conversions and the export (keys: never translated).
    /// Suffix of the version-6 copy of a version-5 file: "<name>_V6.orvel".
    static inline const QString Version6CopySuffix = QStringLiteral("_V6");
    /// Row names of an exported 2-D result that names no rows, numbered from 1.
    static inline const QString RowPattern = QStringLiteral("Row%1");
    /// Header of the row-names column of exported event arrays.
    static inline const QString EventRowsTitle = QStringLiteral("Event");
    /// Exported event columns: "<array> Onset (s)", "<array> Offset (s)".
    static inline const QString OnsetColumnPattern = QStringLiteral("%1 Onset");
    static inline const QString OffsetColumnPattern = QStringLiteral("%1 Offset");
    /// Exported columns of a 2-D result without a time axis: "<dataset> <column from 1>".
    static inline const QString MatrixColumnPattern = QStringLiteral("%1 %2");
    /// Unit of times and of event arrays.
    static inline const QString SecondsUnit = QStringLiteral("s");
    /// Columns and unit of exported coordinates.
    static inline const QString XColumn = QStringLiteral("X");
    static inline const QString YColumn = QStringLiteral("Y");
    static inline const QString PixelUnit = QStringLiteral("px");

    // Conversion.
    static QString deviceNameMessage()
    {
        return tr("The device name <b>%1</b> cannot be used: a name must not be empty, hold \"/\" or \"\\\", "
                  "be a reserved name of the data file or contain \"Series\".");
    }
    static QString sensorNameMessage()
    {
        return tr("The sensor name <b>%1</b> cannot be used: a name must not be empty, hold \"/\" or \"\\\", "
                  "be a reserved name of the data file or contain \"Series\".");
    }
    static QString renamedColumnMessage()
    {
        return tr("Column <b>%1</b> is stored as <b>%2</b>: a name must not hold \"/\" or \"\\\", be a "
                  "reserved name of the data file, contain \"Series\" or repeat another column's name.");
    }
    static QString seriesNumberMessage() { return tr("Series numbers start at 1, not %1."); }
    static QString pathExistsMessage()
    {
        return tr("<b>%1</b> already exists in <b>%2</b>; choose another series or sensor name.");
    }
    static QString notVersion6TargetMessage()
    {
        return tr("<b>%1</b> is not a version-6 data file; convert into a data file or into a new file.");
    }
    static QString experimentTargetMessage()
    {
        return tr("<b>%1</b> is an experiment file; convert into a data file or into a new file.");
    }
    static QString frameRateMessage()
    {
        return tr("Enter a frame rate above 0 Hz, or choose a timestamps file.");
    }
    static QString timestampsColumnsMessage()
    {
        return tr("<b>%1</b> must hold one column of times in seconds, but it holds %2.");
    }
    static QString timestampCountMessage()
    {
        return tr("<b>%1</b> holds %2 timestamps, but the stack has %3 frames.");
    }
    static QString notWorkbookMessage() { return tr("<b>%1</b> is not an Excel workbook (.xlsx): %2"); }
    static QString workbookPartMissingMessage()
    {
        return tr("<b>%1</b> is damaged: its part <b>%2</b> is missing.");
    }
    static QString workbookPartDamagedMessage()
    {
        return tr("<b>%1</b> is damaged: its part <b>%2</b> is not readable XML (%3).");
    }
    static QString workbookNoSheetsMessage() { return tr("<b>%1</b> holds no sheets."); }
    static QString sheetMissingMessage()
    {
        return tr("<b>%1</b> has no sheet named <b>%2</b>; its sheets are %3.");
    }
    static QString spreadsheetNoteText()
    {
        return tr(".csv files and the sheets of .xlsx workbooks are read; dates and times in a workbook are "
                  "read as the serial numbers the workbook stores.");
    }
    static QString noTimeColumnMessage() { return tr("Choose the column that holds the time."); }
    static QString noValueColumnsMessage()
    {
        return tr("<b>%1</b> holds no value or event columns besides the time.");
    }
    static QString version5TargetExistsMessage()
    {
        return tr("<b>%1</b> already exists; a version-5 file is copied into a new file.");
    }
    static QString sameFileMessage()
    {
        return tr("The file to convert and the data file are the same file.");
    }
    static QString version5NoDataMessage() { return tr("<b>%1</b> holds no data groups to copy."); }
    static QString version5CopiedMessage()
    {
        return tr("<b>%1</b> is a version-5 data file. Its groups %2 were copied as they are into the new "
                  "version-6 file <b>%3</b>, without \"Configurations\". Their contents keep the version-5 "
                  "layout: they are not rearranged into version-6 paths.");
    }
    static QString unableToCopyMessage() { return tr("Unable to copy <b>%1</b>: %2"); }
    static QString unableToFinishMessage() { return tr("Unable to complete <b>%1</b>: %2"); }
    static QString convertedTitle() { return tr("Conversion"); }
    static QString convertedMessage() { return tr("Written to <b>%1</b>:<br>%2"); }
    static QString convertingLabel() { return tr("Converting <b>%1</b>..."); }

    // Recordings of acquisition systems.
    /// Names of the detected formats as the summary and the parameters show them (keys).
    static inline const QString PyPhotometryFormat = QStringLiteral("pyPhotometry");
    static inline const QString NeurophotometricsFormat = QStringLiteral("Neurophotometrics");
    static inline const QString TdtFormat = QStringLiteral("TDT");
    /// Parameters recorded on converted recordings.
    static inline const QString FormatKey = QStringLiteral("Format");
    static inline const QString AcquisitionModeKey = QStringLiteral("AcquisitionMode");
    static inline const QString VoltsPerDivisionKey = QStringLiteral("VoltsPerDivision");
    static inline const QString TimeOriginKey = QStringLiteral("TimeOrigin(s)");
    static inline const QString StoresKey = QStringLiteral("Stores");
    static inline const QString DigitalInputsKey = QStringLiteral("DigitalInputsFile");
    static inline const QString VoltsUnit = QStringLiteral("V");
    /// Neurophotometrics signals: "<region column>-<wavelength>", e.g. "Region0G-470".
    static inline const QString RegionWavelengthPattern = QStringLiteral("%1-%2");
    /// A Neurophotometrics LED state without a known wavelength.
    static inline const QString LedStatePattern = QStringLiteral("LED%1");
    /// A channel of a multi-channel TDT store: "<store>-<channel>".
    static inline const QString StoreChannelPattern = QStringLiteral("%1-%2");
    static QString unknownContentMessage()
    {
        return tr(
            "<b>%1</b> is not a recording this program reads. Expected a pyPhotometry file (.ppd), a "
            "Neurophotometrics .csv (FrameCounter, timestamp, LedState or Flags, one column per region), "
            "a TDT block folder (.tsq and .tev), a spreadsheet (.csv), a TIFF stack, a video or a data "
            "file of the previous version.");
    }
    static QString doricNotReadMessage()
    {
        return tr("<b>%1</b> is an HDF5 file but not a data file of this program or of its previous version; "
                  "Doric .doric files are not read yet.");
    }
    static QString ppdHeaderLengthMessage()
    {
        return tr("The header of <b>%1</b> announces %2 bytes, but only %3 bytes follow; the file is "
                  "truncated or not a pyPhotometry file.");
    }
    static QString ppdHeaderMessage()
    {
        return tr("<b>%1</b> does not start with a pyPhotometry header: %2.");
    }
    static QString ppdTruncatedMessage()
    {
        return tr("<b>%1</b> ends within a sample: %2 bytes of data are not a whole number of %3-channel "
                  "samples; the file is truncated.");
    }
    static QString npmColumnsMessage()
    {
        return tr("<b>%1</b> is not a Neurophotometrics file: its header must name a FrameCounter column, a "
                  "Timestamp or SystemTimestamp column, a LedState or Flags column and Region columns.");
    }
    static QString npmLineMessage() { return tr("<b>%1</b>: %2"); }
    static QString digitalInputsMessage()
    {
        return tr("<b>%1</b> must hold a header with a timestamp column and at least one digital input "
                  "column.");
    }
    static QString tdtNoTankMessage()
    {
        return tr("<b>%1</b> is not a TDT block: it must be a folder holding one .tsq and one .tev file, or "
                  "one of those files.");
    }
    static QString tdtHeaderMessage()
    {
        return tr("<b>%1</b> is not a TDT event index: it does not begin with the block's start mark.");
    }
    static QString tdtTruncatedMessage()
    {
        return tr("<b>%1</b> is truncated: %2 bytes are not a whole number of 40-byte index records.");
    }
    static QString tdtDataMessage()
    {
        return tr("Store <b>%1</b>: a record points past the end of <b>%2</b>; the data file is truncated.");
    }
    static QString tdtFormatMessage() { return tr("Store <b>%1</b> holds samples of unknown format %2."); }
    static QString tdtUnknownStoreMessage() { return tr("The block has no store <b>%1</b>; it has %2."); }
    static QString nothingToConvertMessage() { return tr("<b>%1</b> holds no channels to convert."); }
    static QString foundTitle() { return tr("Found in <b>%1</b> (%2):"); }
    static QString foundSignalText() { return tr("signal <b>%1</b>: %2 samples at %3 Hz"); }
    static QString foundEventsText() { return tr("events <b>%1</b>: %2"); }
    static QString foundDurationText() { return tr("duration %1 s"); }

    // Labels of the Convert dialog.
    static QString convertWindowTitle() { return tr("Convert"); }
    static QString sourceTypeLabel() { return tr("Convert"); }
    static QString tiffFileSourceText() { return tr("TIFF stack (multi-page file)"); }
    static QString tiffFolderSourceText() { return tr("TIFF stack (folder of single images)"); }
    static QString videoSourceText() { return tr("Video (.avi, .mp4, .mpeg)"); }
    static QString spreadsheetSourceText() { return tr("Spreadsheet (.csv)"); }
    static QString version5SourceText() { return tr("Data file of the previous version (V5)"); }
    static QString recordingSourceText()
    {
        return tr("Recording (TDT block, pyPhotometry .ppd, Neurophotometrics .csv)");
    }
    static QString recordingTitle() { return tr("Recording"); }
    static QString storesLabel() { return tr("Stores"); }
    static QString storesTooltip() { return tr("The stores of the TDT block to bring in."); }
    static QString digitalInputsLabel() { return tr("Digital inputs (.csv)"); }
    static QString chooseStoresMessage() { return tr("Choose at least one store to bring in."); }
    static QString recordingFilter() { return tr("Recordings (*.ppd *.csv *.tsq *.tev);;All files (*)"); }
    static QString sourceLabel() { return tr("Source"); }
    static QString browseText() { return tr("..."); }
    static QString namesTitle() { return tr("Path in the data file"); }
    static QString deviceLabel() { return tr("Device"); }
    static QString sensorLabel() { return tr("Sensor"); }
    static QString nextSeriesText() { return tr("Next free series"); }
    static QString seriesLabel() { return tr("Series"); }
    static QString timingTitle() { return tr("Frame times"); }
    static QString frameRateText() { return tr("Frame rate (Hz)"); }
    static QString timestampsText() { return tr("Timestamps file (.csv, one column of seconds)"); }
    static QString asImageStackText() { return tr("Also store the frames as a greyscale image stack"); }
    static QString spreadsheetTitle() { return tr("Columns"); }
    static QString sheetLabel() { return tr("Sheet"); }
    static QString timeColumnLabel() { return tr("Time column"); }
    static QString timeUnitLabel() { return tr("Time unit"); }
    static QString eventColumnsLabel() { return tr("Event columns"); }
    static QString eventColumnsPlaceholder() { return tr("e.g. 4, 5 (counted from 1)"); }
    static QString targetTitle() { return tr("Data file"); }
    static QString existingFileText() { return tr("Existing file"); }
    static QString newFileText() { return tr("New file"); }
    static QString version6TargetPlaceholder() { return tr("beside the source, named <name>_V6.orvel"); }
    static QString convertButtonText() { return tr("Convert"); }
    static QString closeButtonText() { return tr("Close"); }
    static QString tiffFilter() { return tr("TIFF stacks (*.tif *.tiff)"); }
    static QString videoFilter() { return tr("Videos (*.avi *.mp4 *.mpeg *.mpg)"); }
    static QString spreadsheetFilter() { return tr("Spreadsheets (*.csv *.txt *.xlsx *.xlsm)"); }
    static QString chooseSourceMessage() { return tr("Choose the file or folder to convert."); }
    static QString chooseTargetMessage() { return tr("Choose the data file to convert into."); }
    static QString chooseTimestampsMessage() { return tr("Choose the timestamps file."); }
    static QString newFileExistsMessage()
    {
        return tr("<b>%1</b> already exists; choose \"Existing file\" to convert into it.");
    }
    static QString eventColumnsMessage()
    {
        return tr("Event columns are column numbers from 1, separated by commas, not <b>%1</b>.");
    }
    static QString triggerColumnsLabel() { return tr("Trigger columns"); }
    static QString triggerColumnsPlaceholder() { return tr("e.g. 6 or 6:2.5 (column:threshold)"); }
    static QString triggerColumnsTooltip()
    {
        return tr("Columns that record a digital line sample by sample (0/1 or two voltage levels). A "
                  "rising edge becomes an onset and a falling edge an offset. The line is high above the "
                  "threshold: half-way between the column's lowest and highest values, or the number "
                  "typed after a colon.");
    }
    static QString triggerColumnsMessage()
    {
        return tr("Trigger columns are column numbers from 1, each with an optional threshold after a "
                  "colon, separated by commas, not <b>%1</b>.");
    }
    static QString signalUnitLabel() { return tr("Unit of the signals"); }
    static QString columnPreviewTooltip()
    {
        return tr("The first rows of the file, each column with the role it takes in the conversion.");
    }
    static QString timeRoleText() { return tr("Time"); }
    static QString signalRoleText() { return tr("Signal"); }
    static QString signalWithUnitRoleText() { return tr("Signal (%1)"); }
    static QString eventRoleText() { return tr("Event times"); }
    static QString triggerRoleText() { return tr("Trigger, high above half-way"); }
    static QString triggerLevelRoleText() { return tr("Trigger, high above %1"); }
    static QString signalUnitTooltip()
    {
        return tr("The unit of the value columns, used for a column whose header names no unit, as "
                  "\"Green (V)\" does.");
    }
};

} // namespace zarvi
