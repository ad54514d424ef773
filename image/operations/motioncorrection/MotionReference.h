#pragma once

#include "image/operations/motioncorrection/MotionCorrection.h"

#include <complex>
#include <vector>

namespace zarvi {

/// The reference frame of a Motion Correction run, prepared once: the spectrum of its edge
/// map as cv::dft gives it for a real image (CCS packed: half the spectrum, the rest being
/// its conjugate), the scale of the stack's bit depth and the phases of the refinement.
/// Immutable once built, so every thread that registers frames shares one. Any thread.
class MotionReference
{
public:
    /// `frame` is the reference frame as stored (single channel), `bitCount` the bit depth
    /// of the stacks registered against it.
    MotionReference(const cv::Mat& frame, int bitCount);

    cv::Size size() const { return m_spectrum.size(); }
    double scale() const { return m_scale; }
    const cv::Mat& spectrum() const { return m_spectrum; }
    const std::vector<std::complex<double>>& rowPhases() const { return m_rowPhases; }
    const std::vector<std::complex<double>>& columnPhases() const { return m_columnPhases; }

private:
    double m_scale;
    cv::Mat m_spectrum;
    std::vector<std::complex<double>> m_rowPhases;
    std::vector<std::complex<double>> m_columnPhases;
};

} // namespace zarvi
