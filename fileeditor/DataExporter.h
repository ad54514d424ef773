#pragma once

#include <QString>
#include <QStringList>

#include <cstddef>
#include <optional>
#include <vector>

#include <hdf5.h>

#include "datafile/Feedback.h"

namespace zarvi {

class HDF5Manager_V6;

/// What a dataset is, as far as the export is concerned.
enum class ExportKind
{
    /// A 1-D dataset with a "Time" of its length beside it.
    Signal,
    /// A float array [events, 1] or [events, 2] under an "Events" level.
    Events,
    /// Any other 2-D numeric dataset (perievent matrices and the like).
    Matrix,
    /// Positions [frames, 2] under a "Coordinates" level, with a "Time" of frames entries beside them.
    Coordinates,
    /// An "ImageStack" of height x width x frames.
    ImageStack
};

struct ExportableDataset
{
    QString path;
    ExportKind kind = ExportKind::Signal;
    std::vector<hsize_t> dimensions;
};

struct DataExportConfig
{
    /// The data file.
    QString filepath;
    /// Datasets of one kind, or sensor groups holding a "Signal" or an "ImageStack".
    QStringList datapaths;
    /// .csv or .xlsx for signals, event arrays and 2-D results; .tif or .tiff for a stack.
    QString outputPath;
    /// First frame of a stack to export, from 0.
    std::size_t firstFrame = 0;
    /// Frames to export; 0 exports through the last frame.
    std::size_t frameCount = 0;
};

struct DataExportResult
{
    QString outputPath;
    /// Table rows or stack frames written.
    std::size_t written = 0;
    QString error;
    bool canceled = false;

    bool ok() const { return error.isEmpty(); }
};

/// Writes datasets of a data file to files other programs read: signals with their
/// time to one table ("Time (s)", then one column per signal named by its sensor, with
/// its unit), event arrays to a table of onsets and offsets with rows "Event1"..., one
/// 2-D result to a table with row names, one set of coordinates to a table of their
/// time, x and y (the missing-position marker -1, -1 kept), and an image stack (or a range of its frames)
/// to a multi-page TIFF, streamed one frame at a time. Signals exported together must
/// share their "Time"; signals on different time bases are refused, to be exported one
/// file at a time. A failed or cancelled export leaves no output file behind and any
/// earlier file of that name as it was. Holds the data file's FileAccessLock while
/// reading it. Runs on the job's worker thread.
class DataExporter
{
public:
    static DataExportResult run(const DataExportConfig& config, Feedback* feedback = nullptr);

    /// Every dataset of the file that can be exported, in the order of the file's tree.
    /// Tries the file's lock without waiting: error says when the file is busy.
    static std::vector<ExportableDataset> exportableDatasets(const QString& filepath, QString& error);
    /// What path names in an open file; a group holding "Signal" or "ImageStack" stands
    /// for that dataset. Empty when it is nothing that can be exported.
    static std::optional<ExportableDataset> classify(HDF5Manager_V6& file, const QString& path);
};

} // namespace zarvi
