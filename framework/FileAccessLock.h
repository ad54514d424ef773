#pragma once

#include <QString>

#include <mutex>

namespace zarvi {

/// One mutex per data file for the whole process. An operation holds its file's
/// lock for its whole run on the worker thread; the GUI thread only tries it and
/// shows the file as busy instead of blocking. Together with the rule that the
/// GUI never keeps a file open, this keeps views and runs from interfering
/// (HDF5 refuses a read-write open of a file already open read-only). Thread-safe.
class FileAccessLock
{
public:
    /// Blocks until the file is free.
    static std::unique_lock<std::mutex> lock(const QString& path);
    /// For the GUI thread: owns_lock() is false when the file is busy. It returns at
    /// once unless a brief hold has the file, and then waits for that hold to end.
    static std::unique_lock<std::mutex> tryLock(const QString& path);
    /// Blocks until the file is free and marks the hold brief (a worker reading a
    /// frame or two) until endBriefHold(), which is called once the lock is released.
    static std::unique_lock<std::mutex> lockBriefly(const QString& path);
    static void endBriefHold(const QString& path);

private:
    struct Entry;
    static Entry& entryFor(const QString& path);
};

} // namespace zarvi
