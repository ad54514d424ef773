#pragma once

#include <QCoreApplication>
#include <QString>

namespace zarvi {

/// Names, keys, labels, tooltips and messages of the behaviour page (the linked video, its
/// arena, zones and calibration) and of the "Measures" operation. Keys are never
/// translated; labels and messages go through tr. Constants only, safe from any thread.
class BehaviorViewDefinitions
{
    Q_DECLARE_TR_FUNCTIONS(BehaviorViewDefinitions)

public:
    // The operation, its output and its keys.
    static inline const QString MeasuresOperation = QStringLiteral("Measures");
    static inline const QString MeasuresOutput = QStringLiteral("Measures");
    static inline const QString MeasuresTable = QStringLiteral("Measures");
    static inline const QString ArenaCoordinates = QStringLiteral("ArenaCoordinates");
    static inline const QString ArenaRoiShape = QStringLiteral("ArenaRoiShape");
    static inline const QString CalibrationCoordinates = QStringLiteral("CalibrationCoordinates");
    static inline const QString CalibrationLength = QStringLiteral("CalibrationLength(cm)");
    static inline const QString Zones = QStringLiteral("Zones");
    static inline const QString TimeBin = QStringLiteral("TimeBin(sec)");

    // Regions as the user sees them.
    static QString arenaName() { return tr("Arena"); }
    static QString animalName() { return tr("Animal"); }
    static QString calibrationName() { return tr("Calibration"); }
    static QString arenaShapeLabel() { return tr("Arena Shape"); }
    static QString zonesShapeLabel() { return tr("Select Zones Shape"); }
    static QString arenaMissingMessage()
    {
        return tr(
            "No Arena found. Draw Arena before moving forward.<br> For polygon type, please don't forget "
            "to finish drawing it by double-clicking.");
    }

    // Measures table: row names, column names and units.
    static QString wholeRecordingRow() { return tr("Whole recording"); }
    static QString binRowPattern() { return tr("Bin%1"); }
    static inline const QString StartColumn = QStringLiteral("Start");
    static inline const QString EndColumn = QStringLiteral("End");
    static inline const QString DistanceColumn = QStringLiteral("Distance");
    static inline const QString MeanSpeedColumn = QStringLiteral("MeanSpeed");
    static inline const QString TrackedTimeColumn = QStringLiteral("TrackedTime");
    static inline const QString RegionTimeColumn = QStringLiteral("%1 Time");
    static inline const QString RegionFractionColumn = QStringLiteral("%1 Fraction");
    static inline const QString RegionEntriesColumn = QStringLiteral("%1 Entries");
    static inline const QString Seconds = QStringLiteral("s");
    static inline const QString Centimetres = QStringLiteral("cm");
    static inline const QString CentimetresPerSecond = QStringLiteral("cm/s");
    static inline const QString Pixels = QStringLiteral("px");
    static inline const QString PixelsPerSecond = QStringLiteral("px/s");

    // The operation's texts.
    static QString measuresDescription()
    {
        return tr("Measures the tracked path: distance travelled and mean speed (in cm and cm/s when a "
                  "calibration is given, else in pixels), and the time, fraction of time and entries in the "
                  "arena and in each zone, over the whole recording and per time bin. Each zone's visits are "
                  "also saved as an event array of entries and exits, for the perievent analysis.");
    }
    static QString measuresOutputs()
    {
        return tr(
            "DataBehavior/<device>/Measures/<series>/Measures<K>/<coordinates>/Measures: a table with one "
            "row for the whole recording and one per time bin (columns named by ColumnNames, units in "
            "ColumnUnits); and DataBehavior/<device>/Events/<series>/<zone>: each zone's visits as "
            "[visits, 2] onsets and offsets in seconds");
    }
    static QString arenaCoordinatesLabel() { return tr("Arena"); }
    static QString arenaCoordinatesTooltip()
    {
        return tr(
            "The arena's points, x then y for each, in video pixels: two opposite corners of a rectangle, "
            "the centre and a point on the rim of a circle, or the vertices of a polygon.");
    }
    static QString zonesLabel() { return tr("Zones"); }
    static QString zonesTooltip()
    {
        return tr(
            "The zones, as a list of regions {\"Name\": \"Zone1\", \"Shape\": \"Circle\", \"Points\": [[x0, "
            "y0], [x1, y1]]} in video pixels. Unnamed zones are named Zone1, Zone2, ... in order.");
    }
    static QString calibrationCoordinatesLabel() { return tr("Calibration Line"); }
    static QString calibrationCoordinatesTooltip()
    {
        return tr("The ends of the calibration line, [x0, y0, x1, y1] in video pixels.");
    }
    static QString calibrationLengthLabel() { return tr("Calibration Length"); }
    static QString calibrationLengthTooltip()
    {
        return tr(
            "The true length of the calibration line, in centimetres. With the line's length in pixels it "
            "gives the scale in pixels per centimetre.");
    }
    static QString timeBinLabel() { return tr("Time Bin"); }
    static QString timeBinTooltip()
    {
        return tr("Length of the time bins, in seconds, counted from the first frame. Empty: the whole "
                  "recording only.");
    }

