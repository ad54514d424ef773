#include "datafile/ParallelChunkRead.h"

#include "datafile/HDF5Handle.h"
#include "datafile/JournaledFileDriver.h"
#include "datafile/PositionedIo.h"
#include "datafile/TwoHalves.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include <sys/mman.h>
#include <sys/stat.h>

namespace zarvi {

namespace {

/// Below this a second thread costs more than it saves.
constexpr std::size_t SmallestBytes = std::size_t{8} << 20;

struct StoredChunk
{
    haddr_t address = HADDR_UNDEF;
    std::size_t bytes = 0;
};

/// The file's descriptor when its driver reads and writes it directly; -1 otherwise.
int descriptorOf(hid_t dataset)
{
    const HDF5Handle file(H5Iget_file_id(dataset), H5Fclose);
    const HDF5Handle access(file.valid() ? H5Fget_access_plist(file.get()) : H5I_INVALID_HID, H5Pclose);
    if (!access.valid())
        return -1;
    const hid_t driver = H5Pget_driver(access.get());
    if (driver != H5FD_SEC2 && !JournaledFileDriver::isDriver(driver))
        return -1;
    // Cached chunks of an open dataset reach the file first.
    unsigned intent = 0;
    if (H5Fget_intent(file.get(), &intent) < 0 || ((intent & H5F_ACC_RDWR) != 0 && H5Dflush(dataset) < 0))
        return -1;
    void* handle = nullptr;
    if (H5Fget_vfd_handle(file.get(), access.get(), &handle) < 0 || !handle)
        return -1;
    return *static_cast<int*>(handle);
}

/// Where each chunk lies, in order; empty unless every chunk is stored whole, unfiltered
/// and inside the file.
std::vector<StoredChunk> chunksOf(hid_t dataset, hid_t memoryType, std::size_t elements, int fd,
                                  std::size_t& chunkElements)
{
    const HDF5Handle creation(H5Dget_create_plist(dataset), H5Pclose);
    const HDF5Handle stored(H5Dget_type(dataset), H5Tclose);
    hsize_t chunk = 0;
    if (!creation.valid() || !stored.valid() || H5Pget_layout(creation.get()) != H5D_CHUNKED ||
        H5Pget_nfilters(creation.get()) != 0 || H5Pget_chunk(creation.get(), 1, &chunk) != 1 || chunk == 0 ||
        H5Tequal(stored.get(), memoryType) <= 0)
        return {};
    const std::size_t count = (elements + chunk - 1) / chunk;
    hsize_t allocated = 0;
    struct stat status
    {
    };
    const HDF5Handle space(H5Dget_space(dataset), H5Sclose);
    if (!space.valid() || H5Dget_num_chunks(dataset, space.get(), &allocated) < 0 || allocated != count ||
        ::fstat(fd, &status) != 0)
        return {};
    const std::size_t chunkBytes = static_cast<std::size_t>(chunk) * H5Tget_size(memoryType);
    const auto fileSize = static_cast<haddr_t>(status.st_size);
    std::vector<StoredChunk> chunks(count);
    for (std::size_t i = 0; i < count; ++i) {
        const hsize_t first = i * chunk;
        unsigned filters = 0;
        hsize_t size = 0;
        if (H5Dget_chunk_info_by_coord(dataset, &first, &filters, &chunks[i].address, &size) < 0 ||
            chunks[i].address == HADDR_UNDEF || size != chunkBytes || chunks[i].address > fileSize ||
            fileSize - chunks[i].address < size) {
            return {};
        }
        chunks[i].bytes =
            static_cast<std::size_t>(std::min<hsize_t>(chunk, elements - first)) * H5Tget_size(memoryType);
    }
    chunkElements = static_cast<std::size_t>(chunk);
    return chunks;
}

} // namespace

bool ParallelChunkRead::read(hid_t dataset, hid_t memoryType, std::size_t elements, void* out)
{
    const std::size_t elementBytes = H5Tget_size(memoryType);
    if (elementBytes == 0 || elements < SmallestBytes / elementBytes)
        return false;
    const int fd = descriptorOf(dataset);
    std::size_t chunkElements = 0;
    const std::vector<StoredChunk> chunks =
        fd < 0 ? std::vector<StoredChunk>{} : chunksOf(dataset, memoryType, elements, fd, chunkElements);
    if (chunks.empty())
        return false;
    auto* bytes = static_cast<unsigned char*>(out);
    const std::size_t chunkBytes = chunkElements * elementBytes;
    const auto readChunks = [&](std::size_t begin, std::size_t end) {
        for (std::size_t i = begin; i < end; ++i) {
            if (!readWholeAt(fd, bytes + i * chunkBytes, chunks[i].bytes, chunks[i].address))
                return false;
        }
        return true;
    };
    // Each half records its own outcome; a half that read nothing stays true.
    bool lowerRead = true;
    bool upperRead = true;
    inTwoHalves(chunks.size(), true, [&](std::size_t begin, std::size_t end) {
        (end == chunks.size() ? upperRead : lowerRead) = readChunks(begin, end);
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
