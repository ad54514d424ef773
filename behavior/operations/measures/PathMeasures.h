#pragma once

#include "behavior/operations/measures/ZoneOccupancy.h"

#include <QString>

#include <span>
#include <vector>

namespace zarvi {

/// A region measured along the path (the arena, a zone): its name and, per frame,
/// whether the animal is inside (zoneMembership()).
struct MeasuredRegion
{
    QString name;
    std::vector<std::uint8_t> inside;
};

/// What the path did in one region over a stretch of time.
struct RegionMeasures
{
    /// Seconds in the region: the durations of the frames seen inside.
    double seconds = 0.0;
    /// seconds / the stretch's tracked time; NaN when nothing was tracked.
    double fraction = 0.0;
    /// Visits that start in the stretch.
    int entries = 0;
};

/// The measures of the whole recording or of one time bin.
struct MeasuresRow
{
    double start = 0.0;
    double end = 0.0;
    /// Path length over the steps between consecutive frames both tracked, in pixels
    /// divided by the scale (centimetres when calibrated).
    double distance = 0.0;
    /// distance / the time those steps took; NaN when there was no such step.
    double meanSpeed = 0.0;
    /// Seconds of the frames with a position.
    double trackedTime = 0.0;
    std::vector<RegionMeasures> regions;
};

struct PathMeasuresConfig
{
    /// Pixels per unit of distance: pixels per centimetre when calibrated, else 1.
    double pixelsPerUnit = 1.0;
    /// Length of the time bins in seconds; 0: the whole recording only.
    double binSeconds = 0.0;
};

struct PathMeasuresResult
{
    /// The whole recording, then one row per time bin.
    std::vector<MeasuresRow> rows;
    /// The visits of each region, in the order of the regions.
    std::vector<std::vector<ZoneVisit>> visits;
};

/// Distance, speed and time in regions of a tracked path, whole and per time bin. Frames
/// without a position are gaps in every measure: a step is measured only between two
/// consecutive frames that both have a position, so no distance is ever counted across a
/// gap, and a gap frame counts neither as tracked time nor as time in any region. The
/// recording runs from the first frame's time to the end of the last frame (see
/// frameDurations()); bins of `binSeconds` are counted from the first frame, the last one
/// ending with the recording. A frame belongs, with its whole duration, to the bin its
/// time falls in; a step to the bin of the frame it arrives at; an entry to the bin of
/// the frame that starts the visit. Plain function, any thread.
PathMeasuresResult measurePath(std::span<const cv::Point> positions, std::span<const double> time,
                               const std::vector<MeasuredRegion>& regions, const PathMeasuresConfig& config);

/// Pixels per centimetre from the calibration line and its true length: the line's length
/// in pixels (the larger coordinate difference for the axis-parallel lines the view draws,
/// the Euclidean length for any other) divided by `centimetres`. 0 when either is not
/// positive. Any thread.
double pixelsPerCentimetre(const cv::Point& start, const cv::Point& end, double centimetres);

} // namespace zarvi
