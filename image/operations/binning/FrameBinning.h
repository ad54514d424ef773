#pragma once

#include <opencv2/core.hpp>

namespace zarvi {

/// Reduces a frame by `factor` in both directions with bilinear interpolation: the
/// output has size round(width / factor) x round(height / factor) and each output
/// pixel is the bilinear sample of the input at its centre. For factor 2 that is the
/// mean of each 2 x 2 block; for factor 4 only the central 2 x 2 pixels of each 4 x 4
/// block contribute. Binned stacks are compared pixel for pixel with stacks binned
/// elsewhere by this rule, so it is not a block sum or block mean. Any thread.
void binFrame(const cv::Mat& frame, cv::Mat& binned, int factor);

/// The output size of binFrame for an input of `size`.
cv::Size binnedSize(cv::Size size, int factor);

} // namespace zarvi
