#include "signal/SignalOperations.h"

#include "definitions/FileDefinitions.h"
#include "definitions/SignalOperationDefinitions.h"
#include "framework/OperationRegistry.h"
#include "signal/operations/decimation/DecimationProcess.h"
#include "signal/operations/filter/FilterProcess.h"
#include "signal/operations/photometry/PhotometryDeltaFProcess.h"
#include "signal/operations/slope/PolynomialBaseline.h"
#include "signal/operations/smooth/SmoothProcess.h"

namespace zarvi {

namespace {

using SD = SignalOperationDefinitions;
using P = OperationParameter;

template <typename Process> std::function<std::unique_ptr<AbstractOperationProcess>()> factory()
{
    return [] { return std::make_unique<Process>(); };
}

/// Where every signal operation writes, in words for help texts.
QString signalOutputs(const QString& outputName)
{
    return QStringLiteral("DataProcessed/<device>/Signals/<series>/%1<K>/<sensor>/: %2 and %3, with the "
                          "parameters as attributes")
        .arg(outputName, FileDefinitions::SignalValues, FileDefinitions::Time);
}

/// An unknown method leaves the signal unchanged, so the methods are offered, not enforced.
P smoothMethod()
{
    return P::text(SD::SmoothMethod, SD::smoothMethodLabel())
        .offering({SD::RunningAverage, SD::LowPassButterworthFilter})
        .withDefault(SD::RunningAverage)
        .withTooltip(SD::smoothMethodTooltip());
}

/// About a day: an averaging window longer than that is a typing slip, whatever the recording.
constexpr double MaxWindowSeconds = 1e5;

P smoothTimeFrame()
{
    return P::number(SD::SmoothTimeFrame, SD::smoothTimeFrameLabel())
        .withUnit(QStringLiteral("s"))
        .atLeast(0.0)
        .atMost(MaxWindowSeconds)
        .withDefault(0.1)
        .withTooltip(SD::smoothTimeFrameTooltip());
}

P smoothFrequency()
{
    return P::number(SD::SmoothFrequency, SD::smoothFrequencyLabel())
        .withUnit(QStringLiteral("Hz"))
        .atLeast(0.0)
        .withDefault(10.0)
        .withTooltip(SD::smoothFrequencyTooltip());
}

P decimationFactor()
{
    return P::integer(SD::DecimationFactor, SD::decimationLabel())
        .atLeast(1)
        .atMost(1000000)
        .withDefault(10)
        .withTooltip(SD::decimationFactorTooltip())
        .withBadValueMessage(SD::badDecimationFactorMessage());
}

} // namespace

void registerSignalOperations(OperationRegistry& registry)
{
    registry.add({SD::Filter,
                  OperationFamily::Signal,
                  SD::filterDescription(),
                  SD::FilteredSignals,
                  signalOutputs(SD::FilteredSignals),
                  {P::text(SD::FilterType, SD::filterTypeLabel())
                       .oneOf({SD::LowPass, SD::HighPass, SD::BandPass, SD::BandStop})
                       .withDefault(SD::LowPass)
                       .isRequired()
                       .withTooltip(SD::filterTypeTooltip()),
                   P::number(SD::LowCutoffFrequency, SD::lowCutoffLabel())
                       .withUnit(QStringLiteral("Hz"))
                       .atLeast(0.0)
                       .withDefault(1.0)
                       .withTooltip(SD::lowCutoffTooltip()),
                   P::number(SD::HighCutoffFrequency, SD::highCutoffLabel())
                       .withUnit(QStringLiteral("Hz"))
                       .atLeast(0.0)
                       .withDefault(10.0)
                       .withTooltip(SD::highCutoffTooltip()),
                   P::text(SD::FilterName, SD::filterNameLabel())
                       .withDefault(SD::Butterworth)
                       .withTooltip(SD::filterNameTooltip())},
                  factory<FilterProcess>()});
    registry.add({SD::SmoothSignals,
                  OperationFamily::Signal,
                  SD::smoothDescription(),
                  SD::SmoothedSignals,
                  signalOutputs(SD::SmoothedSignals),
                  {smoothMethod().isRequired(), smoothTimeFrame(), smoothFrequency()},
                  factory<SmoothProcess>()});
    registry.add({SD::Decimation,
                  OperationFamily::Signal,
                  SD::decimationDescription(),
                  SD::DecimatedSignals,
                  signalOutputs(SD::DecimatedSignals),
                  {decimationFactor().isRequired()},
                  factory<DecimationProcess>()});
    registry.add({SD::PhotometryDeltaF,
                  OperationFamily::Signal,
                  SD::photometryDeltaFDescription(),
                  SD::DFFSignals,
                  signalOutputs(SD::DFFSignals),
                  {P::text(SD::IsosbesticName, SD::isosbesticNameLabel())
                       .isRequired()
                       .withTooltip(SD::isosbesticNameTooltip()),
                   P::text(SD::BiosensorName, SD::biosensorNameLabel())
                       .isRequired()
                       .withTooltip(SD::biosensorNameTooltip()),
                   P::number(SD::DiscardStart, SD::discardStartLabel())
                       .withUnit(QStringLiteral("s"))
                       .atLeast(0.0)
                       .withDefault(1.0)
                       .withTooltip(SD::discardStartTooltip()),
                   P::number(SD::DiscardEnd, SD::discardEndLabel())
                       .withUnit(QStringLiteral("s"))
                       .atMost(0.0)
                       .withDefault(-1.0)
                       .withTooltip(SD::discardEndTooltip()),
                   P(decimationFactor()).atLeast(0), smoothMethod(), smoothTimeFrame(), smoothFrequency(),
                   P::text(SD::RemoveSlopeMethod, SD::removeSlopeLabel())
                       .oneOf({SD::Arpls, SD::RunningAverage, SD::Polynomial})
                       .withDefault(SD::Arpls)
                       .withTooltip(SD::removeSlopeTooltip()),
                   P::integer(SD::SlopeLambda, SD::slopeLambdaLabel())
                       .atLeast(1)
                       .withDefault(100000)
                       .withTooltip(SD::slopeLambdaTooltip()),
                   P::number(SD::SlopeRatio, SD::slopeRatioLabel())
                       .atLeast(0.0)
                       .atMost(1.0)
                       .withDefault(0.01)
                       .withTooltip(SD::slopeRatioTooltip()),
                   P::number(SD::SlopeTimeWindow, SD::slopeTimeWindowLabel())
                       .withUnit(QStringLiteral("s"))
                       .atLeast(0.0)
                       .atMost(MaxWindowSeconds)
                       .withDefault(30.0)
                       .withTooltip(SD::slopeTimeWindowTooltip()),
                   P::integer(SD::SlopeOrder, SD::slopeOrderLabel())
                       .atLeast(0)
                       .atMost(PolynomialBaseline::MaxOrder)
                       .withDefault(2)
                       .withTooltip(SD::slopeOrderTooltip()),
                   P::text(SD::StandardizeMethod, SD::standardizeLabel())
                       .oneOf({SD::StandardZScore, SD::ModifiedZScore})
                       .withDefault(SD::StandardZScore)
                       .withTooltip(SD::standardizeTooltip()),
                   P::number(SD::ResidualThreshold, SD::residualThresholdLabel())
                       .atLeast(0.0)
                       .withDefault(0.5)
                       .isRequired()
                       .withTooltip(SD::residualThresholdTooltip())},
                  factory<PhotometryDeltaFProcess>()});
}

} // namespace zarvi
