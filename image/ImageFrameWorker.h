#pragma once

#include <opencv2/core.hpp>

#include <cstddef>

namespace zarvi {

/// The computation of one frame of an image operation whose frames do not depend on one
/// another, run by the family's frame threads (ImageOperationProcess::createFrameWorker).
/// Each thread has its own worker and is the only one to use it, so a worker keeps its
/// buffers from frame to frame; what several workers share must not change during the
/// run. Lives on its frame thread.
class ImageFrameWorker
{
public:
    virtual ~ImageFrameWorker() = default;
    /// Computes the result of frame `index` of the input stack from `input` (CV_32FC1, as
    /// read) into `output` (any single-channel image of the stated output size).
    virtual void compute(std::size_t index, const cv::Mat& input, cv::Mat& output) = 0;
};

} // namespace zarvi
