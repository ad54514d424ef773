#pragma once

#include "behavior/VideoLink.h"
#include "fileeditor/VideoFrameReader.h"
#include "framework/AbstractOperationProcess.h"

#include <opencv2/core.hpp>

#include <cstddef>

namespace zarvi {

/// The family run of the behaviour operations, for each selected video link
/// ("<category>/<device>/Video/Series<N>/Video<K>"): it reads the link and finds its
/// video (the path relative to the data file first, then the absolute one), opens it,
/// checks that it has as many frames as the link records, lets the operation choose the
/// frames it works on (prepareVideo), then hands the operation one decoded frame at a
/// time (8-bit blue-green-red) through computeOperation(), while the next frames are
/// decoded on a second thread (FramePrefetcher). finishVideo() then computes what needs
/// the whole series and writes the outputs. Progress is scaled over the inputs, cancel
/// is polled between frames, and the run transaction removes every output on failure or
/// cancel: a link that cannot be read, a missing or undecodable video and a refused
/// frame range write nothing. Lives on the operation's worker thread.
class BehaviorOperationProcess : public AbstractOperationProcess
{
    Q_OBJECT

public:
    using AbstractOperationProcess::AbstractOperationProcess;

protected:
    /// The frames an operation works on, 0-based, both included.
    struct FrameRange
    {
        std::size_t first = 0;
        std::size_t last = 0;
    };

    void runOperation() override;

    /// The data kind level of the outputs under "DataBehavior" ("Coordinates").
    virtual QString outputKind() const = 0;
    /// Checks the parameters against the video (m_link) and narrows `range`, which
    /// comes as the whole video. False after adding an error refuses the input.
    virtual bool prepareVideo(const VideoInfo& video, FrameRange& range) = 0;
    /// The stage label while frames are computed, after `done` of `total` frames.
    virtual QString frameProgressLabel(std::size_t done, std::size_t total) const = 0;
    /// Share of an input's progress taken by the frames; finishVideo() has the rest.
    virtual int framePercent() const { return 100; }
    /// After the last frame: the steps over the whole series and the writing of the
    /// outputs through m_run. False after adding an error.
    virtual bool finishVideo(Feedback* feedback) = 0;
    /// Checks between steps; true when the run must stop.
    bool stopRequested() const { return isCanceled() || !m_errors.isEmpty(); }

    /// The link being worked on.
    VideoLink m_link;
    /// The current frame (CV_8UC3) and its index in the video, during computeOperation().
    cv::Mat m_frame;
    std::size_t m_frameIndex = 0;
    /// The run's file and outputs.
    RunTransaction* m_run = nullptr;

private:
    bool processVideo(const QString& linkPath, Feedback* step);
};

} // namespace zarvi
