#pragma once

#include <QList>
#include <QString>
#include <QVariantMap>

namespace zarvi {

/// A saved sequence of operations: a JSON list of parameter maps, each with its
/// "Operations" key, applied in order, every step to the outputs of the step
/// before. The dialogs' "Load Pipeline...", "Save Pipeline..." of a result and
/// `zarvi-cli run --pipeline` share the file. Pure functions (the registry is read
/// only), any thread.
class PipelineFile
{
public:
    static bool read(const QString& path, QList<QVariantMap>& steps, QString& error);
    static bool write(const QString& path, const QList<QVariantMap>& steps, QString& error);
    /// Checks every step against its operation's declarations (OperationRegistry::normalize);
    /// false with one "Step <n>: ..." problem per fault (rich text).
    static bool check(const QList<QVariantMap>& steps, QStringList& problems);
    /// A step in words, its parameters in the order the operation declares them:
    /// "Decimation — DecimationFactor = 10".
    static QString describe(const QVariantMap& step);
    /// One parameter map from a JSON file, or from the JSON object text itself.
    static bool readParameters(const QString& pathOrJson, QVariantMap& parameters, QString& error);
};

} // namespace zarvi
