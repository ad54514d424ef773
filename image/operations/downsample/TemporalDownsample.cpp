#include "image/operations/downsample/TemporalDownsample.h"

#include <opencv2/imgproc.hpp>

namespace zarvi {

bool TemporalDownsample::isFactorTooLarge(std::size_t frames, int factor)
{
    return static_cast<std::size_t>(factor) > frames;
}

std::size_t TemporalDownsample::outputFrames(std::size_t frames, int factor)
{
    const auto k = static_cast<std::size_t>(factor);
    return (frames + k - 1) / k;
}

bool TemporalDownsample::wantsFrame(std::size_t index) const
{
    return m_method != Method::Skip || index % static_cast<std::size_t>(m_factor) == 0;
}

bool TemporalDownsample::add(const cv::Mat& frame, double time)
{
    if (m_method == Method::Skip) {
        m_result = frame;
        m_groupTime = time;
        return true;
    }
    if (m_count == 0) {
        // The first frame of a group starts the accumulator as a copy, since the
        // caller reuses its frame buffer.
        m_groupTime = time;
        frame.convertTo(m_accumulator, m_method == Method::Mean ? CV_64F : CV_32F);
    } else if (m_method == Method::Mean || m_method == Method::Sum) {
        cv::accumulate(frame, m_accumulator);
    } else if (m_method == Method::Minimum) {
        cv::min(m_accumulator, frame, m_accumulator);
    } else {
        cv::max(m_accumulator, frame, m_accumulator);
    }
    if (++m_count < m_factor)
        return false;
    completeGroup();
    return true;
}

bool TemporalDownsample::finish()
{
    if (m_count == 0)
        return false;
    completeGroup();
    return true;
}

void TemporalDownsample::completeGroup()
{
    if (m_method == Method::Mean) {
        // A true division, so that a mean ending in .5 stays an exact tie for the rounding.
        m_result.create(m_accumulator.size(), CV_64F);
        const double count = m_count;
        const auto* sum = m_accumulator.ptr<double>();
        auto* mean = m_result.ptr<double>();
        const std::size_t pixels = m_accumulator.total();
        for (std::size_t i = 0; i < pixels; ++i)
            mean[i] = sum[i] / count;
    } else {
        m_result = m_accumulator;
    }
    m_count = 0;
}

} // namespace zarvi
