#pragma once

#include <QString>

#include <variant>

#include "datafile/Feedback.h"
#include "fileeditor/ConversionTarget.h"
#include "fileeditor/RecordingSummary.h"
#include "fileeditor/SpreadsheetConverter.h"
#include "fileeditor/TiffStackConverter.h"
#include "fileeditor/Version5Converter.h"
#include "fileeditor/VideoConverter.h"

namespace zarvi {

/// One conversion as the dialog and the command line describe it.
using ConversionRequest =
    std::variant<TiffStackConversionConfig, VideoConversionConfig, SpreadsheetConversionConfig,
                 Version5ConversionConfig, RecordingConversionConfig>;

/// Runs whichever conversion a request describes, so that the dialog and the command
/// line share one entry. Runs on the job's worker thread (the command line's main thread).
class FileConversion
{
public:
    static ConversionResult run(const ConversionRequest& request, Feedback* feedback = nullptr);
    /// The file the request reads.
    static QString sourcePath(const ConversionRequest& request);
    /// A message when a file the request reads is a pipe, a device or a socket, which a
    /// read would wait on for ever; empty otherwise. run() refuses such a request.
    static QString sourceProblem(const ConversionRequest& request);
};

} // namespace zarvi
