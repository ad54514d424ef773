#pragma once

#include "datafile/ImageFrameWriter.h"
#include "datafile/ImageStackInfo.h"
#include "framework/AbstractOperationProcess.h"
#include "image/ImageFrameWorker.h"

#include <opencv2/core.hpp>

#include <algorithm>
#include <memory>
#include <vector>

namespace zarvi {

class ImageFrameReader;

/// The family run of the image operations, for each selected "ImageStack": it opens the
/// stack, lets the operation state the output's geometry (prepareStack), runs the
/// operation's optional first pass over the stack (scanStack: a reference, a mean
/// image, a threshold), then reads the frames one at a time as 32-bit float copies and
/// calls computeOperation() once per frame; the operation hands each result frame to
/// writeFrame(), which converts it to unsigned 16-bit with rounding and saturation and
/// appends it at once. finishStack() lets an operation that reduces many frames to one
/// (projections, temporal groups) write what it still holds. Progress is scaled over the
/// inputs and the passes, cancel is polled between frames, and the run transaction
/// removes every output on failure or cancel. Outputs go to
/// "DataProcessed/<device>/Images/<series>/<Output><K>/<sensor>/{ImageStack, Time}".
/// Each input gets its own output stack, closed after its last frame, unless the
/// operation continues its output across inputs (continuesOutputAcrossInputs()): then
/// every input appends to the one stack opened for the first input's output location,
/// which must keep its frame size, and the stack is closed after the last input.
/// An operation whose frames do not depend on one another may offer frame workers
/// (createFrameWorker()): the frames are then computed by a few threads at once while
/// the run's thread alone reads and writes the file, frames written in their order
/// (ImageFramePool). An optional last pass after the frames (lastPass()) gets its own
/// share of the progress. Lives on the operation's worker thread.
class ImageOperationProcess : public AbstractOperationProcess
{
    Q_OBJECT

public:
    using AbstractOperationProcess::AbstractOperationProcess;

    /// Threads that compute the frames of operations with frame workers; 1 computes every
    /// frame on the run's thread with computeOperation(). The default is the number of
    /// processor cores; results never depend on it.
    void setFrameThreads(int threads) { m_frameThreads = std::max(1, threads); }

protected:
    void runOperation() override;

    /// Checks the parameters against the input stack and states the output's frame size
    /// (and bit count); `expectedFrames` sizes the "Time" chunks. The input geometry is
    /// kept by default. False after adding an error refuses the run.
    virtual bool prepareStack(const ImageStackInfo& input, ImageStackInfo& output,
                              std::size_t& expectedFrames);
    /// Share of an input's progress taken by scanStack(); 0 means no first pass.
    virtual int firstPassPercent() const { return 0; }
    /// The first pass over the whole stack, before any frame is computed.
    virtual bool scanStack(ImageFrameReader& reader, Feedback* feedback);
    /// False for frames the operation never looks at (they are not read).
    virtual bool wantsFrame(std::size_t /*index*/) const { return true; }
    /// Called after the last frame of a stack.
    virtual bool finishStack() { return true; }
    /// Share of an input's progress taken by lastPass(); 0 means no last pass.
    virtual int lastPassPercent() const { return 0; }
    /// A pass after finishStack(), such as applying what the frames gave to another stack.
    virtual bool lastPass(Feedback* /*feedback*/) { return true; }
    /// A worker that computes one frame at a time on a frame thread, for operations whose
    /// frames are independent (none: the frames go through computeOperation() in order).
    /// Called on the run's thread once per frame thread, after prepareStack() and
    /// scanStack(). The frames the workers compute are written in order with writeFrame().
    virtual std::unique_ptr<ImageFrameWorker> createFrameWorker() { return nullptr; }
    /// The operation's own words for an input that is not an image stack; empty keeps the
    /// general message.
    virtual QString notImageStackMessage() const { return {}; }
    /// The stage label shown while frames are computed ("Binning images...").
    virtual QString progressLabel() const { return {}; }
    /// The data kind level of the outputs ("Images").
    virtual QString outputKind() const;
    /// False when the user asked not to record the parameters with the outputs.
    virtual bool recordsParameters() const { return true; }
    /// True when all inputs append to one output stack (projections concatenated into
    /// one stack) instead of each writing its own.
    virtual bool continuesOutputAcrossInputs() const { return false; }

    /// Appends a computed frame (one channel, the stated size) taken at `time` to the
    /// current output stack, creating it on first use. False after adding an error.
    bool writeFrame(const cv::Mat& frame, double time);
    /// Ends the current output stack; the next writeFrame() starts a new one in a sensor
    /// group named `sensor` (for operations that write several stacks per input).
    void startOutput(const QString& sensor);
    /// Checks between frames of a first pass; true when the run must stop.
    bool stopRequested() const { return isCanceled() || !m_errors.isEmpty(); }
    /// The sensor group of the output stack being written; empty before its first frame.
    const QString& outputGroup() const { return m_outputGroup; }

    /// The input stack's path and geometry, and the stated output geometry.
    QString m_inputPath;
    ImageStackInfo m_inputInfo;
    ImageStackInfo m_outputInfo;
    /// The input's "Time", one entry per frame.
    std::vector<double> m_inputTime;
    /// The current frame (CV_32FC1), its index and time, during computeOperation().
    cv::Mat m_frame;
    std::size_t m_frameIndex = 0;
    double m_frameTime = 0.0;
    /// The run, for operations that write other kinds of outputs (signals).
    RunTransaction* m_run = nullptr;

private:
    static int defaultFrameThreads();
    bool processStack(const QString& stackPath, Feedback* step);
    /// The frames in order through computeOperation(), on the run's thread.
    bool computeFrames(ImageFrameReader& reader, ProgressTracker& progress);
    /// The frames through `workers` on frame threads; written in order on the run's thread.
    bool computeFramesInParallel(ImageFrameReader& reader,
                                 std::vector<std::unique_ptr<ImageFrameWorker>> workers,
                                 ProgressTracker& progress);
    bool openOutput();
    void closeOutput();

    ImageFrameWriter m_writer;
    bool m_writerOpen = false;
    QString m_outputGroup;
    int m_frameThreads = defaultFrameThreads();
    QString m_outputSensor;
    std::size_t m_expectedFrames = 0;
};

} // namespace zarvi
