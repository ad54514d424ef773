#include "datafile/StoredChunks.h"

#include "datafile/HDF5Handle.h"
#include "datafile/JournaledFileDriver.h"

#include <algorithm>

#include <sys/stat.h>

namespace zarvi {

namespace {

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

/// The `count` chunks of `chunkElements` each, chunk i starting at the coordinates that
/// `place(i, first, elementsIn)` gives along with the elements of the extent it holds;
/// none unless every one is stored whole, unfiltered and in the memory type.
template <typename Place>
StoredChunks located(hid_t dataset, hid_t memoryType, hsize_t chunkElements, std::size_t count, Place place)
{
    const HDF5Handle creation(H5Dget_create_plist(dataset), H5Pclose);
    const HDF5Handle stored(H5Dget_type(dataset), H5Tclose);
    if (!creation.valid() || !stored.valid() || H5Pget_nfilters(creation.get()) != 0 ||
        H5Tequal(stored.get(), memoryType) <= 0)
        return {};
    const int fd = descriptorOf(dataset);
    hsize_t allocated = 0;
    struct stat status
    {
    };
    const HDF5Handle space(H5Dget_space(dataset), H5Sclose);
    if (fd < 0 || !space.valid() || H5Dget_num_chunks(dataset, space.get(), &allocated) < 0 ||
        allocated != count || ::fstat(fd, &status) != 0)
        return {};
    const std::size_t elementBytes = H5Tget_size(memoryType);
    StoredChunks found{fd, static_cast<std::size_t>(chunkElements) * elementBytes,
                       std::vector<StoredChunks::Chunk>(count)};
    const auto fileSize = static_cast<haddr_t>(status.st_size);
    hsize_t first[3] = {0, 0, 0};
    for (std::size_t i = 0; i < count; ++i) {
        StoredChunks::Chunk& chunk = found.chunks[i];
        std::size_t elementsIn = 0;
        place(i, first, elementsIn);
        unsigned filters = 0;
        hsize_t size = 0;
        if (H5Dget_chunk_info_by_coord(dataset, first, &filters, &chunk.address, &size) < 0 ||
            chunk.address == HADDR_UNDEF || size != found.chunkBytes || chunk.address > fileSize ||
            fileSize - chunk.address < size) {
            return {};
        }
        chunk.bytes = elementsIn * elementBytes;
    }
    return found;
}

} // namespace

StoredChunks StoredChunks::of(hid_t dataset, hid_t memoryType, std::size_t elements)
{
    hsize_t chunk = 0;
    const HDF5Handle creation(H5Dget_create_plist(dataset), H5Pclose);
    if (!creation.valid() || H5Pget_layout(creation.get()) != H5D_CHUNKED ||
        H5Pget_chunk(creation.get(), 1, &chunk) != 1 || chunk == 0)
        return {};
    const std::size_t count = (elements + chunk - 1) / chunk;
    return located(dataset, memoryType, chunk, count,
                   [&](std::size_t i, hsize_t* first, std::size_t& elementsIn) {
                       first[0] = i * chunk;
                       elementsIn = static_cast<std::size_t>(std::min<hsize_t>(chunk, elements - first[0]));
                   });
}

StoredChunks StoredChunks::ofFrames(hid_t dataset, hid_t memoryType)
{
    const HDF5Handle creation(H5Dget_create_plist(dataset), H5Pclose);
    const HDF5Handle space(H5Dget_space(dataset), H5Sclose);
    hsize_t chunk[3] = {0, 0, 0};
    hsize_t dims[3] = {0, 0, 0};
    if (!creation.valid() || !space.valid() || H5Pget_layout(creation.get()) != H5D_CHUNKED ||
        H5Pget_chunk(creation.get(), 3, chunk) != 3 || H5Sget_simple_extent_ndims(space.get()) != 3 ||
        H5Sget_simple_extent_dims(space.get(), dims, nullptr) != 3 || chunk[0] != dims[0] ||
        chunk[1] != dims[1] || chunk[2] != 1 || dims[0] * dims[1] == 0)
        return {};
    const hsize_t frameElements = dims[0] * dims[1];
    return located(dataset, memoryType, frameElements, static_cast<std::size_t>(dims[2]),
                   [&](std::size_t k, hsize_t* first, std::size_t& elementsIn) {
                       first[0] = 0;
                       first[1] = 0;
                       first[2] = k;
                       elementsIn = static_cast<std::size_t>(frameElements);
                   });
}

} // namespace zarvi