    // The operation's messages.
    static QString badArenaMessage() { return tr("The arena coordinates are incorrect. %1"); }
    static QString pixelPairsMessage() { return tr("<b>%1</b> must hold whole pixel pairs x, y."); }
    static QString zoneShapeMessage()
    {
        return tr(
            "The zone <b>%1</b> is a <b>%2</b>; a zone is a Rectangle, Circle, Polygon or Freehand shape.");
    }
    static QString badCalibrationMessage()
    {
        return tr("The calibration needs both the line's ends <b>[x0, y0, x1, y1]</b> and a length in "
                  "centimetres above 0.");
    }
    static QString noCalibrationLengthMessage()
    {
        return tr("The calibration line <b>%1</b> has no length in pixels.");
    }
    static QString duplicateZoneMessage() { return tr("Two zones are named <b>%1</b>."); }
    static QString zoneNameMessage()
    {
        return tr("The zone name <b>%1</b> holds <b>%2</b>, which a name in the file may not hold.");
    }
    static QString damagedZoneMessage()
    {
        return tr("The zone entry <b>%1</b> has no readable <b>Coordinates</b> and <b>Shape</b>.");
    }
    static QString badTimeBinMessage() { return tr("The time bin must be longer than <b>0 s</b>."); }
    static QString tooManyTimeBinsMessage()
    {
        return tr("The time bin of <b>%1 s</b> cuts the recording into more than <b>%2</b> bins.");
    }
    static QString notCoordinatesMessage()
    {
        return tr("<b>%1</b> is not a Coordinates dataset: it must be 32-bit integers of [frames, 2] with a "
                  "<b>Time</b> of one entry per frame beside it.");
    }
    static QString timeNotIncreasingMessage()
    {
        return tr("The <b>Time</b> of <b>%1</b> does not increase from frame to frame (frame <b>%2</b>).");
    }
    static QString noFramesMessage() { return tr("<b>%1</b> holds no frames."); }
    static QString measuringLabel() { return tr("Measuring the path of %1..."); }

    // The page.
    static QString videoLabel() { return tr("Video"); }
    static QString coordinatesLabel() { return tr("Coordinates"); }
    static QString noCoordinates() { return tr("None"); }
    static QString signalsLabel() { return tr("Signals"); }
    static QString playTooltip() { return tr("Play or pause the video at its recorded rate"); }
    static QString timeText() { return tr("%1 s  (frame %2 / %3)"); }
    static QString noVideoMessage()
    {
        return tr("The file links no behaviour video. Link one with Convert.");
    }
    static QString regionsTitle() { return tr("Arena, Zones and Calibration"); }
    static QString drawArenaLabel() { return tr("Draw Arena"); }
    static QString drawZonesLabel() { return tr("Draw Zones"); }
    static QString drawCalibrationLabel() { return tr("Draw Calibration"); }
    static QString drawAnimalLabel() { return tr("Draw Animal"); }
    static QString clearLabel() { return tr("Clear"); }
    static QString lengthLabel() { return tr("Length (cm)"); }
    static QString scaleText() { return tr("%1 px = %2 cm: <b>%3 px/cm</b>"); }
    static QString noScaleText() { return tr("Not calibrated: distances in pixels"); }
    static QString animalSizeText() { return tr("Animal size: <b>%1 px</b>"); }
    static QString trajectoryTitle() { return tr("Trajectory"); }
    static QString occupancyTitle() { return tr("Occupancy"); }
    static QString occupancyUnit() { return tr("Time (s)"); }
    static QString regionsFromLabel() { return tr("Regions of"); }
    static QString regionsFromTooltip()
    {
        return tr("The video link whose arena, zones and calibration are measured; by default the video the "
                  "coordinates were tracked on.");
    }
    static QString regionsSummary() { return tr("Arena: <b>%1</b><br>Zones: <b>%2</b><br>Scale: <b>%3</b>"); }
    static QString noZones() { return tr("none"); }
    static QString timeBinsLabel() { return tr("Measure per time bin"); }
    static QString chooseCoordinatesMessage()
    {
        return tr("Choose the <b>Coordinates</b> to measure: the file has none tracked yet.");
    }
    static QString regionsNotSavedMessage() { return tr("The regions could not be saved: %1"); }
};

} // namespace zarvi
