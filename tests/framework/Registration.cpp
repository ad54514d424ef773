#include "TestOperations.h"
#include "common/TestRegistration.h"

#ifdef ZARVI_TEST_WIDGETS
#include "framework/OperationRegistry.h"
#include "framework/OperationViewRegistry.h"
#include "signal/SignalOperationViews.h"
#include "signal/SignalOperations.h"
#endif

void zarvi::test::registerOperations()
{
    registerTestOperations();
#ifdef ZARVI_TEST_WIDGETS
    // The view tests also drive a real operation's view.
    registerSignalOperations(OperationRegistry::instance());
    registerSignalOperationViews(OperationViewRegistry::instance());
#endif
}
