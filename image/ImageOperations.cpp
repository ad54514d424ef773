#include "image/ImageOperations.h"

#include "definitions/FileDefinitions.h"
#include "definitions/ImageOperationDefinitions.h"
#include "framework/OperationRegistry.h"
#include "image/operations/binning/BinningProcess.h"
#include "image/operations/downsample/DownSampleProcess.h"
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

} // namespace

void registerImageOperations(OperationRegistry& registry)
{
    registry.add(binning());
    registry.add(temporalDownsample());
    registry.add(stackProjection());
}

} // namespace zarvi
