#include "image/operations/splitimagesinseries/SplitImagesInSeriesProcess.h"

#include "definitions/ImageOperationDefinitions.h"
#include "framework/OutputLocation.h"
#include "image/operations/splitimagesinseries/SeriesSplit.h"

namespace zarvi {

using ID = ImageOperationDefinitions;

bool SplitImagesInSeriesProcess::prepareStack(const ImageStackInfo& input, ImageStackInfo& output,
                                              std::size_t& expectedFrames)
{
    const QString text = m_parameters.text(ID::Duration);
    const std::optional<double> duration = parseSplitDuration(text);
    if (!duration) {
        addError(ID::splitDurationMessage().arg(text.toHtmlEscaped(), ID::DurationFormat));
        return false;
    }
    m_duration = *duration;
    m_starts.clear();
    m_started = 0;
    output = input;
    // The first series may hold every frame; the count only sizes the chunks of "Time".
    expectedFrames = input.frames;
    return true;
}

bool SplitImagesInSeriesProcess::scanStack(ImageFrameReader&, Feedback* feedback)
{
    feedback->setLabel(ID::splitAnalysisProgress());
    const SplitMethod method = m_parameters.text(ID::Method) == ID::SplitByDuration
                                   ? SplitMethod::SplitByDuration
                                   : SplitMethod::DetectTimeGaps;
    m_starts = seriesStarts(m_inputTime, method, m_duration);
    feedback->setProgress(100);
    return true;
}

bool SplitImagesInSeriesProcess::computeOperation()
{
    if (m_started < m_starts.size() && m_frameIndex == m_starts[m_started]) {
        ++m_started;
        // No "Series" in the name: in this file format a level containing it is structural.
        const QString suffix = QStringLiteral("_%1").arg(m_started);
        startOutput(OutputLocation::levelsOf(m_inputPath).sensor + suffix);
        m_outputInfo.username = m_inputInfo.username.isEmpty() ? QString() : m_inputInfo.username + suffix;
        setProgressLabel(ID::savingSeriesProgress().arg(m_started));
    }
    return writeFrame(m_frame, m_frameTime);
}

} // namespace zarvi
