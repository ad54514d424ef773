#include "datafile/ParallelChunkRead.h"

#include "datafile/PositionedIo.h"
#include "datafile/StoredChunks.h"
#include "datafile/TwoHalves.h"

#include <cstdint>

#include <sys/mman.h>

namespace zarvi {

namespace {

/// Below this a second thread costs more than it saves.
constexpr std::size_t SmallestBytes = std::size_t{8} << 20;

} // namespace

bool ParallelChunkRead::read(hid_t dataset, hid_t memoryType, std::size_t elements, void* out)
{
    const std::size_t elementBytes = H5Tget_size(memoryType);
    if (elementBytes == 0 || elements < SmallestBytes / elementBytes)
        return false;
    const StoredChunks stored = StoredChunks::of(dataset, memoryType, elements);
    if (stored.chunks.empty())
        return false;
    auto* bytes = static_cast<unsigned char*>(out);
    const auto readChunks = [&](std::size_t begin, std::size_t end) {
        for (std::size_t i = begin; i < end; ++i) {
            const StoredChunks::Chunk& chunk = stored.chunks[i];
            if (!readWholeAt(stored.descriptor, bytes + i * stored.chunkBytes, chunk.bytes, chunk.address))
                return false;
        }
        return true;
    };
    // Each half records its own outcome; a half that read nothing stays true.
    bool lowerRead = true;
    bool upperRead = true;
    inTwoHalves(stored.chunks.size(), true, [&](std::size_t begin, std::size_t end) {
        (end == stored.chunks.size() ? upperRead : lowerRead) = readChunks(begin, end);
    });
    return lowerRead && upperRead;
}

void touchPagesOnBothCores(void* data, std::size_t bytes)
{
    if (bytes < SmallestBytes)
        return;
    constexpr std::uintptr_t Page = 4096;
    const auto begin = (reinterpret_cast<std::uintptr_t>(data) + Page - 1) & ~(Page - 1);
    const auto end = (reinterpret_cast<std::uintptr_t>(data) + bytes) & ~(Page - 1);
    // Asking the kernel to fill the page tables is one call per half instead of a fault per
    // page; a kernel without it leaves the pages to be touched by the read.
    inTwoHalves((end - begin) / Page, true, [begin](std::size_t first, std::size_t last) {
        ::madvise(reinterpret_cast<void*>(begin + first * Page), (last - first) * Page, MADV_POPULATE_WRITE);
    });
}

} // namespace zarvi
