#include "image/ImageOperationProcess.h"

#include "datafile/ImageFrameReader.h"
#include "definitions/FileDefinitions.h"
#include "definitions/ImageOperationDefinitions.h"
#include "framework/RunTransaction.h"
#include "image/ImageFramePool.h"

#include <QThread>

namespace zarvi {

using FD = FileDefinitions;

namespace {

/// Frames in flight per frame thread: one being computed, one read ahead, one waiting to
/// be written, so that reading, computing and writing overlap.
constexpr std::size_t framesPerThread = 3;

} // namespace

int ImageOperationProcess::defaultFrameThreads()
{
    return std::max(1, QThread::idealThreadCount());
}

QString ImageOperationProcess::outputKind() const
{
    return FD::Images;
}

bool ImageOperationProcess::prepareStack(const ImageStackInfo& input, ImageStackInfo& output,
                                         std::size_t& expectedFrames)
{
    output = input;
    expectedFrames = input.frames;
    return true;
}

bool ImageOperationProcess::scanStack(ImageFrameReader&, Feedback*)
{
    return true;
}

void ImageOperationProcess::runOperation()
{
    RunTransaction run;
    if (!openRun(run, FD::DataProcessed, outputKind(), m_sourceDatapaths))
        return;
    run.setRecordParameters(recordsParameters());
    m_run = &run;
    const int count = static_cast<int>(m_sourceDatapaths.size());
    runInputs(run, count, [&](int i, Feedback* step) {
        const bool processed = processStack(m_sourceDatapaths[i], step);
        // The output is complete before the run commits; one continued across inputs
        // stays open for the next input.
        if (!processed || i + 1 == count || !continuesOutputAcrossInputs())
            closeOutput();
        return processed;
    });
    // Whatever happened, nothing may stay open on a file that the run has closed.
    closeOutput();
    m_run = nullptr;
    m_frame.release();
    m_inputTime.clear();
}

bool ImageOperationProcess::processStack(const QString& stackPath, Feedback* step)
{
    ImageFrameReader reader;
    QString error;
    if (!reader.open(m_run->file(), stackPath, error)) {
        const bool ownWords =
            reader.problem() == ImageFrameReader::Problem::NotStack && !notImageStackMessage().isEmpty();
        addError(ownWords ? notImageStackMessage() : error);
        return false;
    }
    if (reader.info().frames == 0) {
        addError(ImageOperationDefinitions::noFramesMessage().arg(stackPath));
        return false;
    }
    // The geometry of an output stack continued from the previous input, if any.
    const ImageStackInfo continued = m_outputInfo;
    m_inputPath = stackPath;
    m_inputInfo = reader.info();
    m_inputTime = reader.time();
    m_outputInfo = m_inputInfo;
    m_expectedFrames = m_inputInfo.frames;
    if (!m_writerOpen)
        m_outputSensor.clear();
    if (!prepareStack(m_inputInfo, m_outputInfo, m_expectedFrames) || !m_errors.isEmpty())
        return false;
    if (m_writerOpen && (m_outputInfo.width != continued.width || m_outputInfo.height != continued.height)) {
        addError(ImageOperationDefinitions::concatenatedSizeMessage()
                     .arg(stackPath)
                     .arg(m_outputInfo.width)
                     .arg(m_outputInfo.height)
                     .arg(continued.width)
                     .arg(continued.height));
        return false;
    }

    const int scanShare = firstPassPercent();
    if (scanShare > 0) {
        ScaledFeedback scanning(step, 0, scanShare);
        if (!scanStack(reader, &scanning) || stopRequested())
            return false;
    }
    const int lastShare = lastPassPercent();
    ScaledFeedback computing(step, scanShare, 100 - lastShare);
    if (!progressLabel().isEmpty())
        computing.setLabel(progressLabel());
    ProgressTracker progress(&computing, m_inputInfo.frames);
    std::vector<std::unique_ptr<ImageFrameWorker>> workers;
    for (int t = 0; m_frameThreads > 1 && t < m_frameThreads; ++t) {
        std::unique_ptr<ImageFrameWorker> worker = createFrameWorker();
        if (!worker)
            break;
        workers.push_back(std::move(worker));
    }
    const bool computed = workers.empty() ? computeFrames(reader, progress)
                                          : computeFramesInParallel(reader, std::move(workers), progress);
    if (!computed || !finishStack() || !m_errors.isEmpty() || isCanceled())
        return false;
    if (lastShare == 0)
        return true;
    ScaledFeedback last(step, 100 - lastShare, 100);
    return lastPass(&last) && m_errors.isEmpty() && !isCanceled();
}

bool ImageOperationProcess::computeFrames(ImageFrameReader& reader, ProgressTracker& progress)
{
    QString error;
    for (std::size_t k = 0; k < m_inputInfo.frames; ++k) {
        if (stopRequested())
            return false;
        if (!wantsFrame(k))
            continue;
        if (!reader.readFrame(k, m_frame, error)) {
            addError(error);
            return false;
        }
        m_frameIndex = k;
        m_frameTime = m_inputTime[k];
        if (!computeOperation() || !m_errors.isEmpty())
            return false;
        progress.update(k + 1);
    }
    return true;
}

bool ImageOperationProcess::computeFramesInParallel(ImageFrameReader& reader,
                                                    std::vector<std::unique_ptr<ImageFrameWorker>> workers,
                                                    ProgressTracker& progress)
{
    // HDF5 is not thread-safe: this thread reads ahead into the free slots and writes the
    // computed frames in their order; the frame threads only compute.
    ImageFramePool pool(std::move(workers), framesPerThread * static_cast<std::size_t>(m_frameThreads));
    QString error;
    std::size_t next = 0;
    for (;;) {
        if (stopRequested())
            return false;
        for (ImageFramePool::Slot* slot = pool.freeSlot(); slot && next < m_inputInfo.frames; ++next) {
            if (!wantsFrame(next))
                continue;
            if (!reader.readFrame(next, slot->input, error)) {
                addError(error);
                return false;
            }
            slot->index = next;
            pool.submit();
            slot = pool.freeSlot();
        }
        if (!pool.hasSubmitted())
            return true;
        const ImageFramePool::Slot& done = pool.takeOldest();
        m_frameIndex = done.index;
        m_frameTime = m_inputTime[done.index];
        const bool written = writeFrame(done.output, m_frameTime);
        pool.release();
        if (!written)
            return false;
        progress.update(m_frameIndex + 1);
    }
}

void ImageOperationProcess::startOutput(const QString& sensor)
{
    closeOutput();
    m_outputSensor = sensor;
}

void ImageOperationProcess::closeOutput()
{
    m_writer.close();
    m_writerOpen = false;
    m_outputGroup.clear();
}

bool ImageOperationProcess::openOutput()
{
    QString error;
    const QString groupPath = m_run->sensorGroup(m_inputPath, error, m_outputSensor);
    const hid_t group = groupPath.isEmpty()
                            ? H5I_INVALID_HID
                            : m_run->file().createGroupPath(m_run->file().fileId(), groupPath);
    if (group < 0) {
        addError(error.isEmpty() ? FD::unableToCreateGroupMessage().arg(groupPath) : error);
        return false;
    }
    const bool created = m_writer.create(m_run->file(), group, m_outputInfo, m_expectedFrames,
                                         m_run->datasetAttributes(m_inputPath), error);
    m_run->file().closeGroup(group);
    if (!created) {
        addError(error);
        return false;
    }
    m_writerOpen = true;
    m_outputGroup = groupPath;
    addOutput(groupPath + QLatin1Char('/') + FD::ImageStack);
    return true;
}

bool ImageOperationProcess::writeFrame(const cv::Mat& frame, double time)
{
    QString error;
    if (!m_writerOpen && !openOutput())
        return false;
    if (!m_writer.append(frame, time, error)) {
        addError(error);
        return false;
    }
    return true;
}

} // namespace zarvi
