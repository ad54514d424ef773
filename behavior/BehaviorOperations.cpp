#include "behavior/BehaviorOperations.h"

#include "behavior/operations/measures/MeasuresProcess.h"
#include "behavior/operations/tracking/TrackingProcess.h"
#include "definitions/BehaviorViewDefinitions.h"
#include "definitions/VideoOperationDefinitions.h"
#include "framework/OperationRegistry.h"
#include "roi/RoiShape.h"

namespace zarvi {

namespace {

using BD = BehaviorViewDefinitions;
using P = OperationParameter;

template <typename Process> std::function<std::unique_ptr<AbstractOperationProcess>()> factory()
{
    return [] { return std::make_unique<Process>(); };
}

OperationDescriptor measures()
{
    // The arena is declared optional so that a run without one gets the arena message,
    // from the process.
    return {BD::MeasuresOperation,
            OperationFamily::Behavior,
            BD::measuresDescription(),
            BD::MeasuresOutput,
            BD::measuresOutputs(),
            {P::numbers(BD::ArenaCoordinates, BD::arenaCoordinatesLabel())
                 .withTooltip(BD::arenaCoordinatesTooltip())
                 .withExample(QStringLiteral("[320, 240, 520, 240]")),
             P::text(BD::ArenaRoiShape, BD::arenaShapeLabel())
                 .oneOf({roiKindName(RoiKind::Rectangle), roiKindName(RoiKind::Circle),
                         roiKindName(RoiKind::Polygon)})
                 .withExample(QStringLiteral("\"Circle\"")),
             P::json(BD::Zones, BD::zonesLabel())
                 .withTooltip(BD::zonesTooltip())
                 .withExample(QStringLiteral(
                     R"([{"Name": "Zone1", "Shape": "Rectangle", "Points": [[150, 100], [250, 200]]}])")),
             P::numbers(BD::CalibrationCoordinates, BD::calibrationCoordinatesLabel())
                 .withTooltip(BD::calibrationCoordinatesTooltip())
                 .withExample(QStringLiteral("[100, 400, 500, 400]")),
             P::number(BD::CalibrationLength, BD::calibrationLengthLabel())
                 .withUnit(BD::Centimetres)
                 .atLeast(0.0)
                 .withTooltip(BD::calibrationLengthTooltip()),
             P::number(BD::TimeBin, BD::timeBinLabel())
                 .withUnit(BD::Seconds)
                 .atLeast(0.0)
                 .withDefault(60.0)
                 .withTooltip(BD::timeBinTooltip())},
            factory<MeasuresProcess>()};
}

using VD = VideoOperationDefinitions;

/// 0 or 1, for the check-box keys.
P checkBoxParameter(const QString& key, const QString& label, const QString& tooltip, int defaultValue)
{
    return P::integer(key, label).atLeast(0).atMost(1).withDefault(defaultValue).withTooltip(tooltip);
}

/// A (low, high) pair of a threshold.
P rangeParameter(const QString& key, const QString& label, const QString& tooltip, double maximum,
                 const QVariantList& defaultValue)
{
    return P::numbers(key, label)
        .atLeast(0)
        .atMost(maximum)
        .withDefault(defaultValue)
        .withTooltip(tooltip)
        .withExample(QStringLiteral("[%1, %2]").arg(defaultValue[0].toInt()).arg(defaultValue[1].toInt()));
}

OperationDescriptor animalTracking()
{
    return {
        VD::AnimalTracking,
        OperationFamily::Behavior,
        VD::animalTrackingDescription(),
        QStringLiteral("Coordinates"),
        QStringLiteral(
            "DataBehavior/<device>/Coordinates/<series>/Video<K>/ for the link <category>/<device>/Video/"
            "<series>/Video<K>: Coordinates<K> (int32 [frames, 2], x and y in pixels of each frame of "
            "FirstFrame to LastFrame, (-1, -1) where there is no position) with the parameters, Username, "
            "Color, VideoRange, RelativeFilePath and DifferenceMasterStartToFirstImage as attributes, and "
            "Time (the link's times of those frames). Refused when Coordinates<K> exists. Frames are "
            "numbered from 0. Without ValueRange(%) the frame itself is the mask. Interpolate leaves missing "
            "frames at either end of the segment missing; the running average takes "
            "SmoothWindow(frames) frames centred on each frame (one more before than after for an even "
            "window), mirrored at the ends, missing frames left out."),
        {checkBoxParameter(VD::ConvertToGrayscale, VD::convertToGrayscaleLabel(),
                           VD::convertToGrayscaleTooltip(), 1),
         rangeParameter(VD::HueRange, VD::hueRangeLabel(), VD::hueRangeTooltip(), 180, {0, 180}),
         rangeParameter(VD::SaturationRange, VD::saturationRangeLabel(), VD::saturationRangeTooltip(), 100,
                        {0, 100})
             .withUnit(QStringLiteral("%")),
         rangeParameter(VD::ValueRange, VD::valueRangeLabel(), VD::valueRangeTooltip(), 100, {0, 30})
             .withUnit(QStringLiteral("%")),
         P::integer(VD::FirstFrame, VD::firstFrameLabel())
             .atLeast(0)
             .withDefault(0)
             .withTooltip(VD::firstFrameTooltip()),
         P::integer(VD::LastFrame, VD::lastFrameLabel())
             .atLeast(0)
             .withTooltip(VD::lastFrameTooltip())
             .withExample(QStringLiteral("9999")),
         checkBoxParameter(VD::DetectOutliers, VD::detectOutliersLabel(), VD::detectOutliersTooltip(), 0),
         checkBoxParameter(VD::Interpolate, VD::interpolateLabel(), VD::interpolateTooltip(), 0),
         P::integer(VD::AnimalSize, VD::animalSizeLabel())
             .atLeast(1)
             .withDefault(20)
             .withUnit(QStringLiteral("px"))
             .withTooltip(VD::animalSizeTooltip()),
         checkBoxParameter(VD::SmoothCoordinates, VD::smoothCoordinatesLabel(),
                           VD::smoothCoordinatesTooltip(), 0),
         P::integer(VD::SmoothWindow, VD::smoothWindowLabel())
             .atLeast(1)
             .withDefault(5)
             .withUnit(QStringLiteral("frames"))
             .withTooltip(VD::smoothWindowTooltip())},
        factory<TrackingProcess>(),
        VD::animalTrackingTitle()};
}

} // namespace

void registerBehaviorOperations(OperationRegistry& registry)
{
    registry.add(measures());
    registry.add(animalTracking());
}

} // namespace zarvi
