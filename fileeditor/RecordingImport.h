#pragma once

#include "datafile/Feedback.h"
#include "fileeditor/ConversionTarget.h"
#include "fileeditor/RecordingSummary.h"

namespace zarvi {

/// The one entry for recordings of acquisition systems: detects the format from the
/// file's content and hands the request to its reader, to describe what the recording
/// holds before writing, or to convert it. A file of no recording format gets a message
/// naming the formats read. Runs on the job's worker thread (or the command line's).
class RecordingImport
{
public:
    static RecordingSummary describe(const RecordingConversionConfig& config);
    static ConversionResult convert(const RecordingConversionConfig& config, Feedback* feedback = nullptr);
    /// The name of the recording format the path holds ("pyPhotometry", "TDT"...), empty
    /// when it holds none.
    static QString formatName(const QString& path);
};

} // namespace zarvi
