#include "image/operations/crop/CropProcess.h"

#include "definitions/ImageOperationDefinitions.h"
#include "image/operations/crop/FrameCrop.h"

namespace zarvi {

using ID = ImageOperationDefinitions;

bool CropProcess::prepareStack(const ImageStackInfo& input, ImageStackInfo& output,
                               std::size_t& expectedFrames)
{
    switch (
        cropRectangle(m_parameters.numbers(ID::CropCoordinates), {input.width, input.height}, m_rectangle)) {
    case CropProblem::BadCoordinates:
        addError(ID::cropCoordinatesMessage());
        return false;
    case CropProblem::OutsideFrame:
        addError(ID::cropOutsideMessage());
        return false;
    case CropProblem::None:
        break;
    }
    output = input;
    output.width = m_rectangle.width;
    output.height = m_rectangle.height;
    expectedFrames = input.frames;
    return true;
}

bool CropProcess::computeOperation()
{
    // A view on the frame: the writer copies the rectangle's rows as it converts them.
    return writeFrame(m_frame(m_rectangle), m_frameTime);
}

QString CropProcess::progressLabel() const
{
    return ID::croppingProgress();
}

} // namespace zarvi
