#pragma once

#include <QString>

#include <opencv2/core.hpp>

#include <cstddef>

namespace zarvi {

class Feedback;
class ImageFrameReader;

/// The pixel-wise ΔF/F of "Images deltaF/F", in two passes over a stack that see one
/// frame at a time. Every frame is first corrected: the dark frame D is subtracted, and
/// with "remove temporal variations" the result is multiplied by 1/m, m the mean of the
/// frame after that subtraction (the frame scaled to mean 1). The first pass adds the
/// corrected frames into a sum S; F0 = S / N is the stack's mean image. The second pass
/// gives, for each corrected frame F, P = 100 (F - F0) / F0 in percent, rounded to the
/// nearest integer (ties to even) and saturated into unsigned 16 bits: negative values
/// become 0, values above 65535, however large, 65535.
///
/// Decisions the rule leaves open:
/// - a pixel whose F0 is 0 has no relative change: its output is 0 in every frame;
/// - a frame whose mean is 0 (a black frame) cannot be scaled to mean 1: its corrected
///   frame is all 0, instead of the infinities that would poison F0 for the whole stack.
///
/// The corrected frames, F0 and P are 32-bit float, as the rule says. S and the frame
/// means are summed in double: float holds integers exactly only up to 2^24, which a sum
/// of 16-bit pixels passes after 257 frames (or pixels, for a mean). Past it every
/// addition rounds, the error growing with the number of frames, and past 2^25 adding a
/// pixel of 1 changes nothing at all: 1000 frames of 65535 then 1000 of 1 average to
/// 32767.87 in float, exactly 32768 in double, which sums 16-bit pixels exactly up to
/// 2^53 / 65535 (about 10^11) frames.
/// Any thread; compute() is const and may run on several threads at once.
class FrameDeltaF
{
public:
    /// `darkFrame`: CV_32FC1 of the frame size, or empty for none.
    FrameDeltaF(cv::Mat darkFrame, bool removeTemporalVariations);

    /// First pass: adds the next frame (CV_32FC1 or CV_16UC1) to S.
    void addToBaseline(const cv::Mat& frame);
    /// Ends the first pass: F0 = S / N. Call once, after the last frame (at least one).
    void finishBaseline();
    std::size_t baselineFrames() const { return m_frames; }
    /// F0 (CV_32FC1); empty before finishBaseline().
    const cv::Mat& baseline() const { return m_f0; }

    /// Second pass, after finishBaseline(): the ΔF/F in percent of `frame` (CV_32FC1 or
    /// CV_16UC1) as CV_16UC1.
    void compute(const cv::Mat& frame, cv::Mat& percent) const;

private:
    /// 1/m for a frame, as a float factor (0 for a frame whose mean is 0); 1 without
    /// "remove temporal variations".
    float scaleOf(const cv::Mat& frame) const;

    cv::Mat m_dark;
    bool m_removeTemporalVariations;
    cv::Mat m_sum;
    cv::Mat m_f0;
    std::size_t m_frames = 0;
};

/// The first pass over a whole stack: reads each frame of `reader` in order into
/// `deltaF`, then computes F0. Progress goes to `feedback`, polled for a cancel between
/// frames. False with `error` when a frame cannot be read, false with no error on cancel.
bool addStackToBaseline(ImageFrameReader& reader, FrameDeltaF& deltaF, Feedback* feedback, QString& error);

} // namespace zarvi
