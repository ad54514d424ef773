#pragma once

#include "datafile/Feedback.h"

#include <QString>

namespace zarvi {

/// Gives back the space that deleted groups and datasets leave in a data file, which
/// HDF5 does not reuse by itself: every member of the root is copied (with its
/// chunking, compression, fill value and attributes) into a new file beside the
/// original, the root's attributes with them, and the new file then takes the
/// original's place in one rename, keeping its permissions. On a failure or a cancel
/// the original stays as it was and the new file is removed. Holds the file's access
/// lock for the whole rewrite, so it runs on a worker thread (or the command line's).
class FileCompaction
{
public:
    struct Result
    {
        bool ok = false;
        bool canceled = false;
        /// "Failed to repack file <name>." when the rewrite failed; empty otherwise.
        QString error;
        /// What went wrong, in the library's or the system's words.
        QString reason;
        qint64 sizeBefore = 0;
        qint64 sizeAfter = 0;
    };

    /// Reports progress once per root member copied (at most once per percent) and
    /// stops between members when asked to.
    static Result compact(const QString& path, Feedback* feedback = nullptr);
};

} // namespace zarvi
