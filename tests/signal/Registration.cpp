#include "common/TestRegistration.h"

#include "framework/OperationRegistry.h"
#include "signal/SignalOperations.h"

#ifdef ZARVI_TEST_WIDGETS
#include "framework/OperationViewRegistry.h"
#include "signal/SignalOperationViews.h"
#endif

void zarvi::test::registerOperations()
{
    registerSignalOperations(OperationRegistry::instance());
#ifdef ZARVI_TEST_WIDGETS
    registerSignalOperationViews(OperationViewRegistry::instance());
#endif
}
