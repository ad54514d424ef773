#include "image/ImageOperations.h"

#include "definitions/FileDefinitions.h"
#include "definitions/ImageOperationDefinitions.h"
#include "framework/OperationRegistry.h"
#include "image/operations/binning/BinningProcess.h"
#include "image/operations/crop/CropProcess.h"

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

} // namespace

void registerImageOperations(OperationRegistry& registry)
{
    registry.add(binning());
    registry.add(crop());
}

} // namespace zarvi
