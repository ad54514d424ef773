#pragma once

#include "roi/RoiShape.h"

#include <opencv2/core.hpp>

#include <cstdint>
#include <span>
#include <vector>

namespace zarvi {

/// A tracked position of one frame; (-1, -1) marks a frame without one (a gap).
inline bool isMissingPosition(const cv::Point& position)
{
    return position.x == -1 && position.y == -1;
}

/// One stay of the animal in a region: from the start of its first frame inside to the end
/// of its last frame inside, in seconds on the coordinates' clock.
struct ZoneVisit
{
    double onset = 0.0;
    double offset = 0.0;
    /// The frame that starts the visit (its entry).
    std::size_t entryFrame = 0;
};

/// How long each frame lasts: up to the next frame's time, and the last frame the mean
/// frame interval of the whole series (0 for a single frame). Any thread.
std::vector<double> frameDurations(std::span<const double> time);

/// For each position, 1 when it lies in the region and 0 otherwise (a gap is never
/// inside). A position is inside when its pixel belongs to the region's mask as
/// fillRoiMask draws it, so the outline's own pixels are inside: the rule every region of
/// interest of the program follows. Any thread.
std::vector<std::uint8_t> zoneMembership(const RoiShape& zone, std::span<const cv::Point> positions);

/// The visits of a region, in time order, from the membership of each frame. A visit
/// starts at the first frame found inside after a frame found outside (or at the first
/// frame seen at all) and ends at the end of its last frame inside. Gap frames neither end
/// nor start a visit: a region that holds the animal on both sides of a gap keeps one
/// visit through it, while its time in the region counts only the frames seen there.
/// `durations` as frameDurations() gives them. Any thread.
std::vector<ZoneVisit> zoneVisits(std::span<const std::uint8_t> inside, std::span<const cv::Point> positions,
                                  std::span<const double> time, std::span<const double> durations);

} // namespace zarvi
