#pragma once

#include "datafile/Feedback.h"

#include <opencv2/core/types.hpp>

#include <vector>

namespace zarvi {

// The steps of Animal Tracking over the whole series of positions, one per frame of
// the tracked segment, plain functions on any thread. (-1, -1) marks a frame without a
// position; every step treats it as a gap, never as a position in the corner.

/// True for the missing-position marker (-1, -1).
inline bool isMissing(const cv::Point& position)
{
    return position.x == -1 && position.y == -1;
}

/// Step 4. Visits the frames in order, skipping the first frame and every frame that
/// or whose predecessor is missing. A jump d = p[k] − p[k−1] of length
/// (int)√(dx² + dy²) below 3 × animalSize is ignored. The first long jump opens an
/// excursion (its frame and vector are kept); a later long jump whose vector has a
/// non-negative dot product with the kept one replaces it; a long jump with a negative
/// dot product closes the excursion: the frames from its opening frame to the one before
/// the closing jump become missing. An excursion still open at the end is left alone.
void removeOutliers(std::vector<cv::Point>& positions, int animalSize);

/// Step 5. Fills each run of G missing frames between two positions a (before) and b
/// (after): the j-th (from 0) gets a + round((b − a) × (j + 1) / (G + 1)) per coordinate,
/// rounded half away from zero. Missing frames before the first or after the last
/// position have one neighbour only and stay missing.
void interpolateGaps(std::vector<cv::Point>& positions);

/// Step 6. Replaces each position by the average of the positions in the window of
/// `window` frames around it, frames k − ⌊window / 2⌋ to k + ⌈window / 2⌉ − 1 (centred
/// for an odd window), rounded half away from zero. Beyond the ends the series is
/// mirrored: index −i reads frame i and index n − 1 + i reads frame n − 1 − i, again
/// and again for a window longer than the series. Missing frames take no part in any
/// average and stay missing. Polls `feedback` for a cancel once per frame; false when
/// cancelled, with the positions as they were.
bool smoothPositions(std::vector<cv::Point>& positions, int window, Feedback* feedback = nullptr);

} // namespace zarvi
