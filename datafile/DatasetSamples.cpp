#include "datafile/DatasetSamples.h"

#include "datafile/HDF5Manager_V6.h"
#include "definitions/FileDefinitions.h"

namespace zarvi {

bool DatasetSamples::load(HDF5Manager_V6& file, const QString& path, QString& error)
{
    m_mapped = {};
    m_read.clear();
    m_samples = {};
    const hid_t dataset = file.openDatasetForWholeRead(file.fileId(), path);
    if (dataset < 0) {
        error = FileDefinitions::datasetNotFoundMessage().arg(path);
        return false;
    }
    const std::vector<hsize_t> dims = file.dimensions(dataset);
    bool ok = dims.size() == 1;
    if (!ok) {
        error = FileDefinitions::notOneDimensionalMessage().arg(path);
    } else {
        const auto count = static_cast<std::size_t>(dims[0]);
        m_mapped = MappedDataset::map(dataset, H5T_NATIVE_DOUBLE, count);
        if (m_mapped.data()) {
            m_samples = {static_cast<const double*>(m_mapped.data()), count};
        } else if ((ok = file.read(dataset, m_read))) {
            m_samples = m_read;
        } else {
            error = file.lastError();
        }
    }
    file.closeDataset(dataset);
    return ok;
}

} // namespace zarvi
