#pragma once

#include "datafile/HDF5Reader_V6.h"

#include <QString>

#include <mutex>

namespace zarvi {

/// One short read of a data file on the GUI thread. Takes the file's access
/// lock without waiting (an operation writing the file makes it busy), opens the
/// file read-only, and closes it and releases the lock when destroyed, so that
/// the file is never left open while the event loop runs. Keep it local to the
/// function that reads. GUI thread.
class GuiFileRead
{
public:
    explicit GuiFileRead(const QString& path);
    ~GuiFileRead();
    GuiFileRead(const GuiFileRead&) = delete;
    GuiFileRead& operator=(const GuiFileRead&) = delete;

    bool isBusy() const { return m_busy; }
    bool isOpen() const { return m_reader.isOpen(); }
    /// "File is busy", or why the file could not be opened.
    QString error() const { return m_error; }
    HDF5Reader_V6& reader() { return m_reader; }
    hid_t file() const { return m_reader.fileId(); }

private:
    std::unique_lock<std::mutex> m_lock;
    HDF5Reader_V6 m_reader; // declared after the lock: closed before it is released
    bool m_busy = false;
    QString m_error;
};

} // namespace zarvi
