#include "image/operations/discardframes/DiscardFramesProcess.h"

#include "datafile/ImageFrameReader.h"
#include "definitions/ImageOperationDefinitions.h"
#include "image/operations/discardframes/FrameAutodetection.h"
#include "image/operations/discardframes/FrameInterpolation.h"

namespace zarvi {

using ID = ImageOperationDefinitions;

bool DiscardFramesProcess::prepareStack(const ImageStackInfo& input, ImageStackInfo& output,
                                        std::size_t& expectedFrames)
{
    m_selection = FrameSelection(input.frames);
    double badIndex = 0.0;
    if (!m_selection.discard(m_parameters.numbers(ID::DiscardedFrames), badIndex)) {
        addError(ID::discardedFrameMessage().arg(QString::number(badIndex), m_inputPath,
                                                 QString::number(input.frames - 1)));
        return false;
    }
    m_interpolate = m_parameters.flag(ID::InterpolateFrames);
    m_hasKept = false;
    m_gapStart = 0;
    output = input;
    // Autodetection may discard more; the count only sizes the chunks of "Time".
    expectedFrames = m_interpolate ? input.frames : m_selection.keptCount();
    return keepsAFrame();
}

bool DiscardFramesProcess::keepsAFrame()
{
    if (m_selection.keptCount() > 0)
        return true;
    addError(ID::allFramesDiscardedMessage().arg(m_inputPath));
    return false;
}

int DiscardFramesProcess::firstPassPercent() const
{
    // The first pass reads every frame, as the second does.
    return m_parameters.flag(ID::AutodetectCorruptedFrames) ? 50 : 0;
}

bool DiscardFramesProcess::scanStack(ImageFrameReader& reader, Feedback* feedback)
{
    feedback->setLabel(ID::estimatingThresholdProgress());
    const std::size_t frames = m_inputInfo.frames;
    std::vector<FrameSummary> summaries(frames);
    ProgressTracker progress(feedback, frames, 0, 95);
    QString error;
    for (std::size_t k = 0; k < frames; ++k) {
        if (stopRequested())
            return false;
        if (!reader.readFrame(k, m_frame, error)) {
            addError(error);
            return false;
        }
        summaries[k] = summarizeFrame(m_frame);
        progress.update(k + 1);
    }
    feedback->setLabel(ID::autodetectingProgress());
    for (std::size_t k : detectCorruptedFrames(summaries))
        m_selection.discard(k);
    feedback->setProgress(100);
    return keepsAFrame();
}

bool DiscardFramesProcess::wantsFrame(std::size_t index) const
{
    // Discarded frames are never read, also when they are interpolated.
    return !m_selection.isDiscarded(index);
}

bool DiscardFramesProcess::computeOperation()
{
    if (m_interpolate && !fillDiscarded(m_frameIndex, &m_frame))
        return false;
    if (!writeFrame(m_frame, m_frameTime))
        return false;
    if (m_interpolate) {
        // The reader refills the buffer it gets back, so swapping keeps the frame without a copy.
        std::swap(m_frame, m_lastKept);
        m_lastKeptTime = m_frameTime;
        m_hasKept = true;
        m_gapStart = m_frameIndex + 1;
    }
    return true;
}

bool DiscardFramesProcess::finishStack()
{
    const bool finished = !m_interpolate || fillDiscarded(m_selection.frameCount(), nullptr);
    m_lastKept.release();
    m_interpolated.release();
    return finished;
}

bool DiscardFramesProcess::fillDiscarded(std::size_t end, const cv::Mat* after)
{
    for (std::size_t k = m_gapStart; k < end; ++k) {
        const cv::Mat* source = m_hasKept ? &m_lastKept : after;
        if (m_hasKept && after) {
            interpolateFrame(m_lastKept, m_lastKeptTime, *after, m_frameTime, m_inputTime[k], m_interpolated);
            source = &m_interpolated;
        }
        if (!writeFrame(*source, m_inputTime[k]))
            return false;
    }
    return true;
}

QString DiscardFramesProcess::progressLabel() const
{
    return ID::discardingProgress();
}

bool DiscardFramesProcess::recordsParameters() const
{
    return !m_parameters.flag(ID::DontSaveParameters);
}

} // namespace zarvi
