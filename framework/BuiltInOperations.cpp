#include "framework/BuiltInOperations.h"

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
}

} // namespace zarvi
