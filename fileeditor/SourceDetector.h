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
    /// True when `path` names something that is neither a regular file nor a folder (a
    /// pipe, a device, a socket), whose opening or reading can wait for ever.
    static bool isSpecialFile(const QString& path);
};

} // namespace zarvi
