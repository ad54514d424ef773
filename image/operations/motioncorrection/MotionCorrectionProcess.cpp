#include "image/operations/motioncorrection/MotionCorrectionProcess.h"

#include "datafile/ImageFrameReader.h"
#include "datafile/ImageFrameWriter.h"
#include "definitions/FileDefinitions.h"
#include "definitions/ImageOperationDefinitions.h"
#include "framework/LockedFileRead.h"
#include "framework/RunTransaction.h"
#include "image/operations/motioncorrection/AlignmentShifts.h"
#include "image/operations/motioncorrection/MotionCorrectionWorker.h"

#include <QFileInfo>

namespace zarvi {

using FD = FileDefinitions;
using ID = ImageOperationDefinitions;

namespace {

/// Share of an input's progress taken by moving the second sensor's frames.
constexpr int secondSensorPercent = 30;

/// Frame `index` of the stack at `path` of `file`, as stored, in `frame`.
bool readFrameOf(HDF5Manager_V6& file, const QString& path, std::size_t index, cv::Mat& frame)
{
    ImageFrameReader reader;
    QString error;
    return reader.open(file, path, error) && reader.readFrame(index, frame, error);
}

bool isSameFile(const QString& a, const QString& b)
{
    return QFileInfo(a).canonicalFilePath() == QFileInfo(b).canonicalFilePath();
}

/// The group holding `path` ("<...>/Series1/Sensor1" for its "ImageStack").
QString parentOf(const QString& path)
{
    return path.section(QLatin1Char('/'), 0, -2);
}

} // namespace

bool MotionCorrectionProcess::prepareStack(const ImageStackInfo& input, ImageStackInfo& output,
                                           std::size_t& expectedFrames)
{
    if (input.width != input.height) {
        addError(ID::notSquareMessage() + QStringLiteral("<br>") +
                 ID::notSquareSizeMessage().arg(m_inputPath).arg(input.width).arg(input.height));
        return false;
    }
    if (!loadReference(input))
        return false;
    if (m_parameters.flag(ID::ApplyShiftsToSensor2) && !findSecondSensor(input))
        return false;
    m_shifts.assign(input.frames, FrameShift{});
    m_registration.emplace(m_reference);
    output = input;
    expectedFrames = input.frames;
    return true;
}

bool MotionCorrectionProcess::loadReference(const ImageStackInfo& input)
{
    const bool external = m_parameters.text(ID::ReferenceSource) == ID::ExternalFile;
    const QString filepath = external ? m_parameters.text(ID::ReferenceFilepath) : m_filepath;
    if (filepath.isEmpty()) {
        addError(ID::noExternalFileMessage());
        return false;
    }
    // Without a dataset named, the reference is the stack of the same path: the stack
    // being corrected, or its counterpart in the other session's file.
    const QString datapath =
        m_parameters.has(ID::ReferenceDatapath) ? m_parameters.text(ID::ReferenceDatapath) : m_inputPath;
    const auto index = static_cast<std::size_t>(m_parameters.integer(ID::ReferenceFrame));
    cv::Mat frame;
    QString problem;
    if (!external || isSameFile(filepath, m_filepath)) {
        readFrameOf(m_run->file(), datapath, index, frame);
    } else {
        // Never wait for another run's file: two runs each waiting for the other's would hang.
        LockedFileRead read(filepath, LockedFileRead::Wait::No);
        if (!read.isOpen())
            problem = read.error();
        else
            readFrameOf(read.reader(), datapath, index, frame);
    }
    if (frame.empty()) {
        const QString message = ID::referenceLoadMessage().arg(filepath, datapath);
        addError(problem.isEmpty() ? message : message + QStringLiteral("<br>") + problem);
        return false;
    }
    if (frame.cols != input.width || frame.rows != input.height) {
        addError(
            ID::referenceSizeMessage().arg(frame.cols).arg(frame.rows).arg(input.width).arg(input.height));
        return false;
    }
    m_reference = std::make_shared<const MotionReference>(frame, input.bitCount);
    return true;
}

bool MotionCorrectionProcess::findSecondSensor(const ImageStackInfo& input)
{
    // The other sensor of the series: the first sensor group, in the order of their
    // names, that holds an image stack and is not the corrected stack's own.
    HDF5Writer_V6& file = m_run->file();
    const QString sensorGroup = parentOf(m_inputPath);
    const QString seriesGroup = parentOf(sensorGroup);
    m_secondSensorStack.clear();
    const hid_t series = file.openGroup(file.fileId(), seriesGroup);
    const QStringList sensors = series >= 0 ? file.children(series) : QStringList();
    if (series >= 0)
        file.closeGroup(series);
    for (const QString& sensor : sensors) {
        const QString stack = seriesGroup + QLatin1Char('/') + sensor + QLatin1Char('/') + FD::ImageStack;
        if (seriesGroup + QLatin1Char('/') + sensor != sensorGroup &&
            file.objectKind(file.fileId(), stack) == ObjectKind::Dataset) {
            m_secondSensorStack = stack;
            break;
        }
    }
    if (m_secondSensorStack.isEmpty()) {
        addError(ID::noSecondSensorMessage().arg(m_inputPath));
        return false;
    }
    ImageFrameReader reader;
    QString error;
    if (!reader.open(file, m_secondSensorStack, error)) {
        addError(error);
        return false;
    }
    const ImageStackInfo& second = reader.info();
    if (second.width != input.width || second.height != input.height) {
        addError(ID::secondSensorSizeMessage()
                     .arg(m_secondSensorStack)
                     .arg(second.width)
                     .arg(second.height)
                     .arg(input.width)
                     .arg(input.height));
        return false;
    }
    if (second.frames != input.frames) {
        addError(ID::noShiftsMessage() + QStringLiteral("<br>") +
                 ID::shiftCountMessage().arg(m_secondSensorStack).arg(second.frames).arg(input.frames));
        return false;
    }
    return true;
}

bool MotionCorrectionProcess::computeOperation()
{
    m_shifts[m_frameIndex] = m_registration->correct(m_frame, m_corrected);
    return writeFrame(m_corrected, m_frameTime);
}

std::unique_ptr<ImageFrameWorker> MotionCorrectionProcess::createFrameWorker()
{
    return std::make_unique<MotionCorrectionWorker>(m_reference, m_shifts);
}

bool MotionCorrectionProcess::finishStack()
{
    QString error;
    if (!AlignmentShifts::write(m_run->file(), outputGroup(), m_shifts, m_run->datasetAttributes(m_inputPath),
                                error)) {
        addError(error);
        return false;
    }
    return true;
}

int MotionCorrectionProcess::lastPassPercent() const
{
    return m_parameters.flag(ID::ApplyShiftsToSensor2) ? secondSensorPercent : 0;
}

bool MotionCorrectionProcess::lastPass(Feedback* feedback)
{
    const QString sensor = parentOf(m_secondSensorStack).section(QLatin1Char('/'), -1);
    feedback->setLabel(ID::applyingShiftsProgress().arg(sensor));
    HDF5Writer_V6& file = m_run->file();
    ImageFrameReader reader;
    QString error;
    if (!reader.open(file, m_secondSensorStack, error)) {
        addError(error);
        return false;
    }
    const QString groupPath = m_run->sensorGroup(m_secondSensorStack, error);
    const hid_t group =
        groupPath.isEmpty() ? H5I_INVALID_HID : file.createGroupPath(file.fileId(), groupPath);
    if (group < 0) {
        addError(error.isEmpty() ? FD::unableToCreateGroupMessage().arg(groupPath) : error);
        return false;
    }
    ImageFrameWriter writer;
    const QVariantMap attributes = m_run->datasetAttributes(m_secondSensorStack);
    const bool created = writer.create(file, group, reader.info(), reader.info().frames, attributes, error);
    file.closeGroup(group);
    if (!created) {
        addError(error);
        return false;
    }
    addOutput(groupPath + QLatin1Char('/') + FD::ImageStack);
    ProgressTracker progress(feedback, m_shifts.size());
    for (std::size_t k = 0; k < m_shifts.size(); ++k) {
        if (stopRequested())
            return false;
        if (!reader.readFrame(k, m_frame, error)) {
            addError(error);
            return false;
        }
        translateFrame(m_frame, m_shifts[k], m_corrected);
        if (!writer.append(m_corrected, reader.time()[k], error)) {
            addError(error);
            return false;
        }
        progress.update(k + 1);
    }
    writer.close();
    if (!AlignmentShifts::write(file, groupPath, m_shifts, attributes, error)) {
        addError(error);
        return false;
    }
    return true;
}

QString MotionCorrectionProcess::progressLabel() const
{
    return ID::calculatingShiftsProgress();
}

QString MotionCorrectionProcess::notImageStackMessage() const
{
    return ID::inputDimensionsMessage();
}

} // namespace zarvi
