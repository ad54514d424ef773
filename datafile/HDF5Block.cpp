#include "datafile/HDF5Block.h"

#include <QStringList>

#include <limits>

namespace zarvi {

namespace {

QString dimensionsText(const std::vector<hsize_t>& dims)
{
    QStringList parts;
    for (const hsize_t d : dims)
        parts << QString::number(d);
    return parts.isEmpty() ? QStringLiteral("scalar") : parts.join(QStringLiteral(" x "));
}

QString datasetPath(hid_t dataset)
{
    const ssize_t length = H5Iget_name(dataset, nullptr, 0);
    if (length <= 0)
        return QStringLiteral("(unnamed)");
    QByteArray path(static_cast<qsizetype>(length) + 1, '\0');
    H5Iget_name(dataset, path.data(), static_cast<size_t>(path.size()));
    path.truncate(static_cast<qsizetype>(length));
    return QString::fromUtf8(path);
}

} // namespace

HDF5Block::HDF5Block(hid_t dataset, const std::vector<hsize_t>& start, const std::vector<hsize_t>& count)
    : m_dataset(dataset), m_start(start), m_count(count), m_fileSpace(H5Dget_space(dataset), H5Sclose)
{
    // The path is looked up only for a message: it costs a search of the file.
    const auto name = [dataset] { return datasetPath(dataset); };
    const int rank = H5Sget_simple_extent_ndims(m_fileSpace.get());
    if (!m_fileSpace.valid() || rank < 0) {
        m_problem = QStringLiteral("Unable to get the extent of dataset %1").arg(name());
        return;
    }
    std::vector<hsize_t> dims(static_cast<std::size_t>(rank));
    H5Sget_simple_extent_dims(m_fileSpace.get(), dims.data(), nullptr);
    if (start.size() != dims.size() || count.size() != dims.size()) {
        m_problem = QStringLiteral("Dataset %1 has rank %2 but the request has rank %3")
                        .arg(name())
                        .arg(dims.size())
                        .arg(count.size());
        return;
    }
    constexpr hsize_t largest = std::numeric_limits<hsize_t>::max();
    m_elements = H5Sget_simple_extent_type(m_fileSpace.get()) == H5S_NULL ? 0 : 1;
    for (std::size_t i = 0; i < dims.size(); ++i) {
        if (start[i] > dims[i] || count[i] > dims[i] - start[i]) {
            m_problem = QStringLiteral("Block %1 at %2 lies outside dataset %3 of extent %4")
                            .arg(dimensionsText(count), dimensionsText(start), name(), dimensionsText(dims));
            return;
        }
        m_elements = count[i] != 0 && m_elements > largest / count[i] ? largest : m_elements * count[i];
    }
}

bool HDF5Block::selectInFile() const
{
    if (m_memorySpace.valid())
        return true;
    if (!m_start.empty() && H5Sselect_hyperslab(m_fileSpace.get(), H5S_SELECT_SET, m_start.data(), nullptr,
                                                m_count.data(), nullptr) < 0)
        return false;
    m_memorySpace = HDF5Handle(
        m_start.empty() ? H5Screate(H5S_SCALAR)
                        : H5Screate_simple(static_cast<int>(m_count.size()), m_count.data(), nullptr),
        H5Sclose);
    return m_memorySpace.valid();
}

std::vector<hsize_t> HDF5Block::directChunk(hid_t memoryType) const
{
    if (m_count.empty())
        return {};
    const HDF5Handle creation(H5Dget_create_plist(m_dataset), H5Pclose);
    if (!creation.valid() || H5Pget_layout(creation.get()) != H5D_CHUNKED ||
        H5Pget_nfilters(creation.get()) != 0)
        return {};
    std::vector<hsize_t> chunk(m_count.size());
    if (H5Pget_chunk(creation.get(), static_cast<int>(chunk.size()), chunk.data()) !=
        static_cast<int>(chunk.size()))
        return {};
    const HDF5Handle stored(H5Dget_type(m_dataset), H5Tclose);
    if (!stored.valid() || H5Tequal(stored.get(), memoryType) <= 0)
        return {};
    return chunk;
}

bool HDF5Block::isWholeChunk(const std::vector<hsize_t>& chunk) const
{
    if (chunk.empty())
        return false;
    for (std::size_t i = 0; i < chunk.size(); ++i)
        if (m_count[i] != chunk[i] || m_start[i] % chunk[i] != 0)
            return false;
    return true;
}

bool HDF5Block::read(hid_t memoryType, void* out) const
{
    if (!m_problem.isEmpty())
        return false;
    if (m_elements == 0)
        return true;
    // A chunk never written has no storage; the ordinary read below gives its fill values.
    std::uint32_t filters = 0;
    if (out && isWholeChunk(directChunk(memoryType)) &&
        H5Dread_chunk(m_dataset, H5P_DEFAULT, m_start.data(), &filters, out) >= 0)
        return true;
    return out && selectInFile() &&
           H5Dread(m_dataset, memoryType, m_memorySpace.get(), m_fileSpace.get(), H5P_DEFAULT, out) >= 0;
}

bool HDF5Block::write(hid_t memoryType, const void* data) const
{
    if (!m_problem.isEmpty())
        return false;
    if (m_elements == 0)
        return true;
    if (!data)
        return false;
    const std::vector<hsize_t> chunk = directChunk(memoryType);
    const std::size_t elementBytes = H5Tget_size(memoryType);
    // A direct write replaces the chunk in the file and drops any copy the cache holds.
    if (isWholeChunk(chunk))
        return H5Dwrite_chunk(m_dataset, H5P_DEFAULT, 0, m_start.data(),
                              static_cast<std::size_t>(m_elements) * elementBytes, data) >= 0;
    // A long 1-D block from a chunk's start goes chunk by chunk straight from the caller's
    // buffer, where the library would first copy each chunk into its cache; only the part
    // of a chunk at its end takes the ordinary way.
    if (chunk.size() == 1 && m_start[0] % chunk[0] == 0 && m_count[0] >= chunk[0]) {
        const hsize_t whole = m_count[0] / chunk[0];
        const std::size_t chunkBytes = static_cast<std::size_t>(chunk[0]) * elementBytes;
        const auto* bytes = static_cast<const unsigned char*>(data);
        for (hsize_t k = 0; k < whole; ++k) {
            const hsize_t offset = m_start[0] + k * chunk[0];
            if (H5Dwrite_chunk(m_dataset, H5P_DEFAULT, 0, &offset, chunkBytes, bytes + k * chunkBytes) < 0)
                return false;
        }
        const hsize_t written = whole * chunk[0];
        return written == m_count[0] || HDF5Block(m_dataset, {m_start[0] + written}, {m_count[0] - written})
                                            .write(memoryType, bytes + whole * chunkBytes);
    }
    return selectInFile() &&
           H5Dwrite(m_dataset, memoryType, m_memorySpace.get(), m_fileSpace.get(), H5P_DEFAULT, data) >= 0;
}

} // namespace zarvi
