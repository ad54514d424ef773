#pragma once

#include "image/ImageOperationProcess.h"

namespace zarvi {

/// "Binning": every frame resized by 1/2 or 1/4 with bilinear interpolation
/// (binFrame), written under "BinnedImages". Worker thread.
class BinningProcess : public ImageOperationProcess
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
    int m_factor = 2;
    cv::Mat m_binned;
};

} // namespace zarvi
