#pragma once

#include <QString>

#include <opencv2/core.hpp>

namespace zarvi {

/// Reads the dark frame of "Images deltaF/F": the first frame of the image stack
/// `datapath` in the data file `filepath` (any data file, the processed one included),
/// as CV_32FC1. The file is read under its own lock, waiting for a run that writes it,
/// and closed again before returning, so callers must not hold a file lock themselves.
/// False with `error` when the file, the stack or its first frame cannot be read.
/// Worker threads.
bool readDarkFrame(const QString& filepath, const QString& datapath, cv::Mat& dark, QString& error);

} // namespace zarvi
