#pragma once

#include <QString>

#include <vector>

namespace zarvi {

class HDF5Manager_V6;

/// A behaviour video as a data file links it (the group
/// "<category>/<device>/Video/Series<N>/Video<K>"): where the video lies and the time of
/// each of its frames. read() finds the video file the way a moved folder keeps working:
/// the path relative to the data file's folder first, then the absolute path. Plain
/// value, read on whatever thread holds the file.
class VideoLink
{
public:
    /// Reads the link at `linkPath` of the data file `dataFilePath` (open as `file`) and
    /// resolves its video. False with `error` set when the group is no video link or
    /// its video is found at neither path.
    static bool read(HDF5Manager_V6& file, const QString& dataFilePath, const QString& linkPath,
                     VideoLink& link, QString& error);

    /// The link group's path in the data file.
    QString path;
    /// The video file found, absolute.
    QString videoPath;
    /// As recorded: relative to the data file's folder, and the file's name.
    QString relativeFilePath;
    QString filename;
    /// Seconds, one per frame, on the link's clock.
    std::vector<double> time;
};

} // namespace zarvi
