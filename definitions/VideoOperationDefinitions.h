#pragma once

#include <QCoreApplication>
#include <QString>

namespace zarvi {

/// Holds the names, parameter keys, attribute names, labels, tooltips and messages of the
/// behaviour operations, which work on linked videos. Keys are never translated; labels
/// and messages go through tr. Constants only, safe from any thread.
class VideoOperationDefinitions
{
    Q_DECLARE_TR_FUNCTIONS(VideoOperationDefinitions)

public:
    // Operation names (the value of "Operations").
    static inline const QString AnimalTracking = QStringLiteral("AnimalTracking");
    static QString animalTrackingTitle() { return tr("Animal Tracking"); }

    // Animal Tracking parameter keys.
    static inline const QString ConvertToGrayscale = QStringLiteral("ConvertToGrayscale");
    static inline const QString HueRange = QStringLiteral("HueRange");
    static inline const QString SaturationRange = QStringLiteral("SaturationRange(%)");
    static inline const QString ValueRange = QStringLiteral("ValueRange(%)");
    static inline const QString FirstFrame = QStringLiteral("FirstFrame");
    static inline const QString LastFrame = QStringLiteral("LastFrame");
    static inline const QString DetectOutliers = QStringLiteral("DetectOutliers");
    static inline const QString Interpolate = QStringLiteral("Interpolate");
    static inline const QString AnimalSize = QStringLiteral("AnimalSize(px)");
    static inline const QString SmoothCoordinates = QStringLiteral("SmoothCoordinates");
    static inline const QString SmoothWindow = QStringLiteral("SmoothWindow(frames)");

    // Attributes of the coordinates.
    static inline const QString Color = QStringLiteral("Color");
    static inline const QString VideoRange = QStringLiteral("VideoRange");
    static inline const QString DifferenceMasterStartToFirstImage =
        QStringLiteral("DifferenceMasterStartToFirstImage");
    /// The colour the track is drawn in, recorded with the coordinates.
    static inline const QString TrackColor = QStringLiteral("#2ecc71");

    // Descriptions.
    static QString animalTrackingDescription()
    {
        return tr("Animal Tracking operation uses threshold method to identify animal on each image. The "
                  "algorithm works the best with high contrast videos (e.g. a black mouse in a white "
                  "cage).For easy setting, use 'Convert to Grayscale' and set Value threshold that removes "
                  "all the background from an image. For advanced setting, uncheck 'Convert to Grayscale', "
                  "and set HSV thresholds -- Hue (animal color), Saturation (animal colorfulness), and "
                  "Value (animal brightness). Please read about HSV image representation for more "
                  "information.");
    }

