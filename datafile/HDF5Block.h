#pragma once

#include "datafile/HDF5Handle.h"

#include <QString>

#include <vector>

namespace zarvi {

/// A block of a dataset, count elements per axis from start, checked against the
/// dataset's current extent and selected as a hyperslab, so that one frame of a
/// stack or one range of a stream moves without touching the rest. Holds its
/// dataspaces until destroyed, so the library's reason for a failed read or write
/// is still there to report. Internal to the data-file layer; one thread at a time.
class HDF5Block
{
public:
    HDF5Block(hid_t dataset, const std::vector<hsize_t>& start, const std::vector<hsize_t>& count);

    /// Empty when the block lies inside the dataset; otherwise why it does not,
    /// naming the dataset by its path.
    const QString& problem() const { return m_problem; }
    /// Number of elements in the block: 0 for a zero count, saturated at the largest hsize_t.
    hsize_t elements() const { return m_elements; }

    /// Reads the block, converted to memoryType, into out (nothing for an empty block).
    bool read(hid_t memoryType, void* out) const;
    /// Writes the block from data, converted from memoryType.
    bool write(hid_t memoryType, const void* data) const;

private:
    /// The dataset's chunk shape when its chunks can move straight between the file and
    /// the caller's buffer, past the chunk cache and type conversion: chunked, unfiltered
    /// and stored in memoryType. Empty otherwise.
    std::vector<hsize_t> directChunk(hid_t memoryType) const;
    /// True when the block is exactly one chunk of that shape (a frame of a stack, an
    /// aligned range of a stream).
    bool isWholeChunk(const std::vector<hsize_t>& chunk) const;
    /// Selects the block in the file's dataspace for an ordinary read or write
    /// (whole chunks need no selection).
    bool selectInFile() const;

    hid_t m_dataset;
    std::vector<hsize_t> m_start;
    std::vector<hsize_t> m_count;
    HDF5Handle m_fileSpace;
    mutable HDF5Handle m_memorySpace{H5I_INVALID_HID, H5Sclose};
    hsize_t m_elements = 0;
    QString m_problem;
};

} // namespace zarvi
