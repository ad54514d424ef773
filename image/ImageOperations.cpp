#include "image/ImageOperations.h"

#include "definitions/FileDefinitions.h"
#include "definitions/ImageOperationDefinitions.h"
#include "framework/OperationRegistry.h"
#include "image/operations/binning/BinningProcess.h"
#include "image/operations/crop/CropProcess.h"
#include "image/operations/dffimages/DFFImagesProcess.h"
#include "image/operations/discardframes/DiscardFramesProcess.h"
#include "image/operations/discardframes/FrameAutodetection.h"
#include "image/operations/downsample/DownSampleProcess.h"
#include "image/operations/motioncorrection/MotionCorrectionProcess.h"
#include "image/operations/removebackground/RemoveBackgroundProcess.h"
#include "image/operations/roisignals/ROISignalsProcess.h"
#include "image/operations/splitimagesinseries/SplitImagesInSeriesProcess.h"
#include "image/operations/stackprojection/StackProjectionProcess.h"

namespace zarvi {

namespace {

using ID = ImageOperationDefinitions;
using P = OperationParameter;

template <typename Process> std::function<std::unique_ptr<AbstractOperationProcess>()> factory()
{
    return [] { return std::make_unique<Process>(); };
}

/// Where every stack-writing image operation writes, in words for help texts.
QString imageOutputs(const QString& outputName)
{
    return QStringLiteral("DataProcessed/<device>/Images/<series>/%1<K>/<sensor>/: %2 and %3, with the "
                          "parameters as attributes")
        .arg(outputName, FileDefinitions::ImageStack, FileDefinitions::Time);
}

OperationDescriptor binning()
{
    return {ID::Binning,
            OperationFamily::Image,
            ID::binningDescription(),
            ID::BinnedImages,
            imageOutputs(ID::BinnedImages),
            {P::text(ID::BinningFactor, ID::binningFactorLabel())
                 .oneOf({ID::Binning2x2, ID::Binning4x4})
                 .withDefault(ID::Binning2x2)
                 .isRequired()
                 .withTooltip(ID::binningFactorTooltip())},
            factory<BinningProcess>()};
}

OperationDescriptor temporalDownsample()
{
    return {ID::TemporalDownsample,
            OperationFamily::Image,
            ID::downsampleDescription(),
            ID::DownSampledImages,
            imageOutputs(ID::DownSampledImages) +
                QStringLiteral("; ceil(frames / Factor) frames, each at the time of the first frame of its "
                               "group; a trailing group shorter than Factor is reduced as it is"),
            {P::integer(ID::Factor, ID::factorLabel())
                 .atLeast(1)
                 .withDefault(2)
                 .isRequired()
                 .withTooltip(ID::factorTooltip())
                 .withExample(QStringLiteral("4")),
             P::text(ID::Method, ID::methodLabel())
                 .oneOf({ID::Skip, ID::Mean, ID::Sum, ID::Minimum, ID::Maximum})
                 .withDefault(ID::Skip)
                 .isRequired()
                 .withTooltip(ID::downsampleMethodTooltip())
                 .withExample(QStringLiteral("\"Mean\""))},
            factory<DownSampleProcess>()};
}

OperationDescriptor stackProjection()
{
    // The method is declared optional so that a run without one gets the operation's
    // own message, from the process.
    return {
        ID::StackProjection,
        OperationFamily::Image,
        ID::stackProjectionDescription(),
        ID::StackProjectionImages,
        imageOutputs(ID::StackProjectionImages) +
            QStringLiteral("; one frame per stack at the time of its first frame, or with ConcatenateSeries "
                           "one frame per selected stack, in selection order, in the first stack's output"),
        {P::text(ID::ProjectionMethod, ID::methodLabel())
             .oneOf({ID::Maximum, ID::Minimum, ID::Mean, ID::Sum, ID::StandardDeviation})
             .withTooltip(ID::projectionMethodTooltip())
             .withExample(QStringLiteral("\"Standard Deviation\"")),
         P::integer(ID::ConcatenateSeries, ID::concatenateSeriesLabel())
             .atLeast(0)
             .atMost(1)
             .withDefault(0)
             .withTooltip(ID::concatenateSeriesTooltip())
             .withExample(QStringLiteral("1"))},
        factory<StackProjectionProcess>()};
}

OperationDescriptor crop()
{
    return {ID::Crop,
            OperationFamily::Image,
            ID::cropDescription(),
            ID::CroppedImages,
            imageOutputs(ID::CroppedImages),
            {P::numbers(ID::CropCoordinates, ID::cropCoordinatesLabel())
                 .isRequired()
                 .withTooltip(ID::cropCoordinatesTooltip())
                 .withExample(QStringLiteral("[16, 32, 128, 96]"))},
            factory<CropProcess>()};
}

/// 0 or 1, for the check-box keys.
P checkBoxParameter(const QString& key, const QString& label, const QString& tooltip)
{
    return P::integer(key, label).atLeast(0).atMost(1).withDefault(0).withTooltip(tooltip);
}

OperationDescriptor discardFrames()
{
    return {ID::DiscardFrames,
            OperationFamily::Image,
            ID::discardFramesDescription(),
            ID::ReducedStackImages,
            imageOutputs(ID::ReducedStackImages) +
                QStringLiteral(
                    " (none with DontSaveParameters = 1). The kept frames in order with their own times; "
                    "DiscardedFrames are 0-based indices. Autodetection also discards the black frames "
                    "(maximum 0) and the frames whose mean lies more than %1 x max(1.4826 MAD, %2 x median) "
                    "from the median of the means of the frames that are not black (MAD: the median "
                    "absolute deviation of those means). With InterpolateFrames = 1 every frame is written, "
                    "a discarded one replaced by the linear interpolation in time between the nearest kept "
                    "frames (a copy of the nearest kept frame at either end).")
                    .arg(corruptedFrameDeviations)
                    .arg(minimumRelativeSpread),
            {P::numbers(ID::DiscardedFrames, ID::selectFramesLabel())
                 .withTooltip(ID::selectFramesTooltip())
                 .withExample(QStringLiteral("[1, 3, 10]")),
             checkBoxParameter(ID::AutodetectCorruptedFrames, ID::autodetectLabel(), ID::autodetectTooltip()),
             checkBoxParameter(ID::InterpolateFrames, ID::interpolateLabel(), ID::interpolateTooltip()),
             checkBoxParameter(ID::DontSaveParameters, ID::dontSaveParametersLabel(),
                               ID::dontSaveParametersTooltip())},
            factory<DiscardFramesProcess>()};
}

OperationDescriptor splitImagesInSeries()
{
    return {
        ID::SplitImagesInSeries,
        OperationFamily::Image,
        ID::splitDescription(),
        ID::SplitedImages,
        QStringLiteral("DataProcessed/<device>/Images/<series>/%1<K>/<sensor>_<n>/: %2 and %3 of the n-th "
                       "series (n from 1), with the input frames' own times and the parameters as "
                       "attributes. A time step of exactly the Duration is a gap; in Split by Duration a "
                       "frame exactly the Duration after a series' first frame starts the next series.")
            .arg(ID::SplitedImages, FileDefinitions::ImageStack, FileDefinitions::Time),
        {P::text(ID::Method, ID::methodLabel())
             .oneOf({ID::DetectTimeGaps, ID::SplitByDuration})
             .withDefault(ID::DetectTimeGaps)
             .isRequired()
             .withTooltip(ID::splitMethodTooltip()),
         P::text(ID::Duration, ID::durationLabel())
             .isRequired()
             .withTooltip(ID::splitDurationTooltip())
             .withExample(QStringLiteral("\"00:00:01:500\" (%1)").arg(ID::DurationFormat))},
        factory<SplitImagesInSeriesProcess>()};
}

OperationDescriptor removeBackground()
{
    // The region is declared optional, and an unreadable one has the operation's words, so
    // that every bad region gets the operation's one message: a missing one from the
    // process, before the file is opened.
    return {ID::RemoveBackground,
            OperationFamily::Image,
            ID::removeBackgroundDescription(),
            ID::BackgroundCorrectedImages,
            imageOutputs(ID::BackgroundCorrectedImages) +
                QStringLiteral("; every frame minus the mean of its pixels inside the background ROI, "
                               "rounded, negative values written as 0"),
            {P::json(ID::BackgroundCoordinates, ID::backgroundCoordinatesLabel())
                 .withTooltip(ID::backgroundCoordinatesTooltip())
                 .withBadValueMessage(ID::backgroundCoordinatesMessage())
                 .withExample(QStringLiteral(R"({"Shape": "Rectangle", "Points": [[0, 0], [31, 23]]})"))},
            factory<RemoveBackgroundProcess>()};
}

OperationDescriptor roiSignals()
{
    return {ID::ROISignalsOperation,
            OperationFamily::Image,
            ID::roiSignalsDescription(),
            ID::ROISignals,
            QStringLiteral("DataProcessed/<device>/%1/<series>/%1<K>/<ROI name>/: %2 (the mean of the ROI's "
                           "pixels in each frame, Unit %3) and %4 (the stack's), %2 carrying the ROI's "
                           "Username, Coordinates and Shape and the parameters as attributes")
                .arg(ID::ROISignals, FileDefinitions::SignalValues, ID::RoiSignalUnit, FileDefinitions::Time),
            {P::texts(ID::ROINames, ID::roiNamesLabel())
                 .withTooltip(ID::roiNamesTooltip())
                 .withExample(QStringLiteral(R"(["ROI1", "ROI3"] (names as zarvi-cli rois lists them))"))},
            factory<ROISignalsProcess>()};
}

OperationDescriptor imagesDeltaF()
{
    // The dark frame is optional as a pair: the process refuses one key without the other.
    return {
        ID::ImagesDeltaF,
        OperationFamily::Image,
        ID::imagesDeltaFDescription(),
        ID::DFFImages,
        imageOutputs(ID::DFFImages) +
            QStringLiteral(
                ", BitCount 16. Frame i is 100 (F_i - F0) / F0 per pixel, rounded to the nearest integer "
                "and saturated into 0..65535 (a fall below F0 is written as 0), where F_i is frame i "
                "minus the dark frame (the first frame of DarkframeDataset in DarkframeFilepath, of the "
                "frame size; both keys or neither), with RemoveTemporalVariations = 1 then divided by its "
                "own mean (a frame of mean 0 becomes 0), and F0 is the mean of all F_i. A pixel whose F0 "
                "is 0 is written as 0 in every frame."),
        {checkBoxParameter(ID::RemoveTemporalVariations, ID::removeTemporalVariationsLabel(),
                           ID::removeTemporalVariationsTooltip()),
         P::text(ID::DarkframeFilepath, ID::darkframeFilepathLabel())
             .withTooltip(ID::darkframeFilepathTooltip())
             .withExample(QStringLiteral("\"/data/darkframe.orvel\"")),
         P::text(ID::DarkframeDataset, ID::darkframeDatasetLabel())
             .withTooltip(ID::darkframeDatasetTooltip())
             .withExample(QStringLiteral("\"DataConverted/Scope/Images/Series1/Dark/ImageStack\"")),
         P::text(ID::F0Method, ID::f0MethodLabel())
             .oneOf({ID::Mean})
             .withDefault(ID::Mean)
             .withTooltip(ID::f0MethodTooltip())},
        factory<DFFImagesProcess>()};
}

OperationDescriptor motionCorrection()
{
    // Only the frame is required: the reference is the corrected stack itself unless a
    // dataset or another file is named.
    return {
        ID::MotionCorrection,
        OperationFamily::Image,
        ID::motionCorrectionDescription(),
        ID::MotionCorrectedImages,
        imageOutputs(ID::MotionCorrectedImages) +
            QStringLiteral(
                "; beside the stack, %1: float64 [frames, 2], the x and y shift of every frame in pixels "
                "(multiples of 1/6), by which it was moved back. With ApplyShiftsToSensor2 = 1 the series' "
                "other sensor (the first other sensor group holding an ImageStack, by name) is moved by the "
                "same shifts into the same group. ReferenceDatapath defaults to the corrected stack's own "
                "path, in the reference file.")
                .arg(ID::AlignmentShifts),
        {P::text(ID::ReferenceSource, ID::referenceSourceLabel())
             .oneOf({ID::CurrentFile, ID::ExternalFile})
             .withDefault(ID::CurrentFile)
             .withTooltip(ID::referenceSourceTooltip())
             .withExample(QStringLiteral("\"External File\"")),
         P::text(ID::ReferenceFilepath, ID::referenceFileLabel())
             .withTooltip(ID::referenceFileTooltip())
             .withExample(QStringLiteral("\"/data/session1.orvel\"")),
         P::text(ID::ReferenceDatapath, ID::referenceDatasetLabel())
             .withExample(QStringLiteral("\"DataAcquisition/Miniscope/Images/Series1/Sensor1/ImageStack\"")),
         P::integer(ID::ReferenceFrame, ID::referenceFrameLabel())
             .atLeast(0)
             .withDefault(0)
             .isRequired()
             .withTooltip(ID::referenceFrameTooltip())
             .withExample(QStringLiteral("0")),
         checkBoxParameter(ID::ApplyShiftsToSensor2, ID::applyShiftsToSensor2Label(), QString())},
        factory<MotionCorrectionProcess>()};
}

} // namespace

void registerImageOperations(OperationRegistry& registry)
{
    registry.add(binning());
    registry.add(temporalDownsample());
    registry.add(stackProjection());
    registry.add(crop());
    registry.add(discardFrames());
    registry.add(splitImagesInSeries());
    registry.add(removeBackground());
    registry.add(roiSignals());
    registry.add(imagesDeltaF());
    registry.add(motionCorrection());
}

} // namespace zarvi
