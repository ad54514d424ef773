#include "framework/OperationViewFactory.h"

#include "framework/AbstractOperationView.h"

namespace zarvi {

std::unique_ptr<AbstractOperationView> OperationViewFactory::create(const QString& operationName)
{
    (void)operationName;
    return nullptr;
}

} // namespace zarvi
