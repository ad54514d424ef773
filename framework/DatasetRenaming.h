#pragma once

#include <QString>

namespace zarvi {

/// Renaming a result of a data file (a group or dataset the processing or the analyses
/// wrote) in place: which paths may be renamed, which new names are acceptable, and the
/// move of the link under the file's lock, attributes and members going with it.
/// Widget-free; the GUI thread calls it for the file browser's Rename and the command
/// line for `rename`.
class DatasetRenaming
{
public:
    struct Result
    {
        /// An operation holds the file; nothing was renamed.
        bool busy = false;
        /// Why nothing was renamed (rich text); empty on success.
        QString error;
        QString newPath;
    };

    /// A level below the processed or analysed category that is no structural level
    /// (data kind, series) and no dataset a result needs under its own name ("Time",
    /// "Signal", "ImageStack", ...).
    static bool isRenamable(const QString& path);
    /// Why `name` cannot be a new name (rich text), empty when it can. Existence in the
    /// file is checked by rename().
    static QString nameProblem(const QString& name);
    /// Gives the last level of `path` the name `newName`. Never waits for the lock.
    static Result rename(const QString& filepath, const QString& path, const QString& newName);
};

} // namespace zarvi
