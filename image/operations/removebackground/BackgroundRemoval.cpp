#include "image/operations/removebackground/BackgroundRemoval.h"

#include "roi/RoiGeometry.h"
#include "roi/RoiJson.h"

namespace zarvi {

bool BackgroundRemoval::readRegion(const QVariant& coordinates, cv::Size frameSize, RoiShape& region)
{
    std::vector<RoiShape> rois;
    QString error;
    if (!roisFromJson(coordinates, rois, error) || rois.size() != 1)
        return false;
    const cv::Rect bounds = roiBounds(rois.front());
    const cv::Rect frame(cv::Point(0, 0), frameSize);
    if (!validateRoi(rois.front(), frameSize.width, frameSize.height, error) || (bounds & frame) != bounds ||
        roiArea(rois.front()) <= 0.0)
        return false;
    region = rois.front();
    return true;
}

BackgroundRemoval::BackgroundRemoval(const RoiShape& region, cv::Size frameSize)
{
    cv::Mat mask(frameSize, CV_8UC1);
    fillRoiMask(region, mask);
    m_bounds = roiBounds(region) & cv::Rect(cv::Point(0, 0), frameSize);
    m_mask = mask(m_bounds).clone();
}

double BackgroundRemoval::level(const cv::Mat& frame) const
{
    return cv::mean(frame(m_bounds), m_mask)[0];
}

void BackgroundRemoval::apply(const cv::Mat& frame, cv::Mat& output) const
{
    cv::subtract(frame, cv::Scalar(level(frame)), output, cv::noArray(), CV_64F);
}

} // namespace zarvi
