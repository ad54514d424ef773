#pragma once

#include <QString>
#include <QStringList>

namespace zarvi {

/// Removing groups and datasets from a data file: which of a selection need removing
/// (a member of a group that goes anyway does not), and the removal itself under the
/// file's lock. Widget-free; the GUI thread calls it for the file browser's Delete.
class DatasetDeletion
{
public:
    struct Result
    {
        /// An operation holds the file; nothing was removed.
        bool busy = false;
        /// Why the file could not be opened; nothing was removed.
        QString openError;
        /// One message per path that could not be removed.
        QStringList failures;
    };

    static bool isSameOrUnder(const QString& path, const QString& ancestor);
    /// The paths of the list that lie inside no other path of it.
    static QStringList outermost(const QStringList& paths);
    /// Removes the links (the space is given back only by repacking). Never waits for the lock.
    static Result remove(const QString& filepath, const QStringList& paths);
};

} // namespace zarvi
