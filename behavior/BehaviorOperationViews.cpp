#include "behavior/BehaviorOperationViews.h"

#include "behavior/operations/measures/MeasuresView.h"
#include "definitions/BehaviorViewDefinitions.h"
#include "framework/OperationViewRegistry.h"

namespace zarvi {

void registerBehaviorOperationViews(OperationViewRegistry& registry)
{
    registry.add(BehaviorViewDefinitions::MeasuresOperation, [] { return std::make_unique<MeasuresView>(); });
}

} // namespace zarvi
