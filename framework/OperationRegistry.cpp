#include "framework/OperationRegistry.h"

#include "definitions/FileDefinitions.h"
#include "definitions/ZarviMainDefinitions.h"
#include "framework/BuiltInOperations.h"

namespace zarvi {

OperationRegistry::OperationRegistry()
{
    registerBuiltInOperations(*this);
}

OperationRegistry& OperationRegistry::instance()
{
    static OperationRegistry registry;
    return registry;
}

void OperationRegistry::add(OperationDescriptor descriptor)
{
    m_operations.push_back(std::move(descriptor));
}

const OperationDescriptor* OperationRegistry::find(const QString& name) const
{
    for (const OperationDescriptor& descriptor : m_operations)
        if (descriptor.name == name)
            return &descriptor;
    return nullptr;
}

QStringList OperationRegistry::names(OperationFamily family) const
{
    QStringList result;
    for (const OperationDescriptor& descriptor : m_operations)
        if (descriptor.family == family)
            result << descriptor.name;
    return result;
}

bool OperationRegistry::normalize(const QVariantMap& parameters, QVariantMap& normalized, QStringList& errors) const
{
    normalized.clear();
    const QString name = parameters.value(FileDefinitions::Operations).toString();
    if (name.isEmpty()) {
        errors << ZarviMainDefinitions::parameterMissingMessage().arg(FileDefinitions::Operations);
        return false;
    }
    const OperationDescriptor* descriptor = find(name);
    if (!descriptor) {
        errors << ZarviMainDefinitions::operationUnknownMessage().arg(name);
        return false;
    }
    normalized.insert(FileDefinitions::Operations, name);
    bool ok = true;
    for (auto it = parameters.cbegin(); it != parameters.cend(); ++it) {
        if (it.key() == FileDefinitions::Operations)
            continue;
        const auto declared = std::find_if(descriptor->parameters.cbegin(), descriptor->parameters.cend(),
                                           [&](const OperationParameter& p) { return p.key == it.key(); });
        if (declared == descriptor->parameters.cend()) {
            errors << ZarviMainDefinitions::parameterUnknownMessage().arg(it.key(), name);
            ok = false;
            continue;
        }
        QVariant value;
        if (!declared->normalize(it.value(), value)) {
            errors << ZarviMainDefinitions::parameterInvalidMessage().arg(it.key());
            ok = false;
            continue;
        }
        normalized.insert(it.key(), value);
    }
    return ok;
}

} // namespace zarvi
