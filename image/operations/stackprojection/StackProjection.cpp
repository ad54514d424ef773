#include "image/operations/stackprojection/StackProjection.h"

#include <algorithm>
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
        m_accumulator = cv::Mat::zeros(frame.size(), CV_64F);
        m_sumOfSquares = cv::Mat::zeros(frame.size(), CV_64F);
    }
    for (int y = 0; y < frame.rows; ++y) {
        auto* sum = m_accumulator.ptr<double>(y);
        auto* sumOfSquares = m_sumOfSquares.ptr<double>(y);
        const auto* value = frame.ptr<float>(y);
        for (int x = 0; x < frame.cols; ++x) {
            const double v = value[x];
            sum[x] += v;
            sumOfSquares[x] += v * v;
        }
    }
}

const cv::Mat& StackProjection::result()
{
    if (m_method != Method::StandardDeviation || m_count == 0)
        return m_accumulator;
    m_result.create(m_accumulator.size(), CV_64F);
    const long double n = static_cast<long double>(m_count);
    for (int y = 0; y < m_result.rows; ++y) {
        const auto* sum = m_accumulator.ptr<double>(y);
        const auto* sumOfSquares = m_sumOfSquares.ptr<double>(y);
        auto* deviation = m_result.ptr<double>(y);
        for (int x = 0; x < m_result.cols; ++x) {
            const long double s1 = sum[x];
            const long double spread = n * sumOfSquares[x] - s1 * s1;
            deviation[x] = static_cast<double>(std::sqrt(std::max(spread, 0.0L)) / n);
        }
    }
    return m_result;
}

} // namespace zarvi
