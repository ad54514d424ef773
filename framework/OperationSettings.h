#pragma once

#include <QString>
#include <QVariantMap>

namespace zarvi {

/// The parameters each operation last ran with from its dialog, kept in the user's
/// settings so that a dialog opens with them the next time (the declarations' defaults
/// fill it the first time). Any thread; QSettings serialises the access.
class OperationSettings
{
public:
    /// The map `operation` last ran with; empty when it never ran from a dialog.
    static QVariantMap last(const QString& operation);
    static void remember(const QString& operation, const QVariantMap& parameters);
};

} // namespace zarvi
