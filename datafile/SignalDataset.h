#pragma once

#include "datafile/DatasetSamples.h"

#include <QString>
#include <QVariantMap>

#include <hdf5.h>

#include <cstddef>
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

/// A signal for an operation that only reads it: values and "Time" mapped from the file
/// where they can be, read otherwise (see DatasetSamples).
struct ReadOnlySignal
{
    DatasetSamples time;
    DatasetSamples values;
    QString unit;
};

/// The extent of a "Time" vector without its samples: enough for the sample rate.
struct TimeSpan
{
    std::size_t count = 0;
    double first = 0.0;
    double last = 0.0;
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

    /// As read(), for a caller that does not change the samples: it is spared their copy
    /// where the file's layout allows.
    static bool readOnly(HDF5Manager_V6& file, const QString& valuesPath, ReadOnlySignal& signal,
                         QString& error);

    /// Reads only the values dataset at `valuesPath` and its unit, and from the "Time"
    /// beside it the length, first and last time, so that an operation that keeps the
    /// input's time reads two of its samples instead of all. False with `error` set as read().
    static bool readValues(HDF5Manager_V6& file, const QString& valuesPath, Signal& signal, TimeSpan& span,
                           QString& error);

    /// Creates `groupPath` (and missing parents) and writes "Time" and "Signal".
    /// `attributes` go onto the values dataset; "Unit" is added when not empty.
    static bool write(HDF5Writer_V6& file, const QString& groupPath, const Signal& signal,
                      const QVariantMap& attributes, QString& error);

    /// As write(), but "Time" is the "Time" of the signal at `timeSourcePath` (a values
    /// path) under a second name, a hard link, rather than read and written back;
    /// `signal.time` is not used. Its length must equal the values'.
    static bool writeWithTimeOf(HDF5Writer_V6& file, const QString& groupPath, const QString& timeSourcePath,
                                const Signal& signal, const QVariantMap& attributes, QString& error);

    /// Opens the 1-D dataset at `path`, for one whole read when `wholeRead`, and gives its
    /// length. A negative id with `error` set when it is missing or not 1-D; the caller
    /// closes the dataset otherwise.
    static hid_t open1D(HDF5Manager_V6& file, const QString& path, bool wholeRead, std::size_t& length,
                        QString& error);

    /// Full path of the values dataset in a sensor group.
    static QString valuesPath(const QString& groupPath);
};

} // namespace zarvi
