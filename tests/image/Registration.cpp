#include "common/TestRegistration.h"

#include "framework/OperationRegistry.h"
#include "image/ImageOperations.h"

#ifdef ZARVI_TEST_WIDGETS
#include "framework/OperationViewRegistry.h"
#include "image/ImageOperationViews.h"
#endif

void zarvi::test::registerOperations()
{
    registerImageOperations(OperationRegistry::instance());
#ifdef ZARVI_TEST_WIDGETS
    registerImageOperationViews(OperationViewRegistry::instance());
#endif
}
