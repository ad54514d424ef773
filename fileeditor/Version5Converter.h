#pragma once

#include <QString>

#include "datafile/Feedback.h"
#include "fileeditor/ConversionTarget.h"

namespace zarvi {

struct Version5ConversionConfig
{
    /// The version-5 data file.
    QString sourcePath;
    /// The new version-6 file; empty: beside the source, named "<name>_V6.orvel".
    QString targetPath;
};

/// Brings a file of the previous version into a new version-6 file. The file is first
/// checked the way the version detection prescribes: a version-6 file and a file with
/// configuration only are refused with their titles and messages (result.refused, to be
/// shown as warnings). An accepted file has every root group except "Configurations"
/// copied, as it is, into a newly created file; the notes say so. The layout inside
/// those groups is not rearranged. Runs on the job's worker thread.
class Version5Converter
{
public:
    static ConversionResult convert(const Version5ConversionConfig& config, Feedback* feedback = nullptr);
    /// "<folder>/<name>_V6.orvel" beside the source.
    static QString defaultTargetPath(const QString& sourcePath);
};

} // namespace zarvi
