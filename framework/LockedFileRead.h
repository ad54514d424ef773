#pragma once

#include "datafile/HDF5Reader_V6.h"

#include <QString>

#include <mutex>

namespace zarvi {

/// One short read of a data file under its access lock: takes the file's
/// FileAccessLock (at once or not at all on the GUI thread, waiting on a worker),
/// opens the file read-only, and closes it and releases the lock when destroyed, so
/// that no file stays open between reads. Keep it local to the function that reads.
/// Any thread; one object is used by one thread.
class LockedFileRead
{
public:
    enum class Wait
    {
        /// The GUI thread never waits: a file an operation is writing is reported busy.
        No,
        /// A worker thread waits for the running operation to finish.
        Yes,
        /// As Yes, for a read of a frame or two that the GUI thread waits out
        /// rather than reporting the file busy.
        Briefly
    };

    explicit LockedFileRead(const QString& path, Wait wait = Wait::No);
    ~LockedFileRead();
    LockedFileRead(const LockedFileRead&) = delete;
    LockedFileRead& operator=(const LockedFileRead&) = delete;

    bool isBusy() const { return m_busy; }
    bool isOpen() const { return m_reader.isOpen(); }
    /// "File is busy", or why the file could not be opened.
    QString error() const { return m_error; }
    HDF5Reader_V6& reader() { return m_reader; }
    hid_t file() const { return m_reader.fileId(); }

private:
    QString m_path;
    bool m_brief = false;
    std::unique_lock<std::mutex> m_lock;
    HDF5Reader_V6 m_reader; // declared after the lock: closed before it is released
    bool m_busy = false;
    QString m_error;
};

} // namespace zarvi
