#pragma once

#include "image/ImageOperationProcess.h"

namespace zarvi {

/// "Split Images in Series": a first pass over the stack's "Time" finds where the series
/// start (seriesStarts, by time gaps or by duration), then each series is written as a
/// stack of its own in the run group "SplitedImages<K>", in the sensor group
/// "<input sensor>_<n>" for the n-th series (1-based), with the input frames' own
/// times. Worker thread.
class SplitImagesInSeriesProcess : public ImageOperationProcess
{
    Q_OBJECT

public:
    using ImageOperationProcess::ImageOperationProcess;

protected:
    bool prepareStack(const ImageStackInfo& input, ImageStackInfo& output,
                      std::size_t& expectedFrames) override;
    int firstPassPercent() const override { return 1; }
    bool scanStack(ImageFrameReader& reader, Feedback* feedback) override;
    bool computeOperation() override;

private:
    double m_duration = 0.0;
    std::vector<std::size_t> m_starts;
    /// How many series have been started for the current stack.
    std::size_t m_started = 0;
};

} // namespace zarvi
