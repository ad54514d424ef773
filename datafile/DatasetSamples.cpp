#include "datafile/DatasetSamples.h"

#include "datafile/HDF5Manager_V6.h"
#include "datafile/SignalDataset.h"

namespace zarvi {

bool DatasetSamples::load(HDF5Manager_V6& file, const QString& path, QString& error)
{
    m_mapped = {};
    m_read.clear();
    m_samples = {};
    std::size_t count = 0;
    const hid_t dataset = SignalDataset::open1D(file, path, true, count, error);
    if (dataset < 0)
        return false;
    bool ok = true;
    m_mapped = MappedDataset::map(dataset, H5T_NATIVE_DOUBLE, count);
    if (m_mapped.data()) {
        m_samples = {static_cast<const double*>(m_mapped.data()), count};
    } else if ((ok = file.read(dataset, m_read))) {
        m_samples = m_read;
    } else {
        error = file.lastError();
    }
    file.closeDataset(dataset);
    return ok;
}

} // namespace zarvi
