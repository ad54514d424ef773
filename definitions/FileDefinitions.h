#pragma once

#include <QCoreApplication>
#include <QString>
#include <QStringList>

namespace zarvi {

/// File-level names of the version-6 data file: root categories, data kinds,
/// reserved dataset names, numbered name patterns, common attribute keys and the
/// messages of file classification. Keys are never translated; labels go through tr.
/// Constants only, safe to read from any thread.
class FileDefinitions
{
    Q_DECLARE_TR_FUNCTIONS(FileDefinitions)

public:
    // Program identity as written into the file.
    static inline const QString SoftwareNameValue = QStringLiteral("zarvi");
    static inline const QString SoftwareVersionValue = QStringLiteral("2.0.8.1");
    static inline const QString FileExtension = QStringLiteral(".orvel");
    static constexpr int FormatVersion = 6;

    // Root categories.
    static inline const QString Configurations = QStringLiteral("Configurations");
    static inline const QString DataConverted = QStringLiteral("DataConverted");
    static inline const QString DataImported = QStringLiteral("DataImported");
    static inline const QString DataAcquisition = QStringLiteral("DataAcquisition");
    static inline const QString DataProcessed = QStringLiteral("DataProcessed");
    static inline const QString DataAnalyzed = QStringLiteral("DataAnalyzed");
    static inline const QString DataBehavior = QStringLiteral("DataBehavior");
    static inline const QString ExperimentDesign = QStringLiteral("ExperimentDesign");

    // Data-kind levels inside a category.
    static inline const QString Coordinates = QStringLiteral("Coordinates");
    static inline const QString Events = QStringLiteral("Events");
    static inline const QString Images = QStringLiteral("Images");
    static inline const QString Measures = QStringLiteral("Measures");
    static inline const QString ROISignals = QStringLiteral("ROISignals");
    static inline const QString Signals = QStringLiteral("Signals");
    static inline const QString TimePeriods = QStringLiteral("TimePeriods");
    static inline const QString Video = QStringLiteral("Video");

    /// The sixteen reserved structural names, in the order the program keeps them.
    static const QStringList& reservedNames();
    /// The first eight reserved names: the groups allowed at the root.
    static const QStringList& rootCategories();
    /// Any path component equal to a reserved name or containing "Series" is structural.
    static bool isStructuralName(const QString& component);

    // Reserved dataset names.
    static inline const QString ImageStack = QStringLiteral("ImageStack");
    static inline const QString Time = QStringLiteral("Time");
    /// Values of a 1-D signal, beside its "Time" in the sensor group.
    static inline const QString SignalValues = QStringLiteral("Signal");
    /// Names of the events of an event array, one per row.
    static inline const QString EventNames = QStringLiteral("EventNames");
    /// Names of the periods of a time-period array, one per row.
    static inline const QString PeriodNames = QStringLiteral("PeriodNames");

    // Numbered name patterns (filled with the number in base 10, no padding).
    static inline const QString SeriesPattern = QStringLiteral("Series%1");
    static inline const QString SensorPattern = QStringLiteral("Sensor%1");
    static inline const QString UnitPattern = QStringLiteral("Unit%1");
    static inline const QString ROIPattern = QStringLiteral("ROI%1");
    static inline const QString ZonePattern = QStringLiteral("Zone%1");
    static inline const QString EventPattern = QStringLiteral("Event%1");
    static inline const QString VideoPattern = QStringLiteral("Video%1");
    static inline const QString DataPattern = QStringLiteral("Data%1");
    static inline const QString CoordinatesPattern = QStringLiteral("Coordinates%1");
    static inline const QString AINPattern = QStringLiteral("AIN%1");
    static inline const QString AOUTPattern = QStringLiteral("AOUT%1");
    static inline const QString DIOPattern = QStringLiteral("DIO%1");
    static inline const QString LockInAOUTPattern = QStringLiteral("LockInAOUT%1");
    static inline const QString DeinterleavedDIOPattern = QStringLiteral("DeinterleavedDIO%1");
    static inline const QString EphysPattern = QStringLiteral("Ephys%1");
    static inline const QString IntanPattern = QStringLiteral("Intan%1");
    static inline const QString HeadstagePattern = QStringLiteral("Headstage%1");
    static inline const QString AntennaPattern = QStringLiteral("Antenna%1");
    static inline const QString LifetimePattern = QStringLiteral("Lifetime%1");
    static inline const QString SeedPattern = QStringLiteral("Seed%1");
    static inline const QString FramePattern = QStringLiteral("Frame_%1");
    /// "category/device/kind/series/sensor", used by the conversions.
    static inline const QString DataPathPattern = QStringLiteral("%1/%2/%3/%4/%5");
    static inline const QString SeriesText = QStringLiteral("Series");

