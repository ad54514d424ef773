#pragma once

#include <QString>

namespace zarvi {

/// What a file to convert holds, judged from its content.
enum class SourceFormat
{
    Unknown,
    PyPhotometry,
    Neurophotometrics,
    TdtBlock,
    Spreadsheet,
    Workbook,
    HDF5,
    Doric,
    TiffStack,
    TiffFolder,
    Video
};

/// Recognises the format of a file or folder to convert from its first bytes (a file's
/// extension decides only between formats whose content is alike, as videos and HDF5
/// files of other programs), so that one Convert entry takes any file. Pure function,
/// safe from any thread.
class SourceDetector
{
public:
    static SourceFormat detect(const QString& path);
};

} // namespace zarvi
