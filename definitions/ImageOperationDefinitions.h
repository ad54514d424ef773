#pragma once

#include <QCoreApplication>
#include <QString>

namespace zarvi {

/// Holds the names, parameter keys, method names, labels, tooltips and messages of the
/// image operations. Keys and method names are never translated; labels and messages go
/// through tr. Constants only, safe from any thread.
class ImageOperationDefinitions
{
    Q_DECLARE_TR_FUNCTIONS(ImageOperationDefinitions)

public:
    // Output names.
    static inline const QString BackgroundCorrectedImages = QStringLiteral("BackgroundCorrectedImages");
    static inline const QString BinnedImages = QStringLiteral("BinnedImages");
    static inline const QString CroppedImages = QStringLiteral("CroppedImages");
    static inline const QString DFFImages = QStringLiteral("DFFImages");
    static inline const QString DownSampledImages = QStringLiteral("DownSampledImages");
    static inline const QString MotionCorrectedImages = QStringLiteral("MotionCorrectedImages");
    static inline const QString ReducedStackImages = QStringLiteral("ReducedStackImages");
    static inline const QString SplitedImages = QStringLiteral("SplitedImages");
    static inline const QString StackProjectionImages = QStringLiteral("StackProjectionImages");
    static inline const QString ROISignals = QStringLiteral("ROISignals");
    /// The per-frame shifts of a Motion Correction, beside its output stack.
    static inline const QString AlignmentShifts = QStringLiteral("AlignmentShifts");

    // Operation names (the value of "Operations").
    static inline const QString Binning = QStringLiteral("Binning");
    static inline const QString Crop = QStringLiteral("Crop");
    static inline const QString TemporalDownsample = QStringLiteral("Temporal Downsample");
    static inline const QString DiscardFrames = QStringLiteral("Discard Frames");
    static inline const QString SplitImagesInSeries = QStringLiteral("Split Images in Series");
    static inline const QString RemoveBackground = QStringLiteral("Remove Background");
    static inline const QString StackProjection = QStringLiteral("Stack Projection");
    static inline const QString ROISignalsOperation = QStringLiteral("ROI Signals");
    static inline const QString ImagesDeltaF = QStringLiteral("Images deltaF/F");
    static inline const QString MotionCorrection = QStringLiteral("Motion Correction");

    // Parameter keys.
    static inline const QString BinningFactor = QStringLiteral("BinningFactor");
    static inline const QString CropCoordinates = QStringLiteral("CropCoordinates");
    static inline const QString Factor = QStringLiteral("Factor");
    static inline const QString Method = QStringLiteral("Method");
    static inline const QString DiscardedFrames = QStringLiteral("DiscardedFrames");
    static inline const QString AutodetectCorruptedFrames = QStringLiteral("AutodetectCorruptedFrames");
    static inline const QString InterpolateFrames = QStringLiteral("InterpolateFrames");
    static inline const QString DontSaveParameters = QStringLiteral("DontSaveParameters");
    static inline const QString Duration = QStringLiteral("Duration");
    static inline const QString BackgroundCoordinates = QStringLiteral("BackgroundCoordinates");
    static inline const QString ProjectionMethod = QStringLiteral("ProjectionMethod");
    static inline const QString ConcatenateSeries = QStringLiteral("ConcatenateSeries");
    static inline const QString ROINames = QStringLiteral("ROINames");
    static inline const QString RemoveTemporalVariations = QStringLiteral("RemoveTemporalVariations");
    static inline const QString DarkframeFilepath = QStringLiteral("DarkframeFilepath");
    static inline const QString DarkframeDataset = QStringLiteral("DarkframeDataset");
    static inline const QString F0Method = QStringLiteral("F0Method");
    static inline const QString ReferenceSource = QStringLiteral("ReferenceSource");
    static inline const QString ReferenceFilepath = QStringLiteral("ReferenceFilepath");
    static inline const QString ReferenceDatapath = QStringLiteral("ReferenceDatapath");
    static inline const QString ReferenceFrame = QStringLiteral("ReferenceFrame");
    static inline const QString ApplyShiftsToSensor2 = QStringLiteral("ApplyShiftsToSensor2");

