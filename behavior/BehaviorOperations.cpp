#include "behavior/BehaviorOperations.h"

#include "behavior/operations/measures/MeasuresProcess.h"
#include "definitions/BehaviorViewDefinitions.h"
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

} // namespace

void registerBehaviorOperations(OperationRegistry& registry)
{
    registry.add(measures());
}

} // namespace zarvi
