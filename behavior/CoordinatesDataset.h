#pragma once

#include "datafile/DataFileTree.h"

#include <QString>
#include <QStringList>

#include <opencv2/core.hpp>

#include <vector>

namespace zarvi {

class HDF5Manager_V6;

/// A tracked path as the tracking writes it: one position per frame, (-1, -1) where the
/// animal was not found, with the frames' times in seconds on the recording's clock.
struct TrackedPath
{
    QString path;
    /// The dataset's "Username", else its name.
    QString name;
    std::vector<cv::Point> positions;
    std::vector<double> time;
};

/// Finds and reads the Coordinates datasets of a data file: 32-bit signed integers of
/// [frames, 2] (x, y per frame) under "DataBehavior", named "Coordinates..." with a float
/// "Time" of one entry per frame in the same group, at whatever depth the tracking put
/// them. Plain functions on the thread that holds the file.
class CoordinatesDataset
{
public:
    /// The Coordinates datasets among the nodes of a file's tree, in tree order.
    static QStringList find(const std::vector<DataFileNode>& nodes);
    /// Reads the dataset at `path` and its "Time"; false with `error` when it is not one.
    static bool read(HDF5Manager_V6& file, const QString& path, TrackedPath& tracked, QString& error);
};

} // namespace zarvi