    // Choices.
    static inline const QString Binning2x2 = QStringLiteral("2x2");
    static inline const QString Binning4x4 = QStringLiteral("4x4");
    static inline const QString Skip = QStringLiteral("Skip");
    static inline const QString Mean = QStringLiteral("Mean");
    static inline const QString Sum = QStringLiteral("Sum");
    static inline const QString Minimum = QStringLiteral("Minimum");
    static inline const QString Maximum = QStringLiteral("Maximum");
    static inline const QString StandardDeviation = QStringLiteral("Standard Deviation");
    static inline const QString DetectTimeGaps = QStringLiteral("Detect Time Gaps");
    static inline const QString SplitByDuration = QStringLiteral("Split by Duration");
    static inline const QString DurationFormat = QStringLiteral("HH:mm:ss:zzz");
    static inline const QString CurrentFile = QStringLiteral("Current File");
    static inline const QString ExternalFile = QStringLiteral("External File");
    /// The columns of "AlignmentShifts" ("ColumnNames") and their unit.
    static inline const QString XShift = QStringLiteral("X Shift");
    static inline const QString YShift = QStringLiteral("Y Shift");
    static inline const QString PixelUnit = QStringLiteral("px");

    /// The unit of an ROI signal: a mean of grey levels, which have no physical unit.
    static inline const QString RoiSignalUnit = QStringLiteral("a.u.");

    // Descriptions.
    static QString binningDescription()
    {
        return tr(
            "Binning operation reduces the image size by combining clusters of adjacent pixels into single "
            "pixels. Generally, binned images have reduced relative noise level in each pixel compared to "
            "the original images.");
    }
    static QString cropDescription()
    {
        return tr(
            "Crop operation allows to draw a rectangular ROI on images and save only its internal part.");
    }
    static QString downsampleDescription()
    {
        return tr("Temporal Downsample operation reduces the number of images in a stack.");
    }
    static QString discardFramesDescription()
    {
        return tr("Discard Frames operation removes selected frames from the image stack.");
    }
    static QString splitDescription()
    {
        return tr("Split in Series operation splits input imageStack into several time series.");
    }
    static QString removeBackgroundDescription()
    {
        return tr(
            "Remove Background operation decreases background illumination by calculating average intensity "
            "value inside a drawn ROI and subtracting it from every image in the stack.");
    }
    static QString stackProjectionDescription()
    {
        return tr(
            "Stack Projection operation merges image stack into single image using selected algorithm.");
    }
    static QString motionCorrectionDescription()
    {
        return tr(
            "Motion Correction operation corrects X-Y movement artifacts in an image stack. It aligns the "
            "position of each frame relative to a reference frame using a subpixel image registration "
            "algorithm.");
    }
    static QString roiSignalsDescription()
    {
        return tr("ROI Signals operation extracts one signal per cell ROI: the mean intensity of the pixels "
                  "inside the ROI in every image of the stack.");
    }
    static QString imagesDeltaFDescription()
    {
        return tr(
            "Images deltaF/F operation calculates, for every pixel, the relative change of fluorescence "
            "(F - F0) / F0 in percent, F0 being the mean image of the stack.");
    }

