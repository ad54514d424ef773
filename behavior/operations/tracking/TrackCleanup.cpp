#include "behavior/operations/tracking/TrackCleanup.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>

namespace zarvi {

namespace {

/// numerator / denominator (denominator > 0) rounded half away from zero, exactly.
int roundedQuotient(std::int64_t numerator, std::int64_t denominator)
{
    const std::int64_t magnitude = (2 * std::llabs(numerator) + denominator) / (2 * denominator);
    return static_cast<int>(numerator < 0 ? -magnitude : magnitude);
}

/// The frame an index beyond either end reads: the series mirrored about its ends.
std::size_t mirrored(std::int64_t index, std::int64_t count)
{
    if (count == 1)
        return 0;
    const std::int64_t period = 2 * (count - 1);
    std::int64_t folded = std::llabs(index) % period;
    if (folded > count - 1)
        folded = period - folded;
    return static_cast<std::size_t>(folded);
}

} // namespace

void removeOutliers(std::vector<cv::Point>& positions, int animalSize)
{
    const double longJump = 3.0 * animalSize;
    bool open = false;
    std::size_t openedAt = 0;
    cv::Point openingJump;
    for (std::size_t k = 1; k < positions.size(); ++k) {
        if (isMissing(positions[k - 1]) || isMissing(positions[k]))
            continue;
        const cv::Point jump = positions[k] - positions[k - 1];
        const auto length = static_cast<int>(std::sqrt(double(jump.x) * jump.x + double(jump.y) * jump.y));
        if (length < longJump)
            continue;
        const std::int64_t dot = std::int64_t(jump.x) * openingJump.x + std::int64_t(jump.y) * openingJump.y;
        if (!open || dot >= 0) {
            open = true;
            openedAt = k;
            openingJump = jump;
            continue;
        }
        for (std::size_t j = openedAt; j < k; ++j)
            positions[j] = cv::Point(-1, -1);
        open = false;
    }
}

void interpolateGaps(std::vector<cv::Point>& positions)
{
    std::size_t before = positions.size();
    for (std::size_t k = 0; k < positions.size(); ++k) {
        if (isMissing(positions[k]))
            continue;
        if (before < positions.size() && k > before + 1) {
            const cv::Point a = positions[before];
            const cv::Point difference = positions[k] - a;
            const auto steps = static_cast<std::int64_t>(k - before);
            for (std::int64_t j = 1; j < steps; ++j)
                positions[before + j] = a + cv::Point(roundedQuotient(difference.x * j, steps),
                                                      roundedQuotient(difference.y * j, steps));
        }
        before = k;
    }
}

bool smoothPositions(std::vector<cv::Point>& positions, int window, Feedback* feedback)
{
    const auto count = static_cast<std::int64_t>(positions.size());
    if (count == 0 || window <= 1)
        return true;
    const std::int64_t back = window / 2;
    const std::int64_t ahead = window - 1 - back;
    std::vector<cv::Point> smoothed(positions.size());
    std::int64_t sumX = 0, sumY = 0, valid = 0;
    auto take = [&](std::int64_t index, int sign) {
        const cv::Point& p = positions[mirrored(index, count)];
        if (isMissing(p))
            return;
        sumX += sign * p.x;
        sumY += sign * p.y;
        valid += sign;
    };
    for (std::int64_t j = -back; j <= ahead; ++j)
        take(j, 1);
    ProgressTracker progress(feedback, positions.size());
    for (std::int64_t k = 0; k < count; ++k) {
        if (progress.isCanceled())
            return false;
        const cv::Point& p = positions[static_cast<std::size_t>(k)];
        // A frame that has a position is in its own window, so valid > 0.
        smoothed[static_cast<std::size_t>(k)] =
            isMissing(p) ? p : cv::Point(roundedQuotient(sumX, valid), roundedQuotient(sumY, valid));
        take(k + ahead + 1, 1);
        take(k - back, -1);
        progress.update(static_cast<std::size_t>(k + 1));
    }
    positions = std::move(smoothed);
    return true;
}

} // namespace zarvi
