#pragma once

#include <opencv2/core.hpp>

namespace zarvi {

/// The frame at `time` interpolated linearly, pixel by pixel, between `before` taken at
/// `timeBefore` and `after` taken at `timeAfter` (same size and type, floating point):
/// (1 - w) before + w after with w = (time - timeBefore) / (timeAfter - timeBefore). When
/// the two times coincide the result is the mean of the two frames. Any thread.
void interpolateFrame(const cv::Mat& before, double timeBefore, const cv::Mat& after, double timeAfter,
                      double time, cv::Mat& result);

} // namespace zarvi