    // Labels and tooltips.
    static QString binningParametersTitle() { return tr("Binning Parameters"); }
    static QString binningFactorLabel() { return tr("Binning Factor"); }
    static QString binningFactorTooltip()
    {
        return tr(
            "Allows to select the binning factor.<br><b>2x2</b> binning reduces the size of the images 4 "
            "times "
            "by combining clusters of 2 by 2 adjacent pixels into single pixels.<br><b>4x4</b> binning "
            "reduces the size of the images 16 times by combining clusters of 4 by 4 adjacent pixels into "
            "single pixels.");
    }
    static QString cropCoordinatesLabel() { return tr("Crop Coordinates"); }
    static QString cropCoordinatesTooltip()
    {
        return tr("The crop area: <b>x</b> and <b>y</b> of its top left pixel, then its <b>width</b> and "
                  "<b>height</b>, in pixels.");
    }
    static QString topLeftLabel() { return tr("Top Left (x, y)"); }
    static QString sizeLabel() { return tr("Size (width, height)"); }
    static QString sizeTooltip() { return tr("Defines the crop area size (in pixels)."); }
    static QString drawCropAreaLabel() { return tr("Draw Crop Area"); }
    static QString squareLabel() { return tr("Square"); }
    static QString squareTooltip() { return tr("Draw a square crop area."); }
    static QString cropAreaName() { return tr("Crop Area"); }
    static QString autocontrastLabel() { return tr("Autocontrast"); }
    static QString downsampleParametersTitle() { return tr("Downsample Parameters"); }
    static QString factorLabel() { return tr("Factor"); }
    static QString factorTooltip()
    {
        return tr("Number of consecutive images combined into one image.<br>With <b>Skip</b>, the step "
                  "between the kept images.");
    }
    static QString methodLabel() { return tr("Method"); }
    static QString downsampleMethodTooltip()
    {
        return tr(
            "Select a method to reduce the number of images:<br><b>Skip</b>: skips images at indices that "
            "divide by the Factor with a reminder.<br><b>Mean</b>: calculates mean of every Factor number of "
            "images.<br><b>Sum</b>: calculates sum of every Factor number of images.<br><b>Minimum</b>: "
            "calculates minimum of every Factor number of images.<br><b>Maximum</b>: calculates maximum of "
            "every Factor number of images.");
    }
    static QString selectFramesLabel() { return tr("Select Frames to Discard"); }
    static QString selectFramesTooltip()
    {
        return tr(
            "To select multiple, hold <b>Ctrl</b><br>To select several in a row, hold <b>Shift</b>, or click "
            "and drag.");
    }
    static QString frameItemLabel() { return tr("Frame %1   t = %2 s"); }
    static QString autodetectLabel() { return tr("Autodetect Black/Corrupted Frames"); }
    static QString autodetectTooltip()
    {
        return tr("Also discards the black frames (every pixel 0) and the corrupted frames, whose mean "
                  "intensity lies more than 5 robust standard deviations from the median of the frame "
                  "means.");
    }
    static QString interpolateLabel() { return tr("Interpolate"); }
    static QString interpolateTooltip()
    {
        return tr(
            "If checked, each discarded frame is replaced by the linear interpolation, in time, between "
            "the nearest kept frames before and after it (a copy of the nearest kept frame at either "
            "end of the stack), so the stack keeps its number of frames. Otherwise the discarded "
            "frames are removed.");
    }
    static QString dontSaveParametersLabel() { return tr("Do not save parameters"); }
    static QString dontSaveParametersTooltip()
    {
        return tr("If checked, the parameters of the operation are not saved in the file group "
                  "ReducedStackImages#. "
                  "This allows to save datasets processed with different parameters in the same group. Be "
                  "careful, since the parameters are not saved, they cannot be retrieved later.");
    }
    static QString splitParametersTitle() { return tr("Split in Series Parameters"); }
    static QString splitMethodTooltip()
    {
        return tr("<b>Detect Time Gaps</b>: a new series starts wherever the time between two images is at "
                  "least the Duration.<br><b>Split by Duration</b>: each series holds the images taken less "
                  "than the Duration after its first image.");
    }
    static QString durationLabel() { return tr("Duration"); }
    static QString splitDurationTooltip()
    {
        return tr("In <b>Detect Time Gaps</b>, sets minimum duration of the time gap.<br>In <b>Split by "
                  "Duration</b>, sets maximum duration of each time series.");
    }
    static QString seriesCountNote() { return tr("The first image stack is split into <b>%1</b> series."); }
    static QString drawBackgroundTitle() { return tr("Draw an ROI to Calculate Background"); }
    static QString frameSliderTooltip() { return tr("Allows to select timestemp in the image stack."); }
    static QString backgroundCoordinatesLabel() { return tr("Background ROI"); }
    static QString backgroundCoordinatesTooltip()
    {
        return tr("The region whose mean intensity is subtracted from every image: one ROI, a "
                  "<b>Rectangle</b>, <b>Circle</b>, <b>Polygon</b> or <b>Freehand</b> shape, in image "
                  "pixels, lying inside the images. A run without it is refused.");
    }
    static QString shapeLabel() { return tr("Shape"); }
    static QString backgroundRoiName() { return tr("Background"); }
    static QString roiNamesLabel() { return tr("ROIs"); }
    static QString roiNamesTooltip()
    {
        return tr("The names of the ROIs whose signals are extracted. When none is given, every cell ROI "
                  "(Rectangle, Circle, Polygon or Freehand) stored with the image stack is used.");
    }
    static QString drawCellsTitle() { return tr("Draw Cells"); }
    static QString roiListTitle() { return tr("ROIs of the Image Stack"); }
    static QString roiListTooltip()
    {
        return tr("Checked ROIs are extracted. Cells drawn or imported here are used once they are saved "
                  "into the file.");
    }
    static QString saveCellsLabel() { return tr("Save Cells"); }
    static QString saveCellsTooltip()
    {
        return tr("Saves the cells drawn or imported here with the image stack.");
    }
    static QString removeRoiLabel() { return tr("Remove ROI"); }
    static QString removeRoiTooltip()
    {
        return tr("Removes the selected ROI; a saved ROI is removed from the file too.");
    }
    static QString importRoisLabel() { return tr("Import ImageJ ROIs..."); }
    static QString importRoisFilter() { return tr("ImageJ ROIs (*.roi *.zip)"); }
    static QString notSavedSuffix() { return tr("(not saved)"); }
    static QString savingRoisProgress() { return tr("Saving ROIs..."); }
    static QString roiErrorTitle() { return tr("ROI Error"); }
    static QString stackProjectionParametersTitle() { return tr("Stack Projection Parameters"); }
    static QString projectionMethodTooltip()
    {
        return tr(
            "Allows to select the type of projection.<br><b>Maximum</b>: keeps only the pixels with maximum "
            "intensity across the time.<br><b>Minimum</b>: keeps only the pixels with minimum intensity "
            "across the time.<br><b>Mean</b>:    averages the intensity of pixels across the "
            "time.<br><b>Sum</b>:     sums the intensity of pixels across time.<br>");
    }
    static QString concatenateSeriesLabel() { return tr("Concatenate Series"); }
    static QString concatenateSeriesTooltip()
    {
        return tr("If checked, stack projection is calculated for each series, and the result images are "
                  "concatenated into single stack.");
    }
    static QString dffParametersTitle() { return tr("dF/F Parameters"); }
    static QString removeTemporalVariationsLabel() { return tr("Remove Global Temporal Variations "); }
    static QString removeTemporalVariationsTooltip()
    {
        return tr("If checked, removes global temporal variations by subtracting from each image its average "
                  "fluorescence intensity.");
    }
    static QString darkframeFilepathLabel() { return tr("Dark Frame File"); }
    static QString darkframeFilepathTooltip()
    {
        return tr("The data file holding the dark frame: an image taken with the light source off, "
                  "subtracted from every image before F0 and dF/F are calculated.");
    }
    static QString darkframeDatasetLabel() { return tr("Dark Frame Dataset"); }
    static QString darkframeDatasetTooltip()
    {
        return tr("The image stack of the dark frame; its first image is the dark frame. It must have the "
                  "size of the images.");
    }
    static QString noDarkframeSelected() { return tr("No dark frame selected"); }
    static QString darkframeWarning()
    {
        return tr("*The correction is more precise if a dark frame is subtracted.");
    }
    static QString chooseDarkframeTooltip() { return tr("Choose the data file holding the dark frame."); }
    static QString clearDarkframeTooltip() { return tr("Subtract no dark frame."); }
    static QString f0MethodLabel() { return tr("F0 Method"); }
    static QString f0MethodTooltip() { return tr("F0 is the mean image of the stack, pixel by pixel."); }
    static QString previewLabel() { return tr("Preview"); }
    static QString dffPreviewTooltip()
    {
        return tr("Calculates F0 over the whole stack, then shows the dF/F of the selected image.");
    }
    static QString dffPreviewHint()
    {
        return tr("Press <b>Preview</b> to see the dF/F of the selected image.");
    }

