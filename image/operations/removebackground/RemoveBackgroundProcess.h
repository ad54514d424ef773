#pragma once

#include "image/ImageOperationProcess.h"
#include "image/operations/removebackground/BackgroundRemoval.h"

#include <optional>

namespace zarvi {

/// "Remove Background": every frame minus the mean of its pixels inside the background
/// ROI of `BackgroundCoordinates` (BackgroundRemoval), written under
/// "BackgroundCorrectedImages" with the input's size, frame count and times. The region
/// is read and checked against each stack before its first frame; a missing, unreadable,
/// empty or outside region refuses the run with the operation's message and nothing is
/// written. Worker thread.
class RemoveBackgroundProcess : public ImageOperationProcess
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
    std::optional<BackgroundRemoval> m_removal;
    cv::Mat m_corrected;
};

} // namespace zarvi
