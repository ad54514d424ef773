#pragma once

#include <QString>

namespace zarvi {

class HDF5Manager_V6;

/// The levels an operation output inherits from its input path.
struct InputLevels
{
    QString device;
    QString series;
    QString sensor;
};

/// Decides where a run's outputs go: "<category>/<device>/<kind>/<series>/<Output><K>"
/// with K one more than the highest number already used there. Pure path logic
/// plus one look at the file; runs on the thread that holds the file.
class OutputLocation
{
public:
    /// Device = second level, series = first level containing "Series" ("Series1"
    /// when none), sensor = the group that holds the input dataset.
    static InputLevels levelsOf(const QString& inputPath);
    static QString seriesGroup(const QString& category, const QString& kind, const InputLevels& levels);
    /// Full path of the next free "<outputName><K>" group under seriesGroup.
    static QString nextRunGroup(HDF5Manager_V6& file, const QString& seriesGroup, const QString& outputName);
};

} // namespace zarvi
