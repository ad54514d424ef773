#include "image/operations/binning/FrameBinning.h"

#include <opencv2/imgproc.hpp>

namespace zarvi {

void binFrame(const cv::Mat& frame, cv::Mat& binned, int factor)
{
    const double scale = 1.0 / factor;
    cv::resize(frame, binned, cv::Size(), scale, scale, cv::INTER_LINEAR);
}

cv::Size binnedSize(cv::Size size, int factor)
{
    // The rounding the resize applies when it derives the size from the scale.
    const double scale = 1.0 / factor;
    return {cvRound(size.width * scale), cvRound(size.height * scale)};
}

} // namespace zarvi
