#include "behavior/operations/measures/PathMeasures.h"

#include <cmath>
#include <limits>

namespace zarvi {

namespace {

/// Times on a bin boundary computed in floating point (0.1 * 30 = 3.0000000000000004, or
/// just below) still fall in the bin that starts there.
constexpr double boundaryTolerance = 1e-9;

std::size_t binOf(double t, double first, double binSeconds, std::size_t bins)
{
    const auto bin =
        static_cast<std::size_t>(std::max(0.0, std::floor((t - first) / binSeconds + boundaryTolerance)));
    return std::min(bin, bins - 1);
}

/// What is summed per row before the ratios are taken.
struct RowSums
{
    double distance = 0.0;
    double movingTime = 0.0;
    double trackedTime = 0.0;
    std::vector<double> regionSeconds;
    std::vector<int> entries;
};

} // namespace

PathMeasuresResult measurePath(std::span<const cv::Point> positions, std::span<const double> time,
                               const std::vector<MeasuredRegion>& regions, const PathMeasuresConfig& config)
{
    PathMeasuresResult result;
    const std::size_t n = std::min(positions.size(), time.size());
    if (n == 0)
        return result;
    const std::vector<double> durations = frameDurations(time.first(n));
    const double first = time[0];
    const double end = time[n - 1] + durations[n - 1];
    const bool binned = config.binSeconds > 0.0;
    const std::size_t bins =
        binned ? std::max<std::size_t>(1, static_cast<std::size_t>(std::ceil(
                                              (end - first) / config.binSeconds - boundaryTolerance)))
               : 0;

    // Row 0 is the whole recording; a frame adds to it and to its bin's row.
    std::vector<RowSums> sums(1 + bins);
    for (RowSums& row : sums) {
        row.regionSeconds.assign(regions.size(), 0.0);
        row.entries.assign(regions.size(), 0);
    }
    auto rowsOf = [&](std::size_t frame) {
        const std::size_t bin = binned ? 1 + binOf(time[frame], first, config.binSeconds, bins) : 0;
        return std::pair<RowSums*, RowSums*>{&sums[0], binned ? &sums[bin] : nullptr};
    };
    for (std::size_t k = 0; k < n; ++k) {
        if (isMissingPosition(positions[k]))
            continue;
        const auto [whole, bin] = rowsOf(k);
        for (RowSums* row : {whole, bin}) {
            if (!row)
                continue;
            row->trackedTime += durations[k];
            for (std::size_t r = 0; r < regions.size(); ++r)
                if (regions[r].inside[k])
                    row->regionSeconds[r] += durations[k];
        }
        if (k == 0 || isMissingPosition(positions[k - 1]))
            continue;
        const cv::Point step = positions[k] - positions[k - 1];
        const double length = std::hypot(step.x, step.y) / config.pixelsPerUnit;
        for (RowSums* row : {whole, bin}) {
            if (!row)
                continue;
            row->distance += length;
            row->movingTime += time[k] - time[k - 1];
        }
    }
    for (std::size_t r = 0; r < regions.size(); ++r) {
        std::vector<ZoneVisit> visits =
            zoneVisits(regions[r].inside, positions.first(n), time.first(n), durations);
        for (const ZoneVisit& visit : visits) {
            const auto [whole, bin] = rowsOf(visit.entryFrame);
            ++whole->entries[r];
            if (bin)
                ++bin->entries[r];
        }
        result.visits.push_back(std::move(visits));
    }

    constexpr double none = std::numeric_limits<double>::quiet_NaN();
    for (std::size_t i = 0; i < sums.size(); ++i) {
        const RowSums& s = sums[i];
        MeasuresRow row;
        row.start = i == 0 ? first : first + static_cast<double>(i - 1) * config.binSeconds;
        row.end = i == 0 ? end : std::min(end, first + static_cast<double>(i) * config.binSeconds);
        row.distance = s.distance;
        row.meanSpeed = s.movingTime > 0.0 ? s.distance / s.movingTime : none;
        row.trackedTime = s.trackedTime;
        for (std::size_t r = 0; r < regions.size(); ++r)
            row.regions.push_back({s.regionSeconds[r],
                                   s.trackedTime > 0.0 ? s.regionSeconds[r] / s.trackedTime : none,
                                   s.entries[r]});
        result.rows.push_back(std::move(row));
    }
    return result;
}

double pixelsPerCentimetre(const cv::Point& start, const cv::Point& end, double centimetres)
{
    const double pixels = std::hypot(end.x - start.x, end.y - start.y);
    return pixels > 0.0 && centimetres > 0.0 ? pixels / centimetres : 0.0;
}

} // namespace zarvi
