#pragma once

#include "image/ImageOperationProcess.h"
#include "image/operations/downsample/TemporalDownsample.h"

#include <optional>

namespace zarvi {

/// "Temporal Downsample": keeps every Factor-th frame (Skip) or reduces each group of
/// Factor consecutive frames to one (Mean, Sum, Minimum, Maximum) with
/// TemporalDownsample, written under "DownSampledImages". Worker thread.
class DownSampleProcess : public ImageOperationProcess
{
    Q_OBJECT

public:
    using ImageOperationProcess::ImageOperationProcess;

protected:
    bool prepareStack(const ImageStackInfo& input, ImageStackInfo& output,
                      std::size_t& expectedFrames) override;
    bool wantsFrame(std::size_t index) const override;
    bool computeOperation() override;
    bool finishStack() override;
    QString progressLabel() const override;

private:
    std::optional<TemporalDownsample> m_downsample;
};

} // namespace zarvi
