#pragma once

#include <QString>

#include "datafile/Feedback.h"
#include "fileeditor/ConversionTarget.h"

namespace zarvi {

struct TiffStackConversionConfig
{
    /// A multi-page TIFF file, or a folder of single-page TIFF files taken in name order.
    QString sourcePath;
    /// The sensor names the stack; the data kind is "Images".
    ConversionDestination destination;
    /// Frames per second: frame k is taken at k / frameRate. Used when timestampsPath is empty.
    double frameRate = 0.0;
    /// A .csv file of one column of times in seconds, one per frame; a header line is allowed.
    QString timestampsPath;
};

/// Brings an 8- or 16-bit greyscale TIFF stack into a data file as
/// "DataConverted/<device>/Images/Series<N>/<sensor>/ImageStack" beside its "Time".
/// The stack is streamed: one frame is read and appended at a time, so memory stays
/// the same whatever the stack's size, and the pixels are stored unchanged (8-bit
/// samples widened to 16 bits, "BitCount" 8). Everything is checked before the file is
/// touched; a failed or cancelled conversion leaves nothing behind. Progress: scanning
/// the pages to 5 %, the frames to 100 %. Runs on the job's worker thread.
class TiffStackConverter
{
public:
    static ConversionResult convert(const TiffStackConversionConfig& config, Feedback* feedback = nullptr);
};

} // namespace zarvi
