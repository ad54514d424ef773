#pragma once

#include "datafile/DataFileTree.h"

#include <QString>

#include <vector>

namespace zarvi {

class HDF5Manager_V6;

/// A behaviour video linked into a data file (the group
/// "DataConverted/<device>/Video/Series<N>/Video<K>"), as its attributes describe it.
struct VideoLink
{
    QString path;
    QString filename;
    /// Absolute path of the video when it was linked.
    QString filepath;
    /// Path of the video relative to the data file's folder.
    QString relativeFilePath;
    double frameRate = 0.0;

    /// The video file: the relative path against the folder of `dataFilePath` first, so that
    /// a folder moved as a whole keeps working, then the absolute path. Empty, with `error`
    /// naming both, when neither is a file.
    QString locate(const QString& dataFilePath, QString& error) const;

    /// The links among the nodes of a file's tree: the groups under a "Video" level that
    /// carry "Filepath" or "RelativeFilePath", in tree order.
    static std::vector<VideoLink> find(const std::vector<DataFileNode>& nodes);
    /// The link's "Time" (one entry per frame, seconds); false with `error` when missing.
    static bool readTime(HDF5Manager_V6& file, const QString& linkPath, std::vector<double>& time,
                         QString& error);
};

} // namespace zarvi
