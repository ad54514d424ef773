#pragma once

#include "image/operations/motioncorrection/MotionCorrection.h"
#include "image/operations/motioncorrection/MotionReference.h"

#include <complex>
#include <memory>
#include <vector>

namespace zarvi {

/// Registers frames against a MotionReference and moves them back, finding exactly the
/// shifts of registerPlain with less work: the reference is prepared and transformed
/// once; the frame's transform, the cross-power spectrum and the inverse transform work
/// on the half spectrum of a real image (CCS packed), the correlation being real; and the
/// refinement sums half the spectrum, the other half being the conjugate of the first.
/// The refinement is summed in double and rounded to float like the plain one, so the two
/// differ far below the spacing of float values. Keeps its buffers from frame to frame:
/// one object per thread.
class FrameRegistration
{
public:
    explicit FrameRegistration(std::shared_ptr<const MotionReference> reference);

    /// The shift of `frame` (single channel, as stored, the reference's size).
    FrameShift measure(const cv::Mat& frame);
    /// Measures the shift of `frame` and moves it back into `corrected` (another matrix).
    FrameShift correct(const cv::Mat& frame, cv::Mat& corrected);

private:
    /// The position of the maximum of the refinement grid around the whole-pixel
    /// displacement (x, y), from the cross-power spectrum in m_product.
    cv::Point refine(int x, int y);
    /// C(k, l) of the cross-power spectrum for a column l held packed in `column` (0, or
    /// the last column for the middle frequency of an even width).
    std::complex<double> packedColumnValue(int column, int k) const;

    std::shared_ptr<const MotionReference> m_reference;
    cv::Mat m_prepared;
    cv::Mat m_spectrum;
    cv::Mat m_product;
    cv::Mat m_correlation;
    std::vector<std::complex<double>> m_rowKernel;
    std::vector<std::complex<double>> m_columnKernel;
    /// The column kernel of frequencies 1 ... ceil(cols / 2) - 1, real and imaginary parts apart.
    std::vector<double> m_columnReal;
    std::vector<double> m_columnImaginary;
    /// Per row k of the spectrum, its sum over those frequencies, for every grid column.
    std::vector<std::complex<double>> m_halfSums;
    std::vector<std::complex<double>> m_grid;
    cv::Mat m_refined;
};

} // namespace zarvi
