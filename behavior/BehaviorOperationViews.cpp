#include "behavior/BehaviorOperationViews.h"

#include "behavior/operations/measures/MeasuresView.h"
#include "behavior/operations/tracking/TrackingView.h"
#include "definitions/BehaviorViewDefinitions.h"
#include "definitions/VideoOperationDefinitions.h"
#include "framework/OperationViewRegistry.h"

namespace zarvi {

void registerBehaviorOperationViews(OperationViewRegistry& registry)
{
    registry.add(BehaviorViewDefinitions::MeasuresOperation, [] { return std::make_unique<MeasuresView>(); });
    registry.add(VideoOperationDefinitions::AnimalTracking, [] { return std::make_unique<TrackingView>(); });
}

} // namespace zarvi
