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

} // namespace

StoredChunks StoredChunks::of(hid_t dataset, hid_t memoryType, std::size_t elements)
{
    const HDF5Handle creation(H5Dget_create_plist(dataset), H5Pclose);
    const HDF5Handle stored(H5Dget_type(dataset), H5Tclose);
    hsize_t chunk = 0;
    if (!creation.valid() || !stored.valid() || H5Pget_layout(creation.get()) != H5D_CHUNKED ||
        H5Pget_nfilters(creation.get()) != 0 || H5Pget_chunk(creation.get(), 1, &chunk) != 1 || chunk == 0 ||
        H5Tequal(stored.get(), memoryType) <= 0)
        return {};
    const int fd = descriptorOf(dataset);
    const std::size_t count = (elements + chunk - 1) / chunk;
    hsize_t allocated = 0;
    struct stat status
    {
    };
    const HDF5Handle space(H5Dget_space(dataset), H5Sclose);
    if (fd < 0 || !space.valid() || H5Dget_num_chunks(dataset, space.get(), &allocated) < 0 ||
        allocated != count || ::fstat(fd, &status) != 0)
        return {};
    const std::size_t elementBytes = H5Tget_size(memoryType);
    StoredChunks found{fd, static_cast<std::size_t>(chunk) * elementBytes, std::vector<Chunk>(count)};
    const auto fileSize = static_cast<haddr_t>(status.st_size);
    for (std::size_t i = 0; i < count; ++i) {
        const hsize_t first = i * chunk;
        Chunk& stored = found.chunks[i];
        unsigned filters = 0;
        hsize_t size = 0;
        if (H5Dget_chunk_info_by_coord(dataset, &first, &filters, &stored.address, &size) < 0 ||
            stored.address == HADDR_UNDEF || size != found.chunkBytes || stored.address > fileSize ||
            fileSize - stored.address < size) {
            return {};
        }
        stored.bytes = static_cast<std::size_t>(std::min<hsize_t>(chunk, elements - first)) * elementBytes;
    }
    return found;
}

} // namespace zarvi
