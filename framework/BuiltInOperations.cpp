#include "framework/BuiltInOperations.h"

#include "framework/OperationRegistry.h"

namespace zarvi {

void registerBuiltInOperations(OperationRegistry& registry)
{
    (void)registry;
}

} // namespace zarvi
