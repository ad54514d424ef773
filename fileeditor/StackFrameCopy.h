#pragma once

#include <QString>

#include <cstddef>

namespace zarvi {

class ImageFrameReader;
class ProgressTracker;
class TiffStackWriter;

/// Copies a range of an image stack's frames into a TIFF stack being written. Frames
/// stored as the pages take them are read straight from the data file on both cores,
/// each thread filling and writing every other page; other frames (compressed, or
/// narrowed to 8 bits) go one by one through the library, the page written on a second
/// thread while the next frame is read. Runs on the export's worker thread.
class StackFrameCopy
{
public:
    enum class Outcome
    {
        Copied,
        Failed,
        Canceled
    };

    /// Frames first .. first + count - 1 of `stack` as the frames of `writer`, which was
    /// opened for `count` frames; `error` says why when Failed.
    static Outcome copy(ImageFrameReader& stack, std::size_t first, std::size_t count,
                        TiffStackWriter& writer, ProgressTracker& progress, QString& error);
};

} // namespace zarvi