    static QString motionCorrectionParametersTitle() { return tr("Motion Correction Parameters"); }
    static QString referenceSourceLabel() { return tr("Reference Source"); }
    static QString referenceSourceTooltip()
    {
        return tr(
            "Allows to select a file and a dataset to use as a reference frame from motion "
            "score:<br><b>Current "
            "File</b> - Algorithm uses current file and dataset for reference frame.<br><b>External "
            "File</b> - Algorithm uses external file to select dataset for reference frame.This option is "
            "usefull if several recording sessions were performed on the same subject.");
    }
    static QString referenceFileLabel() { return tr("Reference File"); }
    static QString referenceFileTooltip()
    {
        return tr("Allows to select .orvel file to load reference frame from a different recording session.");
    }
    static QString referenceDatasetLabel() { return tr("Reference Dataset"); }
    static QString referenceFrameLabel() { return tr("Reference Frame"); }
    static QString referenceFrameTooltip() { return tr("Index of the reference frame to align to."); }
    static QString applyShiftsToSensor2Label() { return tr("Apply X-Y shifts to the second sensor"); }
    static QString loadReferenceFrameLabel() { return tr("Load Reference Frame"); }
    static QString browseReferenceFileTitle() { return tr("Select Reference File"); }
    static QString dataFileFilter() { return tr("Orvel files (*.orvel)"); }
    static QString alignmentShiftsTitle() { return tr("Alignment Shifts"); }
    static QString firstFrameLabel() { return tr("First Frame"); }
    static QString lastFrameLabel() { return tr("Last Frame"); }
    static QString previewShiftsLabel() { return tr("Preview Shifts"); }
    static QString timeAxisLabel() { return tr("Time (s)"); }
    static QString shiftAxisLabel() { return tr("Shift (pixels)"); }
    static QString referenceFrameShownLabel() { return tr("Reference frame %1 of %2"); }

