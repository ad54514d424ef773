#pragma once

#include <QString>
#include <QVariantMap>

#include <cstddef>
#include <utility>
#include <vector>

namespace zarvi {

class HDF5Manager_V6;

/// The perievent chunk of one event, as the analysis would compute it, from only the
/// stretch of the stored signal around that event: what the parameter view previews.
/// A plain function of its inputs that touches no widget: it runs on whichever thread
/// holds the file, the GUI thread for a short read or a worker with its own reader.
class PerieventChunkPreview
{
public:
    struct Result
    {
        /// The chunk of the first side taken, against its time relative to the event.
        std::vector<double> time;
        std::vector<double> values;
        /// That side's statistic time frames.
        std::vector<std::pair<double, double>> frames;
        /// Why there is no chunk (a parameter, an event array, a chunk out of range).
        QString message;
    };

    /// `parameters` as the view builds them ("Operations" included); `event` counts the
    /// events of the array (after the choice of onsets or offsets) from 0. The sample
    /// rate of the excerpt stands in for the whole signal's, so values can differ from
    /// the saved result by a fraction of a sample.
    static Result compute(HDF5Manager_V6& file, const QVariantMap& parameters, const QString& valuesPath,
                          std::size_t event);
};

} // namespace zarvi
