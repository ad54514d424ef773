#include "image/operations/stackprojection/StackProjection.h"

#include <cmath>

namespace zarvi {

void StackProjection::add(const cv::Mat& frame)
{
    if (m_method == Method::StandardDeviation)
        addToDeviation(frame);
    else if (m_count == 0)
        frame.copyTo(m_accumulator);
    else if (m_method == Method::Maximum)
        cv::max(m_accumulator, frame, m_accumulator);
    else if (m_method == Method::Minimum)
        cv::min(m_accumulator, frame, m_accumulator);
    else if (m_method == Method::Sum)
        m_accumulator += frame;
    else
        addToMean(frame);
    ++m_count;
}

void StackProjection::addToMean(const cv::Mat& frame)
{
    const double k = static_cast<double>(m_count);
    for (int y = 0; y < frame.rows; ++y) {
        auto* mean = m_accumulator.ptr<float>(y);
        const auto* value = frame.ptr<float>(y);
        for (int x = 0; x < frame.cols; ++x)
            mean[x] = static_cast<float>((k * mean[x] + value[x]) / (k + 1.0));
    }
}

void StackProjection::addToDeviation(const cv::Mat& frame)
{
    if (m_count == 0) {
        frame.convertTo(m_accumulator, CV_64F);
        m_m2 = cv::Mat::zeros(frame.size(), CV_64F);
        return;
    }
    const double n = static_cast<double>(m_count + 1);
    for (int y = 0; y < frame.rows; ++y) {
        auto* mean = m_accumulator.ptr<double>(y);
        auto* m2 = m_m2.ptr<double>(y);
        const auto* value = frame.ptr<float>(y);
        for (int x = 0; x < frame.cols; ++x) {
            const double delta = value[x] - mean[x];
            mean[x] += delta / n;
            m2[x] += delta * (value[x] - mean[x]);
        }
    }
}

const cv::Mat& StackProjection::result()
{
    if (m_method != Method::StandardDeviation || m_count == 0)
        return m_accumulator;
    m_result.create(m_m2.size(), CV_64F);
    const double n = static_cast<double>(m_count);
    for (int y = 0; y < m_m2.rows; ++y) {
        const auto* m2 = m_m2.ptr<double>(y);
        auto* deviation = m_result.ptr<double>(y);
        for (int x = 0; x < m_m2.cols; ++x)
            deviation[x] = std::sqrt(m2[x] / n);
    }
    return m_result;
}

} // namespace zarvi
