#include "behavior/BehaviorOperationViews.h"

#include "framework/OperationViewRegistry.h"

namespace zarvi {

void registerBehaviorOperationViews(OperationViewRegistry&) {}

} // namespace zarvi
