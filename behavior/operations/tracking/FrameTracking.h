#pragma once

#include <opencv2/core.hpp>

#include <optional>
#include <span>
#include <vector>

namespace zarvi {

/// A threshold's low and high bound, both kept.
struct ThresholdRange
{
    double low = 0.0;
    double high = 0.0;
};

/// The thresholds of Animal Tracking as the range test reads them. Colour mode needs
/// both a Hue and a Saturation range; otherwise the frame is tested in grey.
struct ThresholdSettings
{
    /// OpenCV's 8-bit hue (0 to 180), used as given.
    std::optional<ThresholdRange> hue;
    /// Percent.
    std::optional<ThresholdRange> saturation;
    /// Percent; none: the frame is used as it is.
    std::optional<ThresholdRange> value;

    bool colourMode() const { return hue && saturation; }
};

/// One frame's result: the chosen contour (-1: none) and the animal's position,
/// (-1, -1) when there is none.
struct FramePosition
{
    int contour = -1;
    cv::Point position{-1, -1};
};

// The per-frame steps of Animal Tracking, plain functions on any thread. The work
// buffers are the caller's, so that a run over many frames allocates once.

/// Step 1. The pixels of `frame` (8-bit, or 16-bit in grayscale mode; 1, 3 or 4
/// channels, blue-green-red(-alpha)) that pass the thresholds, as 255 in an 8-bit mask.
/// Without a Value range the frame itself is the mask: its pixels that are not 0 in
/// every channel. Otherwise a 4-channel frame is first reduced to 3 (BGRA to BGR).
/// Grayscale mode: grey (BGR to grey), a Gaussian of sigma 3 in both directions
/// (kernel size from sigma, border reflect-101), kept inside [(int)(low × 255 / 100),
/// (int)(high × 255 / 100)]. Colour mode: the frame read as RGB converted to HSV
/// (a grey frame is first made RGB), blurred the same way, kept inside the box (hue low,
/// saturation low × 255 / 100, value low × 255 / 100) to (hue high, ...), the scaled
/// bounds not truncated. False, with `mask` empty, for a 16-bit frame in colour mode
/// (OpenCV converts only 8-bit and float frames to HSV).
bool thresholdMask(const cv::Mat& frame, const ThresholdSettings& settings, cv::Mat& mask, cv::Mat& work);

/// Step 2's rule over the contours' areas in the order found: the current choice and
/// its area truncated to an integer start as none and 0; a contour replaces the choice
/// when its area is strictly greater than that integer. So of areas with the same
/// integral part the last found wins, of two equal integral areas the first stays, and
/// an area of 0 is never chosen. -1 when nothing is chosen.
int chooseContour(std::span<const double> areas);

/// Steps 2 and 3: the outer and inner contours of `mask` (full hierarchy, simple chain
/// approximation) into `contours`, the choice among them by chooseContour(), and the
/// position trunc(m10 / m00), trunc(m01 / m00) of the chosen contour's moments.
FramePosition findAnimal(const cv::Mat& mask, std::vector<std::vector<cv::Point>>& contours);

/// The animal's size in pixels as the preview estimates it: the longer side of the
/// smallest rotated rectangle around the contour, rounded half away from zero, at least 1.
int estimateAnimalSize(const std::vector<cv::Point>& contour);

} // namespace zarvi
