#pragma once

#include <hdf5.h>

#include <cstddef>

namespace zarvi {

/// Whole reads of long 1-D datasets straight from the file's descriptor, the chunks shared
/// between two threads. The library reads chunk after chunk on one thread, under its global
/// lock; with the file in the page cache, a whole read costs the copy and the first touch
/// of the destination's pages, and two cores halve both. Taken only where StoredChunks
/// finds the chunks. Called on the thread that uses the file; the second thread only reads
/// the descriptor.
class ParallelChunkRead
{
public:
    /// Reads `elements` (the dataset's whole extent) into out. False, with nothing to
    /// report, when the dataset is short or not laid out as above: the caller then reads
    /// through the library, which also gives the reason when the file is damaged.
    static bool read(hid_t dataset, hid_t memoryType, std::size_t elements, void* out);
};

/// Touches the pages of a fresh buffer on both cores before it is filled. The kernel
/// zeroes each page on its first touch, which for a long read from the page cache costs
/// more than the copy itself, and would otherwise happen on one thread, page by page.
void touchPagesOnBothCores(void* data, std::size_t bytes);

} // namespace zarvi
