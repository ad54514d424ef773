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

} // namespace

HDF5Block::HDF5Block(hid_t dataset, const QString& name, const std::vector<hsize_t>& start,
                     const std::vector<hsize_t>& count)
    : m_dataset(dataset), m_fileSpace(H5Dget_space(dataset), H5Sclose)
{
    const int rank = H5Sget_simple_extent_ndims(m_fileSpace.get());
    if (!m_fileSpace.valid() || rank < 0) {
        m_problem = QStringLiteral("Unable to get the extent of dataset %1").arg(name);
        return;
    }
    std::vector<hsize_t> dims(static_cast<std::size_t>(rank));
    H5Sget_simple_extent_dims(m_fileSpace.get(), dims.data(), nullptr);
    if (start.size() != dims.size() || count.size() != dims.size()) {
        m_problem = QStringLiteral("Dataset %1 has rank %2 but the request has rank %3")
                        .arg(name)
                        .arg(dims.size())
                        .arg(count.size());
        return;
    }
    constexpr hsize_t largest = std::numeric_limits<hsize_t>::max();
    m_elements = H5Sget_simple_extent_type(m_fileSpace.get()) == H5S_NULL ? 0 : 1;
    for (std::size_t i = 0; i < dims.size(); ++i) {
        if (start[i] > dims[i] || count[i] > dims[i] - start[i]) {
            m_problem = QStringLiteral("Block %1 at %2 lies outside dataset %3 of extent %4")
                            .arg(dimensionsText(count), dimensionsText(start), name, dimensionsText(dims));
            return;
        }
        m_elements = count[i] != 0 && m_elements > largest / count[i] ? largest : m_elements * count[i];
    }
    if (m_elements == 0)
        return;
    if (rank > 0 && H5Sselect_hyperslab(m_fileSpace.get(), H5S_SELECT_SET, start.data(), nullptr,
                                        count.data(), nullptr) < 0) {
        m_problem = QStringLiteral("Unable to select a block of dataset %1").arg(name);
        return;
    }
    m_memorySpace = HDF5Handle(
        rank == 0 ? H5Screate(H5S_SCALAR) : H5Screate_simple(rank, count.data(), nullptr), H5Sclose);
}

bool HDF5Block::read(hid_t memoryType, void* out) const
{
    if (!m_problem.isEmpty())
        return false;
    if (m_elements == 0)
        return true;
    return out &&
           H5Dread(m_dataset, memoryType, m_memorySpace.get(), m_fileSpace.get(), H5P_DEFAULT, out) >= 0;
}

bool HDF5Block::write(hid_t memoryType, const void* data) const
{
    if (!m_problem.isEmpty())
        return false;
    if (m_elements == 0)
        return true;
    return data &&
           H5Dwrite(m_dataset, memoryType, m_memorySpace.get(), m_fileSpace.get(), H5P_DEFAULT, data) >= 0;
}

} // namespace zarvi
