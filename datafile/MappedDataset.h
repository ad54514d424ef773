#pragma once

#include <hdf5.h>

#include <cstddef>

namespace zarvi {

/// The samples of a long 1-D dataset seen where the file keeps them: its pages mapped
/// read-only from the page cache instead of copied into memory, for operations that only
/// read their input. A read costs a copy and the first touch of fresh pages, which for a
/// signal of an hour is much of what such an operation does. Only where StoredChunks
/// finds the chunks, they lie back to back in their order (a dataset written in one go)
/// and the first is aligned for the element type; otherwise map() gives an empty mapping
/// and the caller reads. The file must not shrink while it is mapped: runs hold its lock,
/// and they only ever add to it. Made on the thread that uses the file; the samples may
/// be read from any thread while the mapping lives.
class MappedDataset
{
public:
    MappedDataset() = default;
    MappedDataset(MappedDataset&& other) noexcept;
    MappedDataset& operator=(MappedDataset&& other) noexcept;
    MappedDataset(const MappedDataset&) = delete;
    MappedDataset& operator=(const MappedDataset&) = delete;
    ~MappedDataset();

    /// Maps the `elements` (the whole extent) of `dataset` read as `memoryType`.
    static MappedDataset map(hid_t dataset, hid_t memoryType, std::size_t elements);

    /// The first sample; null for an empty mapping.
    const void* data() const { return m_data; }

private:
    void release();

    void* m_pages = nullptr;
    std::size_t m_bytes = 0;
    const void* m_data = nullptr;
};

} // namespace zarvi
