#pragma once

#include <hdf5.h>

#include <cstddef>
#include <vector>

namespace zarvi {

/// Where the chunks of a long 1-D dataset, or the frames of an image stack, lie in its
/// file, for reading them without the library (on any thread, through the descriptor):
/// found only where the bytes in the file are the bytes in memory (chunked,
/// unfiltered, stored in the memory type, every chunk written whole and inside the file)
/// and the file's driver reads a plain descriptor that sees every write (the library's
/// default, or the journaled driver, which writes through). Found on the thread that
/// uses the file.
struct StoredChunks
{
    struct Chunk
    {
        haddr_t address = HADDR_UNDEF;
        std::size_t bytes = 0; ///< bytes of the dataset's extent in this chunk
    };

    int descriptor = -1;
    std::size_t chunkBytes = 0; ///< bytes of a whole chunk, as stored
    std::vector<Chunk> chunks;  ///< in the dataset's order; empty when not laid out as above

    /// The chunks of the `elements` (the whole extent) of `dataset` read as `memoryType`.
    static StoredChunks of(hid_t dataset, hid_t memoryType, std::size_t elements);
    /// The frames of a stack [height, width, frames] stored one frame per chunk, frame k
    /// in chunk k, read as `memoryType`.
    static StoredChunks ofFrames(hid_t dataset, hid_t memoryType);
};

} // namespace zarvi
