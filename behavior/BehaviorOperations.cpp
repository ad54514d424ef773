#include "behavior/BehaviorOperations.h"

#include "framework/OperationRegistry.h"

namespace zarvi {

void registerBehaviorOperations(OperationRegistry&) {}

} // namespace zarvi
