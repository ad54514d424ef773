#pragma once

#include <QList>
#include <QString>
#include <QVariantMap>

namespace zarvi {

/// A saved sequence of operations: a JSON list of parameter maps, each with its
/// "Operations" key, applied in order, every step to the outputs of the step
/// before. The dialogs' "load pipeline" and `zarvi-cli run --pipeline` read the
/// same file. Pure functions, any thread.
class PipelineFile
{
public:
    static bool read(const QString& path, QList<QVariantMap>& steps, QString& error);
    static bool write(const QString& path, const QList<QVariantMap>& steps, QString& error);
    /// One parameter map from a JSON file, or from the JSON object text itself.
    static bool readParameters(const QString& pathOrJson, QVariantMap& parameters, QString& error);
};

} // namespace zarvi
