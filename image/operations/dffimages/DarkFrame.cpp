#include "image/operations/dffimages/DarkFrame.h"

#include "datafile/ImageFrameReader.h"
#include "definitions/ImageOperationDefinitions.h"
#include "framework/LockedFileRead.h"

namespace zarvi {

bool readDarkFrame(const QString& filepath, const QString& datapath, cv::Mat& dark, QString& error)
{
    LockedFileRead read(filepath, LockedFileRead::Wait::Briefly);
    if (!read.isOpen()) {
        error = read.error();
        return false;
    }
    ImageFrameReader reader;
    if (!reader.open(read.reader(), datapath, error))
        return false;
    if (reader.info().frames == 0) {
        error = ImageOperationDefinitions::noFramesMessage().arg(datapath);
        return false;
    }
    return reader.readFrame(0, dark, error);
}

} // namespace zarvi