    // Common attribute and parameter keys.
    static inline const QString Username = QStringLiteral("Username");
    static inline const QString Unit = QStringLiteral("Unit");
    static inline const QString TimeKey = QStringLiteral("Time");
    static inline const QString SampleRate = QStringLiteral("SampleRate");
    static inline const QString Operations = QStringLiteral("Operations");
    static inline const QString Parameters = QStringLiteral("Parameters");
    static inline const QString Source = QStringLiteral("Source");
    static inline const QString SourceDataset = QStringLiteral("SourceDataset");
    static inline const QString SourceDatapath = QStringLiteral("SourceDatapath");
    static inline const QString SourceDatapaths = QStringLiteral("SourceDatapaths");
    static inline const QString SourceFilepath = QStringLiteral("SourceFilepath");
    static inline const QString SourceFile = QStringLiteral("SourceFile");
    static inline const QString SourceFiles = QStringLiteral("SourceFiles");
    static inline const QString ReferenceDatapath = QStringLiteral("ReferenceDatapath");
    static inline const QString ReferenceFilepath = QStringLiteral("ReferenceFilepath");
    static inline const QString Device = QStringLiteral("Device");
    static inline const QString Sensor = QStringLiteral("Sensor");
    static inline const QString Series = QStringLiteral("Series");
    static inline const QString Format = QStringLiteral("Format");
    static inline const QString BitCount = QStringLiteral("BitCount");
    static inline const QString Height = QStringLiteral("Height");
    static inline const QString Width = QStringLiteral("Width");
    static inline const QString FrameRate = QStringLiteral("FrameRate");
    static inline const QString Filepath = QStringLiteral("Filepath");
    static inline const QString Filename = QStringLiteral("Filename");
    static inline const QString RelativeFilePath = QStringLiteral("RelativeFilePath");
    static inline const QString Created = QStringLiteral("Created");
    static inline const QString Edited = QStringLiteral("Edited");
    static inline const QString SoftwareName = QStringLiteral("SoftwareName");
    static inline const QString SoftwareVersion = QStringLiteral("SoftwareVersion");
    static inline const QString EditingSoftwareName = QStringLiteral("EditingSoftwareName");
    static inline const QString EditingSoftwareVersion = QStringLiteral("EditingSoftwareVersion");
    static inline const QString FileType = QStringLiteral("FileType");

    /// Pixel format code of 16-bit greyscale, written by the conversions.
    static constexpr int Format16BitGrayscale = 28;

    // File dialog filters.
    static inline const QString FileFilter = QStringLiteral("Orvel File (*.orvel)");
    static inline const QString FilesFilter = QStringLiteral("Orvel Files (*.orvel)");
    static inline const QString FileVersionFilterPattern = QStringLiteral("Orvel File V%1 (*.orvel)");
    static inline const QString FilesV5Filter = QStringLiteral("Orvel Files V5 (*.orvel)");

    // Tab titles.
    static QString dataTabTitle() { return tr("Data (%1)"); }
    static QString experimentTabTitle() { return tr("Experiment (%1)"); }

    // Messages of classification and version detection.
    static QString unrecognizedFileMessage()
    {
        return tr("File type is unrecognized.<br>Please load a file that was created with ONS or zarvi, "
                  "otherwise please use Convert operation.");
    }
    static QString latestVersionMessage()
    {
        return tr("The loaded file has the latest version (V6) -- no conversion required.");
    }
    static QString configurationOnlyMessage()
    {
        return tr("The file contains configuration but not data -- nothing to convert.");
    }
    static QString notOrvelFormatMessage() { return tr("Loaded file is not in .orvel format."); }
    static QString incorrectFileFormatTitle() { return tr("Incorrect File Format"); }
    static QString unableToCreateGroupMessage() { return tr("Unable to create a group <b>%1</b>."); }
    static QString fileInUseMessage()
    {
        return tr("The file <b>%1</b> is in use by another program. Close it there and try again.");
    }
    static QString datasetNotFoundMessage() { return tr("Dataset <b>%1</b> was not found in the file."); }
    static QString notOneDimensionalMessage() { return tr("Dataset <b>%1</b> is not a 1-D signal."); }
    static QString unableToCreateDatasetMessage() { return tr("Unable to create a dataset <b>%1</b>."); }
    static QString unableToWriteAttributeMessage()
    {
        return tr("Unable to write the attributes of <b>%1</b>.");
    }
    static QString unableToOverwriteMessage()
    {
        return tr("Unable to overwrite existing dataset %1. Make sure the file is not open somewhere else "
                  "and the dataset is not loaded to the view.");
    }
    static QString notImageStackMessage()
    {
        return tr("<b>%1</b> is not an image stack: an image stack has three dimensions (height, width, "
                  "frames).");
    }
    static QString stackTimeMismatchMessage()
    {
        return tr("The image stack <b>%1</b> has %2 frames but its Time has %3 entries.");
    }
    static QString unableToReadFrameMessage() { return tr("Unable to read frame %1 of <b>%2</b>."); }
    static QString unableToWriteFrameMessage() { return tr("Unable to write frame %1 of <b>%2</b>."); }
    static QString repackFailedMessage() { return tr("Failed to repack file <b>%1</b>."); }
    static QString repackFailedTitle() { return tr("Error File Repacking"); }
};

} // namespace zarvi
