#include "common/TestRegistration.h"

#include "behavior/BehaviorOperations.h"
#include "framework/OperationRegistry.h"

#ifdef ZARVI_TEST_WIDGETS
#include "behavior/BehaviorOperationViews.h"
#include "framework/OperationViewRegistry.h"
#endif

void zarvi::test::registerOperations()
{
    registerBehaviorOperations(OperationRegistry::instance());
#ifdef ZARVI_TEST_WIDGETS
    registerBehaviorOperationViews(OperationViewRegistry::instance());
#endif
}
