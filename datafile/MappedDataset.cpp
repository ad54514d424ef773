#include "datafile/MappedDataset.h"

#include "datafile/StoredChunks.h"

#include <utility>

#include <sys/mman.h>
#include <unistd.h>

namespace zarvi {

MappedDataset::MappedDataset(MappedDataset&& other) noexcept
    : m_pages(std::exchange(other.m_pages, nullptr)), m_bytes(std::exchange(other.m_bytes, 0)),
      m_data(std::exchange(other.m_data, nullptr))
{
}

MappedDataset& MappedDataset::operator=(MappedDataset&& other) noexcept
{
    if (this != &other) {
        release();
        m_pages = std::exchange(other.m_pages, nullptr);
        m_bytes = std::exchange(other.m_bytes, 0);
        m_data = std::exchange(other.m_data, nullptr);
    }
    return *this;
}

MappedDataset::~MappedDataset()
{
    release();
}

void MappedDataset::release()
{
    if (m_pages)
        ::munmap(m_pages, m_bytes);
    m_pages = nullptr;
    m_bytes = 0;
    m_data = nullptr;
}

MappedDataset MappedDataset::map(hid_t dataset, hid_t memoryType, std::size_t elements)
{
    const std::size_t elementBytes = H5Tget_size(memoryType);
    if (elements == 0 || elementBytes == 0)
        return {};
    const StoredChunks stored = StoredChunks::of(dataset, memoryType, elements);
    if (stored.chunks.empty())
        return {};
    const haddr_t first = stored.chunks.front().address;
    for (std::size_t i = 1; i < stored.chunks.size(); ++i) {
        if (stored.chunks[i].address != first + i * stored.chunkBytes)
            return {};
    }
    if (first % elementBytes != 0)
        return {};
    const auto page = static_cast<haddr_t>(::sysconf(_SC_PAGESIZE));
    const haddr_t pageStart = first - first % page;
    const std::size_t lead = static_cast<std::size_t>(first - pageStart);
    MappedDataset mapped;
    mapped.m_bytes = lead + elements * elementBytes;
    void* pages = ::mmap(nullptr, mapped.m_bytes, PROT_READ, MAP_SHARED, stored.descriptor,
                         static_cast<off_t>(pageStart));
    if (pages == MAP_FAILED)
        return {};
    mapped.m_pages = pages;
    mapped.m_data = static_cast<const unsigned char*>(pages) + lead;
    return mapped;
}

} // namespace zarvi
