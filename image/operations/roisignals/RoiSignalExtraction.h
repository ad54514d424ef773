#pragma once

#include "roi/RoiShape.h"

#include <opencv2/core.hpp>

#include <vector>

namespace zarvi {

/// The signals of "ROI Signals": for each ROI, the mean of the frame's pixels inside it,
/// frame after frame, for all ROIs in one pass over the stack. Each ROI's mask is filled
/// once as Remove Background fills its mask (fillRoiMask) and kept cropped to the ROI's
/// bounding rectangle, so a frame costs each ROI a masked mean over its own rectangle
/// only (cv::mean sums in double). The ROIs must lie inside the frame. Any thread; one
/// object per stack.
class RoiSignalExtraction
{
public:
    RoiSignalExtraction(const std::vector<RoiShape>& rois, cv::Size frameSize, std::size_t expectedFrames);

    /// Appends each ROI's mean over `frame` (one channel, the frame size).
    void add(const cv::Mat& frame);
    std::size_t roiCount() const { return m_cells.size(); }
    /// The means of ROI `index` (in the order given), one per frame added.
    const std::vector<double>& values(std::size_t index) const { return m_cells[index].values; }

private:
    struct Cell
    {
        cv::Rect bounds;
        cv::Mat mask;
        std::vector<double> values;
    };

    std::vector<Cell> m_cells;
};

} // namespace zarvi
