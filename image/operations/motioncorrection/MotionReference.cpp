#include "image/operations/motioncorrection/MotionReference.h"

namespace zarvi {

MotionReference::MotionReference(const cv::Mat& frame, int bitCount) : m_scale(registrationScale(bitCount))
{
    cv::Mat prepared;
    prepareForRegistration(frame, m_scale, prepared);
    cv::dft(prepared, m_spectrum);
    m_rowPhases = refinementPhases(frame.rows);
    m_columnPhases = frame.rows == frame.cols ? m_rowPhases : refinementPhases(frame.cols);
}

} // namespace zarvi
