#pragma once

#include "roi/RoiShape.h"

#include <QVariant>

#include <opencv2/core.hpp>

namespace zarvi {

/// The background subtraction of "Remove Background", shared by the process and the
/// preview: the mask of the background region is filled once (fillRoiMask: all
/// contours, filled, 8-connected), then each frame gets the mean m of its pixels inside
/// the mask subtracted. The result is kept in double so that the writer's single
/// rounding and saturation (negative values become 0) act on the exact frame − m.
/// Immutable once made, so a copy may run on any thread.
class BackgroundRemoval
{
public:
    /// Reads `coordinates` (one ROI in the JSON form roisFromJson reads, as text or as
    /// a map) and checks it against a frame of `frameSize`: exactly one ROI, whose
    /// outline encloses a non-zero area and lies inside the frame (so does its bounding
    /// rectangle). False when it is missing or fails any of these; the caller then shows
    /// the operation's one message for a bad background region.
    static bool readRegion(const QVariant& coordinates, cv::Size frameSize, RoiShape& region);

    /// The mask of `region` (which readRegion accepted) on frames of `frameSize`.
    BackgroundRemoval(const RoiShape& region, cv::Size frameSize);

    /// The mean of `frame` (one channel, the frame size) over the region.
    double level(const cv::Mat& frame) const;
    /// output = frame − level(frame), CV_64FC1.
    void apply(const cv::Mat& frame, cv::Mat& output) const;

private:
    /// The region's bounding rectangle and the mask inside it: the mean is taken over
    /// that part of the frame only.
    cv::Rect m_bounds;
    cv::Mat m_mask;
};

} // namespace zarvi
