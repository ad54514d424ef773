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
    Behavior,
    Analysis,
    FileEditor
};

/// An operation as the framework knows it: its name (the "Operations" value),
/// family, what it does, where it writes, its declared parameters and how to make
/// its process.
struct OperationDescriptor
{
    QString name;
    OperationFamily family = OperationFamily::Signal;
    /// One or two sentences for the operation's button and `zarvi-cli help`.
    QString description;
    /// Name of the numbered output groups ("FilteredSignals" gives FilteredSignals1, ...).
    QString outputName;
    /// What a run writes, in words, for `zarvi-cli help`.
    QString outputs;
    QList<OperationParameter> parameters;
    std::function<std::unique_ptr<AbstractOperationProcess>()> createProcess;
    /// How buttons and dialogs name the operation where the recorded name is not meant to
    /// be read ("AnimalTracking"); empty when it is the name.
    QString title = {};

    QString shownTitle() const { return title.isEmpty() ? name : title; }

    /// The declaration of `key`; null when the operation has no such parameter.
    const OperationParameter* parameter(const QString& key) const;
};

/// Every operation the program offers, declared once and used by the dialogs, the
/// command-line runner and saved pipelines alike. Each family adds its operations
/// from its own registration file at start-up (the programs' and the tests' main
/// functions call them); read-only once runs start, so safe from any thread then.
class OperationRegistry
{
public:
    static OperationRegistry& instance();

    /// Adds an operation; a second one of the same name replaces nothing and is ignored,
    /// so registering a family twice is harmless.
    void add(OperationDescriptor descriptor);
    const OperationDescriptor* find(const QString& name) const;
    QStringList names(OperationFamily family) const;
    /// The families in the order they are shown, with their names.
    static QList<OperationFamily> families();
    static QString familyName(OperationFamily family);

    /// Checks a parameter map against its operation's declaration: "Operations" must
    /// name a known operation, every other key must be declared and of a convertible
    /// value inside its range or choices, and every required key must be given.
    /// `normalized` holds the values in their declared kinds.
    bool normalize(const QVariantMap& parameters, QVariantMap& normalized, QStringList& errors) const;

private:
    OperationRegistry() = default;
    std::vector<OperationDescriptor> m_operations;
};

} // namespace zarvi
