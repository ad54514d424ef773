#include "image/operations/motioncorrection/MotionReference.h"

namespace zarvi {

MotionReference::MotionReference(const cv::Mat& frame, int bitCount) : m_scale(registrationScale(bitCount))
{
    prepareForRegistration(frame, m_scale, m_prepared);
    cv::dft(m_prepared, m_spectrum);
    m_rowPhases = refinementPhases(frame.rows);
    m_columnPhases = frame.rows == frame.cols ? m_rowPhases : refinementPhases(frame.cols);
}

} // namespace zarvi
