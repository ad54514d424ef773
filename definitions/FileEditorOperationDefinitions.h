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
    static QString unableToOpenMessage() { return tr("Unable to open <b>%1</b>."); }
    static QString unableToCreateMessage() { return tr("Unable to create <b>%1</b>: %2"); }
    static QString unableToWriteMessage() { return tr("Unable to write <b>%1</b>: %2"); }
    static QString notOpenMessage() { return tr("No file is open."); }
    static QString canceledMessage() { return tr("The operation was canceled."); }

    // TIFF stacks. %1 in the page messages is the page's location (see tiffPageLocation).
    static QString tiffPageLocation() { return tr("Page %1 of <b>%2</b>"); }
    static QString notTiffMessage() { return tr("<b>%1</b> is not a TIFF file."); }
    static QString tiffReadErrorMessage() { return tr("Unable to read %1: %2"); }
    static QString emptyTiffFolderMessage() { return tr("The folder <b>%1</b> holds no TIFF files."); }
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
    static QString missingColumnMessage() { return tr("Column %1 does not exist; the file has %2 columns."); }
    static QString timeAndEventColumnMessage()
    {
        return tr("Column %1 cannot be both the time column and an event column.");
    }
    static QString emptyTableMessage() { return tr("The table to export has no columns."); }
    static QString tooManySheetColumnsMessage()
    {
        return tr("The table has %1 columns, but an Excel sheet holds at most %2; export it as .csv "
                  "instead.");
    }
};

} // namespace zarvi
