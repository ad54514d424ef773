#pragma once

#include "image/ImageFrameWorker.h"
#include "image/operations/motioncorrection/FrameRegistration.h"

#include <memory>
#include <vector>

namespace zarvi {

/// Motion Correction on one frame thread: registers each frame it is given against the
/// shared reference, moves it back, and puts its shift in the frame's own entry of the
/// run's shift list (no two threads ever touch one entry). Lives on its frame thread.
class MotionCorrectionWorker : public ImageFrameWorker
{
public:
    MotionCorrectionWorker(std::shared_ptr<const MotionReference> reference, std::vector<FrameShift>& shifts)
        : m_registration(std::move(reference)), m_shifts(shifts)
    {
    }

    void compute(std::size_t index, const cv::Mat& input, cv::Mat& output) override
    {
        m_shifts[index] = m_registration.correct(input, output);
    }

private:
    FrameRegistration m_registration;
    std::vector<FrameShift>& m_shifts;
};

} // namespace zarvi
