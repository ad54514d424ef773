#pragma once

#include "image/ImageOperationProcess.h"
#include "image/operations/motioncorrection/FrameRegistration.h"

#include <memory>
#include <optional>
#include <vector>

namespace zarvi {

/// "Motion Correction": loads the reference frame (ReferenceFrame of the dataset being
/// corrected, of ReferenceDatapath, or of a dataset of the external ReferenceFilepath),
/// prepares it once, then registers every frame against it and moves the frame back by
/// its shift (FrameRegistration), on the family's frame threads. The corrected stack goes
/// under "MotionCorrectedImages" with the shifts beside it ("AlignmentShifts"); with
/// ApplyShiftsToSensor2 a last pass moves the frames of the series' other sensor by the
/// same shifts into the same run group. Refuses stacks whose frames are not square and
/// references of another size before anything is written. Worker thread.
class MotionCorrectionProcess : public ImageOperationProcess
{
    Q_OBJECT

public:
    using ImageOperationProcess::ImageOperationProcess;

protected:
    bool prepareStack(const ImageStackInfo& input, ImageStackInfo& output,
                      std::size_t& expectedFrames) override;
    bool computeOperation() override;
    bool finishStack() override;
    int lastPassPercent() const override;
    bool lastPass(Feedback* feedback) override;
    std::unique_ptr<ImageFrameWorker> createFrameWorker() override;
    QString progressLabel() const override;
    QString notImageStackMessage() const override;

private:
    /// Reads the reference frame the parameters name and prepares it against `input`.
    bool loadReference(const ImageStackInfo& input);
    /// Finds the stack of the second sensor and checks that it matches `input`.
    bool findSecondSensor(const ImageStackInfo& input);

    std::shared_ptr<const MotionReference> m_reference;
    /// The registration of the frames computed on the run's thread (one frame thread).
    std::optional<FrameRegistration> m_registration;
    /// One shift per frame of the current stack; the frame threads each fill the entries
    /// of their own frames, read once the frames are written.
    std::vector<FrameShift> m_shifts;
    cv::Mat m_corrected;
    QString m_secondSensorStack;
};

} // namespace zarvi
