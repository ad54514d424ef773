#include "framework/OperationViewRegistry.h"

#include "framework/AbstractOperationView.h"

namespace zarvi {

OperationViewRegistry& OperationViewRegistry::instance()
{
    static OperationViewRegistry registry;
    return registry;
}

void OperationViewRegistry::add(const QString& operationName, Maker maker)
{
    m_makers.emplace(operationName, std::move(maker));
}

std::unique_ptr<AbstractOperationView> OperationViewRegistry::create(const QString& operationName) const
{
    const auto it = m_makers.find(operationName);
    return it == m_makers.end() ? nullptr : it->second();
}

} // namespace zarvi
