#pragma once

#include "image/ImageOperationProcess.h"
#include "image/operations/discardframes/FrameSelection.h"

namespace zarvi {

/// "Discard Frames": leaves out the frames of `DiscardedFrames` (0-based), and with
/// `AutodetectCorruptedFrames` also the black or corrupted frames found by a first pass
/// (detectCorruptedFrames). The kept frames are written in order with their own times
/// under "ReducedStackImages"; with `InterpolateFrames` each discarded frame is replaced
/// by the linear interpolation in time between the nearest kept frames around it (a copy
/// of the nearest kept frame at either end), so the frame count and times stay. With
/// `DontSaveParameters` the outputs carry no parameters. Worker thread.
class DiscardFramesProcess : public ImageOperationProcess
{
    Q_OBJECT

public:
    using ImageOperationProcess::ImageOperationProcess;

protected:
    bool prepareStack(const ImageStackInfo& input, ImageStackInfo& output,
                      std::size_t& expectedFrames) override;
    int firstPassPercent() const override;
    bool scanStack(ImageFrameReader& reader, Feedback* feedback) override;
    bool wantsFrame(std::size_t index) const override;
    bool computeOperation() override;
    bool finishStack() override;
    QString progressLabel() const override;
    bool recordsParameters() const override;

private:
    /// Refuses a selection that leaves no frame.
    bool keepsAFrame();
    /// Writes the discarded frames from the one after the last kept frame up to `end`
    /// (excluded), interpolated towards `after` (the next kept frame) when there is one.
    bool fillDiscarded(std::size_t end, const cv::Mat* after);

    FrameSelection m_selection;
    bool m_interpolate = false;
    /// The last kept frame and its time, and the first index after it, while interpolating.
    cv::Mat m_lastKept;
    double m_lastKeptTime = 0.0;
    bool m_hasKept = false;
    std::size_t m_gapStart = 0;
    cv::Mat m_interpolated;
};

} // namespace zarvi
