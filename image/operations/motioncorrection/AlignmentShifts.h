#pragma once

#include "image/operations/motioncorrection/MotionCorrection.h"

#include <QString>
#include <QVariantMap>

#include <vector>

namespace zarvi {

class HDF5Manager_V6;
class HDF5Writer_V6;

/// The shifts of a Motion Correction as the file keeps them: the dataset
/// "AlignmentShifts" beside the corrected "ImageStack" and its "Time", float64
/// [frames, 2], row k holding the x and y shift of frame k in pixels (the shift the frame
/// was moved back by), with "ColumnNames" ("X Shift", "Y Shift") and "Unit" ("px").
/// Used on the thread that holds the file.
class AlignmentShifts
{
public:
    /// Writes `shifts` into the group at `groupPath` with `attributes` (the run's
    /// parameters and source) besides its own. False with `error` on failure.
    static bool write(HDF5Writer_V6& file, const QString& groupPath, const std::vector<FrameShift>& shifts,
                      const QVariantMap& attributes, QString& error);
    /// Reads the shifts at `path`. False with `error` when it is not such a dataset.
    static bool read(HDF5Manager_V6& file, const QString& path, std::vector<FrameShift>& shifts,
                     QString& error);
};

} // namespace zarvi
