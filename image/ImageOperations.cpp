#include "image/ImageOperations.h"

#include "framework/OperationRegistry.h"

namespace zarvi {

void registerImageOperations(OperationRegistry&)
{
}

} // namespace zarvi
