#pragma once

#include <QString>
#include <QVariantMap>

#include <vector>

namespace zarvi {

class HDF5Manager_V6;
class HDF5Writer_V6;

/// A 1-D signal as it lives in a sensor group: values, their "Time" in seconds,
/// and the unit recorded on the values.
struct Signal
{
    std::vector<double> time;
    std::vector<double> values;
    QString unit;
};

/// Reads and writes signals in the layout every operation shares: a sensor group
/// holding the float64 "Signal" values and the float64 "Time" beside them, both
/// rank 1, chunked by min(n, 65536). Called on whatever thread holds the file.
class SignalDataset
{
public:
    /// Reads the values dataset at `valuesPath` and the "Time" in the same group.
    /// False with `error` set when either is missing, not 1-D, or of unequal length.
    static bool read(HDF5Manager_V6& file, const QString& valuesPath, Signal& signal, QString& error);

    /// Creates `groupPath` (and missing parents) and writes "Time" and "Signal".
    /// `attributes` go onto the values dataset; "Unit" is added when not empty.
    static bool write(HDF5Writer_V6& file, const QString& groupPath, const Signal& signal,
                      const QVariantMap& attributes, QString& error);

    /// Full path of the values dataset in a sensor group.
    static QString valuesPath(const QString& groupPath);
};

} // namespace zarvi
