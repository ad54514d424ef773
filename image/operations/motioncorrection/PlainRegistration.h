#pragma once

#include "image/operations/motioncorrection/MotionCorrection.h"

namespace zarvi {

/// The registration of Motion Correction written as plainly as it is defined, kept as the
/// yardstick of the fast path (FrameRegistration), which must find the same shifts:
/// forward DFTs of the prepared frame and of the prepared reference (complex output), the
/// cross-power spectrum frame x conj(reference) without normalisation, its inverse DFT
/// scaled by 1 / (rows cols), the first maximum of its magnitude, unwrapped; then the
/// partial inverse DFT of the cross-power spectrum on the 12 x 12 grid spaced 1/6 pixel
/// around that peak, summed over the whole spectrum, scaled by 1 / (rows cols u^2), and
/// the first maximum of its magnitude (32-bit float). Nothing is kept between calls.
/// Any thread.
FrameShift registerPlain(const cv::Mat& preparedFrame, const cv::Mat& preparedReference);

/// Prepares `frame` and `referenceFrame` (as stored, of a stack of `bitCount` bits),
/// registers them plainly and moves the frame back by the shift found into `corrected`.
FrameShift correctPlain(const cv::Mat& frame, const cv::Mat& referenceFrame, int bitCount,
                        cv::Mat& corrected);

} // namespace zarvi
