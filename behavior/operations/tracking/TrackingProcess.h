#pragma once

#include "behavior/BehaviorOperationProcess.h"
#include "behavior/operations/tracking/FrameTracking.h"

#include <vector>

namespace zarvi {

/// "AnimalTracking": the animal's position on every frame of a video segment by
/// thresholding (FrameTracking), then outliers, gaps and smoothing over the series
/// (TrackCleanup), written as "Coordinates<K>" with its "Time" beside the link's name
/// under "DataBehavior/<device>/Coordinates/Series<N>/Video<K>". A link already tracked
/// is refused. Worker thread.
class TrackingProcess : public BehaviorOperationProcess
{
    Q_OBJECT

public:
    using BehaviorOperationProcess::BehaviorOperationProcess;

    /// Where the coordinates of the link at `linkPath` go: the group and the dataset.
    static QString coordinatesGroup(const QString& linkPath);
    static QString coordinatesPath(const QString& linkPath);

protected:
    QString outputKind() const override;
    bool prepareVideo(const VideoInfo& video, FrameRange& range) override;
    QString frameProgressLabel(std::size_t done, std::size_t total) const override;
    int framePercent() const override { return 95; }
    bool computeOperation() override;
    bool finishVideo(Feedback* feedback) override;

private:
    /// Reads the thresholds, refusing a range that is not two bounds or keeps nothing.
    bool readThresholds();
    bool readRange(const QString& key, std::optional<ThresholdRange>& range, bool wholeNumbers);
    bool writeCoordinates();

    ThresholdSettings m_thresholds;
    FrameRange m_range;
    std::vector<cv::Point> m_positions;
    cv::Mat m_mask;
    cv::Mat m_work;
    std::vector<std::vector<cv::Point>> m_contours;
};

} // namespace zarvi
