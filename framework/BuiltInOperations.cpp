#include "framework/BuiltInOperations.h"

#include "analysis/operations/perievents/PerieventsProcess.h"
#include "definitions/AnalysisOperationDefinitions.h"
#include "definitions/SignalOperationDefinitions.h"
#include "framework/OperationRegistry.h"
#include "signal/operations/decimation/DecimationProcess.h"
#include "signal/operations/filter/FilterProcess.h"
#include "signal/operations/photometry/PhotometryDeltaFProcess.h"
#include "signal/operations/smooth/SmoothProcess.h"

namespace zarvi {

namespace {

template <typename Process>
std::function<std::unique_ptr<AbstractOperationProcess>()> factory()
{
    return [] { return std::make_unique<Process>(); };
}

} // namespace

void registerBuiltInOperations(OperationRegistry& registry)
{
    using SD = SignalOperationDefinitions;
    using T = ParameterType;

    registry.add({SD::Filter,
                  OperationFamily::Signal,
                  {{SD::FilterType, T::String},
                   {SD::LowCutoffFrequency, T::Double},
                   {SD::HighCutoffFrequency, T::Double},
                   {SD::FilterName, T::String}},
                  factory<FilterProcess>()});
    registry.add({SD::SmoothSignals,
                  OperationFamily::Signal,
                  {{SD::SmoothMethod, T::String}, {SD::SmoothTimeFrame, T::Double}, {SD::SmoothFrequency, T::Double}},
                  factory<SmoothProcess>()});
    registry.add({SD::Decimation, OperationFamily::Signal, {{SD::DecimationFactor, T::Int}},
                  factory<DecimationProcess>()});
    registry.add({SD::PhotometryDeltaF,
                  OperationFamily::Signal,
                  {{SD::IsosbesticName, T::String},
                   {SD::BiosensorName, T::String},
                   {SD::DiscardStart, T::Double},
                   {SD::DiscardEnd, T::Double},
                   {SD::DecimationFactor, T::Int},
                   {SD::SmoothMethod, T::String},
                   {SD::SmoothTimeFrame, T::Double},
                   {SD::SmoothFrequency, T::Double},
                   {SD::RemoveSlopeMethod, T::String},
                   {SD::SlopeLambda, T::Int},
                   {SD::SlopeRatio, T::Double},
                   {SD::SlopeTimeWindow, T::Double},
                   {SD::SlopeOrder, T::Int},
                   {SD::StandardizeMethod, T::String},
                   {SD::ResidualThreshold, T::Double}},
                  factory<PhotometryDeltaFProcess>()});

    using AD = AnalysisOperationDefinitions;
    registry.add({AD::Perievents,
                  OperationFamily::Analysis,
                  {{AD::EventPath, T::String},
                   {AD::Event, T::String},
                   {AD::Onset, T::Int},
                   {AD::Offset, T::Int},
                   {AD::PlainEvents, T::Int},
                   {AD::PerieventTimeFrame, T::DoubleList},
                   {AD::StatisticTimeFrames, T::DoubleList},
                   {AD::TimeFramesNames, T::StringList},
                   {AD::OffsetPerieventTimeFrame, T::DoubleList},
                   {AD::OffsetStatisticTimeFrames, T::DoubleList},
                   {AD::OffsetTimeFramesNames, T::StringList},
                   {AD::Statistic, T::String},
                   {AD::Statistics, T::StringList},
                   {AD::SelectEvents, T::Int},
                   {AD::EventRange, T::DoubleList},
                   {AD::TimePeriod, T::String},
                   {AD::TimePeriodPath, T::String},
                   {AD::TimePeriodName, T::String},
                   {AD::Resample, T::Int},
                   {AD::ResampleFrequency, T::Double},
                   {AD::ResampleMethod, T::String},
                   {AD::NormalizeWindow, T::DoubleList},
                   {AD::NormalizeMethod, T::String},
                   {AD::NormalizeEvent, T::String},
                   {AD::NormalizeEventPath, T::String}},
                  factory<PerieventsProcess>()});
}

} // namespace zarvi
