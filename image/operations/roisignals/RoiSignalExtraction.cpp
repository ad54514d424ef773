#include "image/operations/roisignals/RoiSignalExtraction.h"

#include "roi/RoiGeometry.h"

namespace zarvi {

RoiSignalExtraction::RoiSignalExtraction(const std::vector<RoiShape>& rois, cv::Size frameSize,
                                         std::size_t expectedFrames)
{
    const cv::Rect frame(cv::Point(0, 0), frameSize);
    cv::Mat mask(frameSize, CV_8UC1);
    m_cells.reserve(rois.size());
    for (const RoiShape& roi : rois) {
        fillRoiMask(roi, mask);
        Cell cell;
        cell.bounds = roiBounds(roi) & frame;
        cell.mask = mask(cell.bounds).clone();
        cell.values.reserve(expectedFrames);
        m_cells.push_back(std::move(cell));
    }
}

void RoiSignalExtraction::add(const cv::Mat& frame)
{
    for (Cell& cell : m_cells)
        cell.values.push_back(cv::mean(frame(cell.bounds), cell.mask)[0]);
}

} // namespace zarvi
