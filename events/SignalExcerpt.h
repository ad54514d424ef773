#pragma once

#include "datafile/SignalDataset.h"

#include <QString>

#include <cstddef>
#include <optional>

namespace zarvi {

class HDF5Manager_V6;

/// Reads a short stretch of a stored signal without loading it whole, e.g. for previews
/// on the GUI thread: the first and last time, and the samples of a time range.
/// Plain functions on the thread that holds the file.
class SignalExcerpt
{
public:
    struct Extent
    {
        std::size_t samples = 0;
        double firstTime = 0.0;
        double lastTime = 0.0;
    };

    /// Sample count and first and last "Time" of the signal whose values are at `valuesPath`.
    static std::optional<Extent> extent(HDF5Manager_V6& file, const QString& valuesPath);

    /// The samples whose times lie in [from, to], with their times and the signal's unit.
    /// Their place is estimated from the mean sample rate and checked against the stored
    /// times; where the rate is uneven, a search over the times finds it. False when the
    /// signal cannot be read; an empty excerpt when no sample lies in the range.
    static bool read(HDF5Manager_V6& file, const QString& valuesPath, double from, double to,
                     Signal& excerpt);
};

} // namespace zarvi
