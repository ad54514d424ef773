#include "common/TestRegistration.h"

// The ROI items and their view need no operations.
void zarvi::test::registerOperations() {}
