#include "behavior/operations/measures/ZoneOccupancy.h"

#include "roi/RoiGeometry.h"

namespace zarvi {

std::vector<double> frameDurations(std::span<const double> time)
{
    const std::size_t n = time.size();
    std::vector<double> durations(n, 0.0);
    for (std::size_t k = 0; k + 1 < n; ++k)
        durations[k] = time[k + 1] - time[k];
    if (n > 1)
        durations[n - 1] = (time[n - 1] - time[0]) / static_cast<double>(n - 1);
    return durations;
}

std::vector<std::uint8_t> zoneMembership(const RoiShape& zone, std::span<const cv::Point> positions)
{
    std::vector<std::uint8_t> inside(positions.size(), 0);
    const cv::Rect bounds = roiBounds(zone);
    if (bounds.empty())
        return inside;
    // The mask covers the region's extent only, so a zone costs its own size whatever
    // the video's.
    RoiShape local = zone;
    for (cv::Point& point : local.points)
        point -= bounds.tl();
    cv::Mat mask(bounds.size(), CV_8UC1);
    fillRoiMask(local, mask);
    for (std::size_t k = 0; k < positions.size(); ++k) {
        const cv::Point& p = positions[k];
        inside[k] =
            !isMissingPosition(p) && bounds.contains(p) && mask.at<std::uint8_t>(p - bounds.tl()) != 0;
    }
    return inside;
}

std::vector<ZoneVisit> zoneVisits(std::span<const std::uint8_t> inside, std::span<const cv::Point> positions,
                                  std::span<const double> time, std::span<const double> durations)
{
    std::vector<ZoneVisit> visits;
    bool visiting = false;
    ZoneVisit current;
    for (std::size_t k = 0; k < positions.size(); ++k) {
        if (isMissingPosition(positions[k]))
            continue;
        if (inside[k]) {
            if (!visiting) {
                current = ZoneVisit{time[k], time[k], k};
                visiting = true;
            }
            current.offset = time[k] + durations[k];
        } else if (visiting) {
            visits.push_back(current);
            visiting = false;
        }
    }
    if (visiting)
        visits.push_back(current);
    return visits;
}

} // namespace zarvi
