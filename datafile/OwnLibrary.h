#pragma once

#include <QString>

namespace zarvi {

/// Loads one of the program's own libraries that are kept out of its start-up (the video
/// codecs, the command line's commands) and finds an entry point in it. The library is
/// looked for in the folders the loader searches for the program's dependencies, its run
/// path among them, and opened by its full path. Any thread; a library stays loaded.
class OwnLibrary
{
public:
    /// The address of `entry` in the library `fileName` ("libzarvi_video.so"); null with
    /// `error` set to the loader's reason when the library or the entry is missing.
    static void* entry(const char* fileName, const char* entry, QString& error);
};

} // namespace zarvi
