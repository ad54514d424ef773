#include "image/operations/discardframes/FrameInterpolation.h"

namespace zarvi {

void interpolateFrame(const cv::Mat& before, double timeBefore, const cv::Mat& after, double timeAfter,
                      double time, cv::Mat& result)
{
    const double span = timeAfter - timeBefore;
    const double weight = span != 0.0 ? (time - timeBefore) / span : 0.5;
    cv::addWeighted(before, 1.0 - weight, after, weight, 0.0, result);
}

} // namespace zarvi
