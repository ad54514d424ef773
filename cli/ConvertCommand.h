#pragma once

#include <QStringList>

namespace zarvi {

/// `zarvi-cli convert` (see usage()): brings a TIFF stack, a video, a .csv table or a
/// version-5 file into a data file through the same converters as the Convert dialog,
/// with progress on the terminal and Ctrl-C as a cooperative cancel.
/// Exit status: 0 success, 1 the conversion failed, 2 usage, 4 a file the version check
/// refuses, 130 cancelled. Runs on the main thread.
class ConvertCommand
{
public:
    static int run(const QStringList& arguments);
    static const char* usage();
};

} // namespace zarvi
