#pragma once

#include <QString>

#include "datafile/Feedback.h"
#include "fileeditor/ConversionTarget.h"

namespace zarvi {

struct VideoConversionConfig
{
    /// An .avi, .mp4 or .mpeg file.
    QString sourcePath;
    /// Device and series of the link; the sensor names the image stack, when one is made.
    ConversionDestination destination;
    /// Also store the frames, in grey, as an image stack.
    bool asImageStack = false;
};

/// Links a behaviour video into a data file without copying it: the group
/// "DataConverted/<device>/Video/Series<N>/Video<K>" records where the file lies (absolute
/// and relative to the data file), its name, its frame rate and the time of every frame
/// as the container gives it. Optionally the frames are also stored, converted to grey,
/// as "DataConverted/<device>/Images/Series<M>/<sensor>/ImageStack" (uint16, "BitCount"
/// 8) beside the same times, streamed one frame at a time. A failed or cancelled
/// conversion leaves nothing behind. Runs on the job's worker thread.
class VideoConverter
{
public:
    static ConversionResult convert(const VideoConversionConfig& config, Feedback* feedback = nullptr);
};

} // namespace zarvi
