#include "common/TestRegistration.h"

#include "analysis/AnalysisOperations.h"
#include "behavior/BehaviorOperations.h"
#include "framework/OperationRegistry.h"

#ifdef ZARVI_TEST_WIDGETS
#include "analysis/AnalysisOperationViews.h"
#include "behavior/BehaviorOperationViews.h"
#include "framework/OperationViewRegistry.h"
#endif

void zarvi::test::registerOperations()
{
    registerBehaviorOperations(OperationRegistry::instance());
    registerAnalysisOperations(OperationRegistry::instance());
#ifdef ZARVI_TEST_WIDGETS
    registerBehaviorOperationViews(OperationViewRegistry::instance());
    registerAnalysisOperationViews(OperationViewRegistry::instance());
#endif
}
