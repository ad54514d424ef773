#include "image/ImageOperationViews.h"

#include "framework/OperationViewRegistry.h"

namespace zarvi {

void registerImageOperationViews(OperationViewRegistry&) {}

} // namespace zarvi
