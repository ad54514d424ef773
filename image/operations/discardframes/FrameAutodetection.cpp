#include "image/operations/discardframes/FrameAutodetection.h"

#include "numeric/Statistics.h"

#include <algorithm>
#include <cmath>

namespace zarvi {

FrameSummary summarizeFrame(const cv::Mat& frame)
{
    double maximum = 0.0;
    cv::minMaxLoc(frame, nullptr, &maximum);
    return {cv::mean(frame)[0], maximum};
}

std::vector<std::size_t> detectCorruptedFrames(const std::vector<FrameSummary>& frames)
{
    std::vector<double> means;
    for (const FrameSummary& frame : frames) {
        if (frame.maximum != 0.0)
            means.push_back(frame.mean);
    }
    double centre = 0.0;
    double limit = 0.0;
    if (!means.empty()) {
        centre = Statistics::median(means);
        const double spread = std::max(1.4826 * Statistics::medianAbsoluteDeviation(means),
                                       minimumRelativeSpread * std::abs(centre));
        limit = corruptedFrameDeviations * spread;
    }
    std::vector<std::size_t> detected;
    for (std::size_t k = 0; k < frames.size(); ++k) {
        if (frames[k].maximum == 0.0 || std::abs(frames[k].mean - centre) > limit)
            detected.push_back(k);
    }
    return detected;
}

} // namespace zarvi
