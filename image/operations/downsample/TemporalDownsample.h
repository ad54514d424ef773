#pragma once

#include <opencv2/core.hpp>

#include <cstddef>

namespace zarvi {

/// Reduces the number of frames of a stack by an integer factor k, frame by frame, for
/// "Temporal Downsample". The frames are cut into consecutive groups of k (frames
/// 0..k-1, k..2k-1, ...); each group gives one output frame taken at the time of the
/// group's first frame:
/// - Skip: the group's first frame itself (the index divisible by k); the other
///   frames are never needed (wantsFrame) and need not be read;
/// - Mean, Sum, Minimum, Maximum: the pixel-wise reduction of the group's frames.
/// A trailing group shorter than k is reduced as it is (its Mean divides by its own
/// count, its Sum adds fewer frames), so no frame is lost and every method gives the
/// same ceil(n / k) output frames with the same times.
///
/// Sum, Minimum and Maximum accumulate in 32-bit float: frames are non-negative 16-bit
/// integers, so every partial sum up to 2^24 is exact and a sum beyond that is far
/// above 65535 and stays there, which is what the saturating conversion writes anyway.
/// Mean must divide the exact sum, which float no longer holds past 256 frames of
/// 65535, so it sums in double. Any thread; one object per stack.
class TemporalDownsample
{
public:
    enum class Method
    {
        Skip,
        Mean,
        Sum,
        Minimum,
        Maximum
    };

    TemporalDownsample(Method method, int factor) : m_method(method), m_factor(factor) {}

    /// True when the factor exceeds the stack's frame count: even the first group would
    /// be incomplete, which is no downsampling a user means.
    static bool isFactorTooLarge(std::size_t frames, int factor);
    /// The number of output frames for `frames` input frames: ceil(frames / factor).
    static std::size_t outputFrames(std::size_t frames, int factor);

    /// False for the frames Skip leaves out.
    bool wantsFrame(std::size_t index) const;
    /// Takes the next wanted frame (CV_32FC1) in index order, taken at `time`. True when
    /// it completes a group: frame() and time() then hold the output frame.
    bool add(const cv::Mat& frame, double time);
    /// Ends the trailing group after the last frame; true when it held frames, which
    /// frame() and time() then hold reduced.
    bool finish();

    /// The last output frame (CV_32FC1, CV_64FC1 for Mean); valid until the next add().
    const cv::Mat& frame() const { return m_result; }
    double time() const { return m_groupTime; }

private:
    void completeGroup();

    Method m_method;
    int m_factor;
    int m_count = 0;
    double m_groupTime = 0.0;
    cv::Mat m_accumulator;
    cv::Mat m_result;
};

} // namespace zarvi
