#pragma once

#include "image/ImageOperationProcess.h"

namespace zarvi {

/// "Crop": every frame cut to the rectangle [x, y, width, height] of `CropCoordinates`
/// (checked by cropRectangle), written under "CroppedImages". Worker thread.
class CropProcess : public ImageOperationProcess
{
    Q_OBJECT

public:
    using ImageOperationProcess::ImageOperationProcess;

protected:
    bool prepareStack(const ImageStackInfo& input, ImageStackInfo& output,
                      std::size_t& expectedFrames) override;
    bool computeOperation() override;
    QString progressLabel() const override;

private:
    cv::Rect m_rectangle;
};

} // namespace zarvi
