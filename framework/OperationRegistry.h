#pragma once

#include "framework/OperationParameter.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <functional>
#include <memory>
#include <vector>

namespace zarvi {

class AbstractOperationProcess;

/// The pipeline an operation belongs to.
enum class OperationFamily
{
    Signal,
    Image,
    VoluImages,
    Analysis,
    FileEditor
};

/// An operation as the framework knows it: its name (the "Operations" value),
/// family, declared parameters and how to make its process.
struct OperationDescriptor
{
    QString name;
    OperationFamily family = OperationFamily::Signal;
    QList<OperationParameter> parameters;
    std::function<std::unique_ptr<AbstractOperationProcess>()> createProcess;
};

/// Every operation the program offers, declared once and used by the dialogs,
/// the command-line runner and saved pipelines alike. Filled on first use and
/// read-only once runs start, so safe from any thread then.
class OperationRegistry
{
public:
    /// The registry, with the built-in operations; more may be added at start-up, before any run.
    static OperationRegistry& instance();

    const OperationDescriptor* find(const QString& name) const;
    QStringList names(OperationFamily family) const;

    /// Checks a parameter map against its operation's declaration: "Operations"
    /// must name a known operation and every other key must be declared and of
    /// a convertible value. `normalized` holds the values in their declared kinds.
    bool normalize(const QVariantMap& parameters, QVariantMap& normalized, QStringList& errors) const;

    void add(OperationDescriptor descriptor);

private:
    OperationRegistry();
    std::vector<OperationDescriptor> m_operations;
};

} // namespace zarvi
