// The registration of suites that need every family: the application's tests and the
// analysis, whose runs read signals that signal operations wrote.
#include "common/TestRegistration.h"

#include "analysis/AnalysisOperations.h"
#include "behavior/BehaviorOperations.h"
#include "framework/OperationRegistry.h"
#include "image/ImageOperations.h"
#include "signal/SignalOperations.h"

#ifdef ZARVI_TEST_WIDGETS
#include "analysis/AnalysisOperationViews.h"
#include "behavior/BehaviorOperationViews.h"
#include "framework/OperationViewRegistry.h"
#include "image/ImageOperationViews.h"
#include "signal/SignalOperationViews.h"
#endif

void zarvi::test::registerOperations()
{
    registerSignalOperations(OperationRegistry::instance());
    registerAnalysisOperations(OperationRegistry::instance());
    registerImageOperations(OperationRegistry::instance());
    registerBehaviorOperations(OperationRegistry::instance());
#ifdef ZARVI_TEST_WIDGETS
    registerSignalOperationViews(OperationViewRegistry::instance());
    registerAnalysisOperationViews(OperationViewRegistry::instance());
    registerImageOperationViews(OperationViewRegistry::instance());
    registerBehaviorOperationViews(OperationViewRegistry::instance());
#endif
}
