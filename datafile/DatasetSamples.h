#pragma once

#include "datafile/MappedDataset.h"

#include <QString>

#include <span>
#include <vector>

namespace zarvi {

class HDF5Manager_V6;

/// The samples of a 1-D float64 dataset for a caller that only reads them: mapped from the
/// file where MappedDataset can, read into memory otherwise. Loaded on the thread that uses
/// the file; samples() may be read from any thread while this lives.
class DatasetSamples
{
public:
    /// False with `error` set when `path` is missing or not 1-D, or the read fails.
    bool load(HDF5Manager_V6& file, const QString& path, QString& error);

    std::span<const double> samples() const { return m_samples; }
    /// True when the samples are the file's own pages rather than a copy.
    bool isMapped() const { return m_mapped.data() != nullptr; }

private:
    MappedDataset m_mapped;
    std::vector<double> m_read;
    std::span<const double> m_samples;
};

} // namespace zarvi
