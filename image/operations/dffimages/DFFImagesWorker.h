#pragma once

#include "image/ImageFrameWorker.h"
#include "image/operations/dffimages/FrameDeltaF.h"

namespace zarvi {

/// The second pass of "Images deltaF/F" on a frame thread: each frame's ΔF/F against the
/// mean image, which every frame thread shares and none changes (FrameDeltaF::compute is
/// const). Lives on its frame thread.
class DFFImagesWorker final : public ImageFrameWorker
{
public:
    explicit DFFImagesWorker(const FrameDeltaF& deltaF) : m_deltaF(deltaF) {}

    void compute(std::size_t /*index*/, const cv::Mat& input, cv::Mat& output) override
    {
        m_deltaF.compute(input, output);
    }

private:
    const FrameDeltaF& m_deltaF;
};

} // namespace zarvi
