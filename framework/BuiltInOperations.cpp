#include "framework/BuiltInOperations.h"

#include "analysis/operations/perievents/PerieventsProcess.h"
#include "definitions/AnalysisOperationDefinitions.h"
#include "definitions/SignalOperationDefinitions.h"
#include "framework/OperationRegistry.h"
#include "signal/operations/decimation/DecimationProcess.h"

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

    registry.add({SD::Decimation, OperationFamily::Signal, {{SD::DecimationFactor, T::Int}},
                  factory<DecimationProcess>()});

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
