#pragma once

#include "image/ImageOperationProcess.h"
#include "image/operations/dffimages/FrameDeltaF.h"

#include <optional>

namespace zarvi {

/// "Images deltaF/F": the ΔF/F in percent of every pixel against the stack's mean image
/// (FrameDeltaF), written under "DFFImages" with BitCount 16. Before the run opens the
/// file it refuses inputs that are not three-dimensional and reads the dark frame, if
/// one is chosen, from its own data file under that file's lock, so that no two file
/// locks are ever held together. Each stack is then read twice: the family's first pass
/// sums the corrected frames into F0 without writing anything, the second writes one
/// output frame per input frame, computed on the family's frame threads
/// (DFFImagesWorker). Worker thread.
class DFFImagesProcess : public ImageOperationProcess
{
    Q_OBJECT

public:
    using ImageOperationProcess::ImageOperationProcess;

protected:
    void runOperation() override;
    bool prepareStack(const ImageStackInfo& input, ImageStackInfo& output,
                      std::size_t& expectedFrames) override;
    int firstPassPercent() const override;
    bool scanStack(ImageFrameReader& reader, Feedback* feedback) override;
    bool computeOperation() override;
    QString progressLabel() const override;
    std::unique_ptr<ImageFrameWorker> createFrameWorker() override;

private:
    bool inputsAreStacks();
    bool loadDarkFrame();

    cv::Mat m_dark;
    std::optional<FrameDeltaF> m_deltaF;
    cv::Mat m_percent;
};

} // namespace zarvi
