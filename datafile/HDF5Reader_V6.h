#pragma once

#include "datafile/HDF5Manager_V6.h"

namespace zarvi {

/// Read-only access to a data file. Construct, open(path), read, and let the
/// destructor close what is left. Used on one thread at a time.
class HDF5Reader_V6 : public HDF5Manager_V6
{
public:
    /// Opens the file read-only; a negative identifier on failure (see lastError()).
    hid_t open(const QString& path) { return HDF5Manager_V6::open(path, true); }
};

} // namespace zarvi
