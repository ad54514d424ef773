#pragma once

#include <opencv2/core.hpp>

#include <cstddef>

namespace zarvi {

/// Collapses the frames of a stack into one image, pixel by pixel over time, for
/// "Stack Projection". Frames come one at a time (add), so a stack is never held whole.
/// The accumulator A is 32-bit float and starts as the first frame:
/// - Maximum, Minimum: A = max(A, frame), min(A, frame);
/// - Sum: A = A + frame (exact for every sum below 2^24; a larger sum of non-negative
///   frames is saturated to 65535 on writing anyway);
/// - Mean: the running mean A = (k A + frame) / (k + 1) after k frames, each update
///   evaluated in double and rounded once into A;
/// - Standard Deviation: Welford's one-pass update of the mean and of the sum of squared
///   deviations M2, both in double, giving the population deviation sqrt(M2 / n).
///   One pass reads each frame once, and unlike sums of x and x^2 it does not lose the
///   small variations of bright pixels by cancellation. The population form (n, not
///   n - 1) describes the frames that are there, and makes one frame give 0.
/// Any thread; one object per projected stack.
class StackProjection
{
public:
    enum class Method
    {
        Maximum,
        Minimum,
        Mean,
        Sum,
        StandardDeviation
    };

    explicit StackProjection(Method method) : m_method(method) {}

    /// Adds the next frame (CV_32FC1, the size of the first).
    void add(const cv::Mat& frame);
    std::size_t count() const { return m_count; }
    /// The projection of the frames added so far (CV_32FC1, CV_64FC1 for Standard
    /// Deviation); empty before the first frame. Valid until the next add().
    const cv::Mat& result();

private:
    void addToMean(const cv::Mat& frame);
    void addToDeviation(const cv::Mat& frame);

    Method m_method;
    std::size_t m_count = 0;
    /// A, or for Standard Deviation the running mean (CV_64F).
    cv::Mat m_accumulator;
    /// Standard Deviation: the sum of squared deviations from the running mean (CV_64F).
    cv::Mat m_m2;
    cv::Mat m_result;
};

} // namespace zarvi
