#include "common/TestRegistration.h"

#include "framework/OperationRegistry.h"
#include "signal/SignalOperations.h"

#ifdef ZARVI_TEST_WIDGETS
#include "analysis/AnalysisOperationViews.h"
#include "analysis/AnalysisOperations.h"
#include "framework/OperationViewRegistry.h"
#include "signal/SignalOperationViews.h"
#endif

void zarvi::test::registerOperations()
{
    // Converted signals are checked to be accepted by a signal operation.
    registerSignalOperations(OperationRegistry::instance());
#ifdef ZARVI_TEST_WIDGETS
    // The dialogs' tests open converted data in the main window, which offers every pipeline.
    registerAnalysisOperations(OperationRegistry::instance());
    registerSignalOperationViews(OperationViewRegistry::instance());
    registerAnalysisOperationViews(OperationViewRegistry::instance());
#endif
}
