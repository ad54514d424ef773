#pragma once

#include "datafile/DataFileTree.h"

#include <QString>

#include <vector>

namespace zarvi {

class HDF5Manager_V6;

/// A behaviour video linked into a data file (the group
/// "<category>/<device>/Video/Series<N>/Video<K>"), as its attributes describe it, and,
/// once read(), the video file found and the time of each frame. The video is looked for
/// the way a moved folder keeps working: the path relative to the data file's folder
/// first, then the absolute path. Plain value, read on whatever thread holds the file.
struct VideoLink
{
    /// The link group's path in the data file.
    QString path;
    QString filename;
    /// Absolute path of the video when it was linked.
    QString filepath;
    /// Path of the video relative to the data file's folder.
    QString relativeFilePath;
    double frameRate = 0.0;
    /// After read(): the video file found, absolute, and one time per frame in seconds.
    QString videoPath;
    std::vector<double> time;

    /// The video file, relative path first; empty, with `error` naming both, when neither
    /// is a file.
    QString locate(const QString& dataFilePath, QString& error) const;

    /// The links among the nodes of a file's tree: the groups under a "Video" level that
    /// carry "Filepath" or "RelativeFilePath", in tree order.
    static std::vector<VideoLink> find(const std::vector<DataFileNode>& nodes);
    /// The link's "Time" (one entry per frame, seconds); false with `error` when missing.
    static bool readTime(HDF5Manager_V6& file, const QString& linkPath, std::vector<double>& time,
                         QString& error);
    /// Reads the link at `linkPath` of the data file `dataFilePath` (open as `file`), its
    /// "Time", and finds its video. False with `error` set when the group is no video link
    /// or its video is found at neither path.
    static bool read(HDF5Manager_V6& file, const QString& dataFilePath, const QString& linkPath,
                     VideoLink& link, QString& error);
};

} // namespace zarvi
