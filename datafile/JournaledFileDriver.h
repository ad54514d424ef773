#pragma once

#include <hdf5.h>

namespace zarvi {

/// The HDF5 file driver every read-write session of a data file goes through: plain
/// positioned reads and writes on one descriptor, as the library's default driver does,
/// with a RollbackJournal that saves each original byte before it is overwritten and is
/// deleted when the file is closed cleanly. However a writing program dies, the next open
/// (RollbackJournal::recover) brings the file back to what it was before. The files it
/// writes are ordinary HDF5 files that any reader opens with the default driver. Called
/// by the library on the thread that uses the file.
class JournaledFileDriver
{
public:
    /// Sets the driver on a file-access property list; false when the library refuses it.
    static bool use(hid_t fileAccess);
    /// Whether a file-access property list's driver is this one.
    static bool isDriver(hid_t driver);
};

} // namespace zarvi
