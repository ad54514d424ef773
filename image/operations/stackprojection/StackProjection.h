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
/// - Standard Deviation: per-pixel sums S1 of x and S2 of x^2 in double, giving the
///   population deviation sqrt(n S2 - S1^2) / n with the difference taken in long
///   double. Frames of 16-bit values make both sums exact integers (S2 stays below
///   2^53 for two million frames) and the difference exact for stacks of up to 65,536
///   frames, so even a bright pixel keeps its small variations; beyond that the
///   rounding of the difference moves the variance by less than 1e-9. The population
///   form (n, not n - 1) describes the frames that are there, and makes one frame give 0.
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
    /// A, or for Standard Deviation the sum of the values (CV_64F).
    cv::Mat m_accumulator;
    /// Standard Deviation: the sum of the squared values (CV_64F).
    cv::Mat m_sumOfSquares;
    cv::Mat m_result;
};

} // namespace zarvi