    // Progress texts.
    static QString binningProgress() { return tr("Binning images..."); }
    static QString croppingProgress() { return tr("Cropping images..."); }
    static QString downsamplingProgress() { return tr("Downsampling images..."); }
    static QString projectingProgress() { return tr("Projecting images..."); }
    static QString removingBackgroundProgress() { return tr("Removing background..."); }
    static QString extractingRoiSignalsProgress() { return tr("Extracting ROI signals..."); }
    static QString discardingProgress() { return tr("Discarding images..."); }
    static QString splitAnalysisProgress()
    {
        return tr("Analyzing the image stack to determine the split location...");
    }
    static QString savingSeriesProgress() { return tr("Saving time series %1..."); }
    static QString estimatingThresholdProgress() { return tr("Estimating Threshold for Autodetection..."); }
    static QString autodetectingProgress() { return tr("Autodetecting Corrupted frames..."); }
    static QString meanImageProgress() { return tr("Calculating the mean image F0..."); }
    static QString dffProgress() { return tr("Calculating dF/F images..."); }
    static QString calculatingShiftsProgress() { return tr("Calculating motion correction shifts..."); }
    static QString applyingShiftsProgress() { return tr("Applying shifts for sensor %1..."); }

    // Messages.
    static QString noFramesMessage() { return tr("The image stack <b>%1</b> has no frames."); }
    static QString cropCoordinatesMessage()
    {
        return tr("The crop coordinates are incorrect. Make sure to well define the crop ROI.");
    }
    static QString cropOutsideMessage()
    {
        return tr("The crop area is larger than the image size or lies outside the image.");
    }
    static QString backgroundCoordinatesMessage()
    {
        return tr(
            "The coordinates for removing the background are incorrect. Make sure that the ROI for removing "
            "background is drawn correctly.");
    }
    static QString noRoisMessage()
    {
        return tr("The image stack <b>%1</b> has no cell ROIs. Draw the cells on the stack and save them "
                  "(or add them with <b>zarvi-cli rois</b>) before extracting their signals.");
    }
    static QString unknownRoiMessage() { return tr("The image stack <b>%1</b> has no ROI named <b>%2</b>."); }
    static QString notCellRoiMessage()
    {
        return tr("The ROI <b>%1</b> is a <b>%2</b>, which encloses no pixels: only Rectangle, Circle, "
                  "Polygon and Freehand ROIs give a signal.");
    }
    static QString unsavedCellsMessage()
    {
        return tr("Some cells are not saved in the file yet. Click <b>Save Cells</b> first, or remove them.");
    }
    static QString noRoiCheckedMessage() { return tr("Check at least one ROI to extract its signal."); }
    static QString factorTooLargeMessage()
    {
        return tr("The factor <b>%1</b> is larger than the number of images of <b>%2</b> (<b>%3</b>).");
    }
    static QString concatenatedSizeMessage()
    {
        return tr("Image stacks written into one output stack must have the same image size: <b>%1</b> "
                  "is <b>%2 x %3</b>, the output stack <b>%4 x %5</b>.");
    }
    static QString discardedFrameMessage()
    {
        return tr("The frame <b>%1</b> cannot be discarded: the frames of the image stack <b>%2</b> are "
                  "numbered from 0 to <b>%3</b>.");
    }
    static QString allFramesDiscardedMessage()
    {
        return tr("Every frame of the image stack <b>%1</b> would be discarded. Keep at least one frame.");
    }
    static QString splitDurationMessage()
    {
        return tr("The duration <b>%1</b> is incorrect. Write it as <b>%2</b> (hours, minutes, seconds, "
                  "milliseconds), for example 00:00:01:500, and make it longer than zero.");
    }
    static QString projectionMethodMessage()
    {
        return tr("Unable to retrieve the projection method. Make sure one is selected.");
    }
    static QString inputDimensionsMessage()
    {
        return tr(
            "The dimensions of the input dataset are incorrect. Make sure that the operation is applied "
            "to image stack.");
    }
    static QString darkframeSizeMessage()
    {
        return tr("The dark frame <b>%1</b> is <b>%2 x %3</b> pixels but the images of <b>%4</b> are <b>%5 x "
                  "%6</b>. The dark frame must have the size of the images.");
    }
    static QString notSquareMessage()
    {
        return tr(
            "The input images are not square. This operation can only be applied to square images. Use Crop "
            "operation to make images square.");
    }
    /// Follows notSquareMessage() on a line of its own: which stack, and its size.
    static QString notSquareSizeMessage() { return tr("<b>%1</b> is <b>%2 x %3</b> (width x height)."); }
    static QString noExternalFileMessage()
    {
        return tr("No external file was selected. Please select a file.");
    }
    static QString referenceLoadMessage()
    {
        return tr("Unable to load reference frame from the dataset <b>%2</b> of the file <b>%1</b>.");
    }
    static QString referenceSizeMessage()
    {
        return tr(
            "The reference frame size is different from the images size (%1x%2 vs %3x%4).Make sure to load "
            "correct reference.");
    }
    static QString noShiftsMessage() { return tr("No motion correction shifts were found."); }
    /// Follows noShiftsMessage() when a stack's frames and the shifts do not match.
    static QString shiftCountMessage()
    {
        return tr("<b>%1</b> has <b>%2</b> frames, the shifts were found for <b>%3</b>.");
    }
    static QString noSecondSensorMessage()
    {
        return tr(
            "No second sensor was found beside <b>%1</b>: the series holds no other image stack to apply "
            "the X-Y shifts to.");
    }
    static QString secondSensorSizeMessage()
    {
        return tr("The images of the second sensor <b>%1</b> (<b>%2 x %3</b>) do not have the size of the "
                  "corrected images (<b>%4 x %5</b>).");
    }
};

} // namespace zarvi