    // Labels and tooltips.
    static QString thresholdsTitle() { return tr("Thresholds"); }
    static QString convertToGrayscaleLabel() { return tr("Convert to Grayscale"); }
    static QString convertToGrayscaleTooltip()
    {
        return tr("Converts video images from RGB format to gray. Keep it checked if an animal primarily "
                  "differs from background in brightness (white vs black). If unchecked, it will allow to "
                  "set threshold to color (Hue) and colorfulness (Saturation). Espesially relevant for "
                  "videos from thermal cameras or if the background or animal have a specific color.");
    }
    static QString hueRangeLabel() { return tr("Hue range"); }
    static QString hueRangeTooltip() { return tr("Color threshold."); }
    /// The hue as the range test reads it: OpenCV's 8-bit hue of the frame read as RGB,
    /// so that the blue and red of the video trade places.
    static QString hueScaleHint() { return tr("0 - 180: 0 blue, 60 green, 120 red, 180 blue again"); }
    static QString saturationRangeLabel() { return tr("Saturation range"); }
    static QString saturationRangeTooltip() { return tr("Colofulness threshold."); }
    static QString saturationScaleHint() { return tr("0% - gray, lack of color; 100% - primary color"); }
    static QString valueRangeLabel() { return tr("Value range"); }
    static QString valueRangeTooltip() { return tr("Brightness threshold."); }
    static QString valueScaleHint() { return tr("0% - black, no light; 100% - white, bright"); }
    static QString resetParametersLabel() { return tr("Reset Parameters"); }
    static QString resetParametersTooltip()
    {
        return tr("Resets all threshold parameters (Hue, Saturation, Value).");
    }
    static QString lowLabel() { return tr("from"); }
    static QString highLabel() { return tr("to"); }
    static QString frameRangeTitle() { return tr("Video Segment"); }
    static QString firstFrameLabel() { return tr("First frame"); }
    static QString firstFrameTooltip() { return tr("First frame of the video segment."); }
    static QString lastFrameLabel() { return tr("Last frame"); }
    static QString lastFrameTooltip() { return tr("Last frame of the video segment."); }
    static QString previewFrameLabel() { return tr("Preview frame"); }
    static QString previewFrameTooltip() { return tr("Frame to preview the result of thresholding."); }
    static QString coordinatesTitle() { return tr("Coordinates"); }
    static QString detectOutliersLabel() { return tr("Detect outliers coordinates"); }
    static QString detectOutliersTooltip()
    {
        return tr(
            "Detects sudden changes in coordinates that are more than 3 times animal size (estimated on "
            "the preview) and sets them to (-1, -1). If Interpolate is checked, these missing "
            "coordinates are filled in.");
    }
    static QString interpolateLabel() { return tr("Interpolate"); }
    static QString interpolateTooltip()
    {
        return tr("Fills every run of frames without a position that lies between two found positions with "
                  "the straight line between them.");
    }
    static QString animalSizeLabel() { return tr("Animal size"); }
    static QString animalSizeTooltip()
    {
        return tr("Length of the animal in pixels, estimated on the preview frame.");
    }
    static QString smoothCoordinatesLabel() { return tr("Smooth detected coordinates"); }
    static QString smoothCoordinatesTooltip()
    {
        return tr("Smooths the detected coordinates using running average algorithm.");
    }
    static QString smoothWindowLabel() { return tr("Running average window"); }
    static QString smoothWindowTooltip() { return tr("Number of frames averaged for each position."); }
    static QString inputFrameTitle() { return tr("Video frame"); }
    static QString maskTitle() { return tr("Threshold mask"); }
    static QString positionText() { return tr("Animal position: (%1, %2), size %3 px"); }
    static QString noPositionText() { return tr("No animal found on this frame."); }

    // Progress texts.
    static QString findingPositionProgress() { return tr("Finding animal position on image %1 out of %2"); }
    static QString runningAverageProgress() { return tr("Calculating running average..."); }

    // Messages.
    static QString contrastWarning()
    {
        return tr(
            "To be able to use this Animal Tracking operation, make sure your video has high contrast.");
    }
    static QString alreadySavedMessage() { return tr("Dataset <b>%1</b> already saved."); }
    static QString notVideoLinkMessage()
    {
        return tr("<b>%1</b> is not a linked video: a video link is a group with the attributes Filepath or "
                  "RelativeFilePath and a Time dataset.");
    }
    static QString videoNotFoundMessage()
    {
        return tr(
            "The video of <b>%1</b> was not found: neither at <b>%2</b> (its path relative to the data "
            "file) nor at <b>%3</b>. If the video or the data file was moved, put them back in the same "
            "places relative to each other, or link the video again.");
    }
    static QString frameCountMismatchMessage()
    {
        return tr("The video <b>%1</b> has %2 frames, but its link <b>%3</b> records %4. The file may have "
                  "been replaced; link the video again.");
    }
    static QString videoEndedMessage()
    {
        return tr("The video <b>%1</b> ended after %2 frames, before frame %3.");
    }
    static QString noFramesMessage() { return tr("The video link <b>%1</b> has no frames."); }
    static QString frameRangeMessage()
    {
        return tr("The frame range <b>%1 - %2</b> is not inside the video <b>%3</b>, whose frames are "
                  "numbered 0 to %4.");
    }
    static QString rangeValuesMessage()
    {
        return tr("Parameter <b>%1</b> needs two values: the low and the high bound.");
    }
    static QString hueIntegersMessage() { return tr("The bounds of <b>%1</b> must be whole numbers."); }
    static QString emptyRangeMessage()
    {
        return tr("The threshold range <b>%1</b> from %2 to %3 is empty: its low bound is above its high "
                  "bound, so no pixel would be kept.");
    }
    static QString frameOrderMessage() { return tr("The first frame must not come after the last frame."); }
};

} // namespace zarvi
