#include "image/operations/removebackground/RemoveBackgroundProcess.h"

#include "definitions/ImageOperationDefinitions.h"

namespace zarvi {

using ID = ImageOperationDefinitions;

bool RemoveBackgroundProcess::prepareStack(const ImageStackInfo& input, ImageStackInfo& output,
                                           std::size_t& expectedFrames)
{
    const cv::Size frameSize(input.width, input.height);
    RoiShape region;
    if (!BackgroundRemoval::readRegion(m_parameters.map().value(ID::BackgroundCoordinates), frameSize,
                                       region)) {
        addError(ID::backgroundCoordinatesMessage());
        return false;
    }
    m_removal.emplace(region, frameSize);
    output = input;
    expectedFrames = input.frames;
    return true;
}

bool RemoveBackgroundProcess::computeOperation()
{
    m_removal->apply(m_frame, m_corrected);
    return writeFrame(m_corrected, m_frameTime);
}

QString RemoveBackgroundProcess::progressLabel() const
{
    return ID::removingBackgroundProgress();
}

} // namespace zarvi
