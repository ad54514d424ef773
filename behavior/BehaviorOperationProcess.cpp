#include "behavior/BehaviorOperationProcess.h"

#include "behavior/FramePrefetcher.h"
#include "definitions/FileDefinitions.h"
#include "definitions/VideoOperationDefinitions.h"
#include "framework/RunTransaction.h"

namespace zarvi {

using FD = FileDefinitions;
using VD = VideoOperationDefinitions;

void BehaviorOperationProcess::runOperation()
{
    RunTransaction run;
    if (!openRun(run, FD::DataBehavior, outputKind(), m_sourceDatapaths))
        return;
    m_run = &run;
    runInputs(run, static_cast<int>(m_sourceDatapaths.size()),
              [this](int i, Feedback* step) { return processVideo(m_sourceDatapaths[i], step); });
    m_run = nullptr;
    m_frame.release();
}

bool BehaviorOperationProcess::processVideo(const QString& linkPath, Feedback* step)
{
    QString error;
    if (!VideoLink::read(m_run->file(), m_filepath, linkPath, m_link, error)) {
        addError(error);
        return false;
    }
    const std::size_t frames = m_link.time.size();
    if (frames == 0) {
        addError(VD::noFramesMessage().arg(linkPath));
        return false;
    }
    FramePrefetcher decoder;
    const VideoInfo video = decoder.open(m_link.videoPath);
    if (!video.ok()) {
        addError(video.error);
        return false;
    }
    if (video.frameCountExact && video.frameCount != frames) {
        addError(VD::frameCountMismatchMessage()
                     .arg(m_link.videoPath)
                     .arg(video.frameCount)
                     .arg(linkPath)
                     .arg(frames));
        return false;
    }
    FrameRange range{0, frames - 1};
    if (!prepareVideo(video, range) || stopRequested())
        return false;

    ScaledFeedback computing(step, 0, framePercent());
    const std::size_t total = range.last - range.first + 1;
    int lastPercent = -1;
    decoder.start(range.first, range.last);
    for (std::size_t done = 0; done < total; ++done) {
        if (stopRequested())
            return false;
        if (!decoder.next(m_frame, m_frameIndex)) {
            addError(decoder.error());
            return false;
        }
        if (!computeOperation() || !m_errors.isEmpty())
            return false;
        const auto percent = static_cast<int>(100 * (done + 1) / total);
        if (percent != lastPercent) {
            lastPercent = percent;
            computing.setLabel(frameProgressLabel(done + 1, total));
            computing.setProgress(percent);
        }
    }
    decoder.stop();
    ScaledFeedback finishing(step, framePercent(), 100);
    return finishVideo(&finishing) && !stopRequested();
}

} // namespace zarvi
