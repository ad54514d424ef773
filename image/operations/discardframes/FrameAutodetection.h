#pragma once

#include <opencv2/core.hpp>

#include <cstddef>
#include <vector>

namespace zarvi {

/// What the autodetection of Discard Frames keeps of one frame from its first pass.
struct FrameSummary
{
    double mean = 0.0;
    double maximum = 0.0;
};

/// The mean and the maximum of a one-channel frame. Any thread.
FrameSummary summarizeFrame(const cv::Mat& frame);

/// How far, in robust standard deviations, a frame's mean may lie from the median of
/// the frame means before the frame counts as corrupted.
inline constexpr double corruptedFrameDeviations = 5.0;
/// The smallest robust standard deviation, as a share of the median frame mean: a stack
/// of nearly identical frames has a spread near zero, and its ordinary noise must not
/// make every slightly brighter frame an outlier.
inline constexpr double minimumRelativeSpread = 0.01;

/// The indices, in increasing order, of the black or corrupted frames among `frames`
/// (one summary per frame of a stack):
/// - black: the maximum is 0, every pixel is 0;
/// - corrupted: among the frames that are not black, |mean - m| > k s, where m is the
///   median of their means, s = max(1.4826 MAD, 0.01 m) with MAD the median absolute
///   deviation of their means from m (1.4826 MAD estimates the standard deviation of
///   normally distributed means without letting the outliers widen it), and
///   k = corruptedFrameDeviations.
/// Black frames are left out of m and MAD so that a stack with many of them still judges
/// its other frames against the good ones. Any thread.
std::vector<std::size_t> detectCorruptedFrames(const std::vector<FrameSummary>& frames);

} // namespace zarvi
