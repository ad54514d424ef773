#include "framework/OperationRegistry.h"

#include "definitions/FileDefinitions.h"
#include "definitions/ZarviMainDefinitions.h"

namespace zarvi {

const OperationParameter* OperationDescriptor::parameter(const QString& key) const
{
    for (const OperationParameter& declared : parameters)
        if (declared.key == key)
            return &declared;
    return nullptr;
}

OperationRegistry& OperationRegistry::instance()
{
    static OperationRegistry registry;
    return registry;
}

void OperationRegistry::add(OperationDescriptor descriptor)
{
    if (!find(descriptor.name))
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

QList<OperationFamily> OperationRegistry::families()
{
    return {OperationFamily::Signal, OperationFamily::Image, OperationFamily::VoluImages,
            OperationFamily::Behavior, OperationFamily::Analysis, OperationFamily::FileEditor};
}

QString OperationRegistry::familyName(OperationFamily family)
{
    switch (family) {
    case OperationFamily::Signal:
        return QStringLiteral("Signal");
    case OperationFamily::Image:
        return QStringLiteral("Image");
    case OperationFamily::VoluImages:
        return QStringLiteral("Volumetric images");
    case OperationFamily::Behavior:
        return QStringLiteral("Behavior");
    case OperationFamily::Analysis:
        return QStringLiteral("Analysis");
    case OperationFamily::FileEditor:
        return QStringLiteral("File editing");
    }
    return {};
}

bool OperationRegistry::normalize(const QVariantMap& parameters, QVariantMap& normalized,
                                  QStringList& errors) const
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
    const int errorsBefore = static_cast<int>(errors.size());
    for (auto it = parameters.cbegin(); it != parameters.cend(); ++it) {
        if (it.key() == FileDefinitions::Operations)
            continue;
        const OperationParameter* declared = descriptor->parameter(it.key());
        if (!declared) {
            errors << ZarviMainDefinitions::parameterUnknownMessage().arg(it.key(), name);
            continue;
        }
        QVariant value;
        if (!declared->normalize(it.value(), value)) {
            errors << (declared->badValueMessage.isEmpty()
                           ? ZarviMainDefinitions::parameterInvalidMessage().arg(it.key())
                           : declared->badValueMessage);
            continue;
        }
        const QString problem = declared->rangeProblem(value);
        if (!problem.isEmpty()) {
            errors << problem;
            continue;
        }
        normalized.insert(it.key(), value);
    }
    for (const OperationParameter& declared : descriptor->parameters) {
        if (declared.required && OperationParameter::isEmptyValue(parameters.value(declared.key)))
            errors << ZarviMainDefinitions::parameterMissingMessage().arg(declared.key);
    }
    return errors.size() == errorsBefore;
}

} // namespace zarvi
