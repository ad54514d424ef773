#include "image/operations/dffimages/DFFImagesProcess.h"

#include "definitions/ImageOperationDefinitions.h"
#include "definitions/ZarviMainDefinitions.h"
#include "framework/LockedFileRead.h"
#include "image/operations/dffimages/DFFImagesWorker.h"
#include "image/operations/dffimages/DarkFrame.h"

namespace zarvi {

using ID = ImageOperationDefinitions;

void DFFImagesProcess::runOperation()
{
    if (inputsAreStacks() && loadDarkFrame())
        ImageOperationProcess::runOperation();
    m_deltaF.reset();
    m_dark.release();
    m_percent.release();
}

bool DFFImagesProcess::inputsAreStacks()
{
    LockedFileRead read(m_filepath, LockedFileRead::Wait::Yes);
    if (!read.isOpen()) {
        addError(read.error());
        return false;
    }
    HDF5Manager_V6& file = read.reader();
    for (const QString& path : m_sourceDatapaths) {
        // A missing input is the run's to report, with the family's message.
        if (file.objectKind(file.fileId(), path) != ObjectKind::Dataset)
            continue;
        const hid_t dataset = file.openDataset(file.fileId(), path);
        const std::size_t rank = dataset >= 0 ? file.dimensions(dataset).size() : 0;
        file.closeDataset(dataset);
        if (rank != 3) {
            addError(ID::inputDimensionsMessage());
            return false;
        }
    }
    return true;
}

bool DFFImagesProcess::loadDarkFrame()
{
    const bool hasFile = m_parameters.has(ID::DarkframeFilepath);
    const bool hasDataset = m_parameters.has(ID::DarkframeDataset);
    if (!hasFile && !hasDataset)
        return true;
    // Half a dark frame is a choice left unfinished, not a wish to subtract none.
    if (!hasFile || !hasDataset) {
        addError(ZarviMainDefinitions::parameterMissingMessage().arg(hasFile ? ID::DarkframeDataset
                                                                             : ID::DarkframeFilepath));
        return false;
    }
    QString error;
    if (!readDarkFrame(m_parameters.text(ID::DarkframeFilepath), m_parameters.text(ID::DarkframeDataset),
                       m_dark, error)) {
        addError(error);
        return false;
    }
    return true;
}

bool DFFImagesProcess::prepareStack(const ImageStackInfo& input, ImageStackInfo& output,
                                    std::size_t& expectedFrames)
{
    if (!m_dark.empty() && (m_dark.cols != input.width || m_dark.rows != input.height)) {
        addError(ID::darkframeSizeMessage()
                     .arg(m_parameters.text(ID::DarkframeDataset))
                     .arg(m_dark.cols)
                     .arg(m_dark.rows)
                     .arg(m_inputPath)
                     .arg(input.width)
                     .arg(input.height));
        return false;
    }
    m_deltaF.emplace(m_dark, m_parameters.flag(ID::RemoveTemporalVariations));
    output = input;
    // Percentages may use all 16 bits whatever the camera's depth; the viewers scale by BitCount.
    output.bitCount = 16;
    expectedFrames = input.frames;
    return true;
}

int DFFImagesProcess::firstPassPercent() const
{
    // The first pass only reads; the second reads, computes and writes.
    return 40;
}

bool DFFImagesProcess::scanStack(ImageFrameReader& reader, Feedback* feedback)
{
    feedback->setLabel(ID::meanImageProgress());
    QString error;
    if (!addStackToBaseline(reader, *m_deltaF, feedback, error)) {
        if (!error.isEmpty())
            addError(error);
        return false;
    }
    return true;
}

bool DFFImagesProcess::computeOperation()
{
    m_deltaF->compute(m_frame, m_percent);
    return writeFrame(m_percent, m_frameTime);
}

QString DFFImagesProcess::progressLabel() const
{
    return ID::dffProgress();
}

std::unique_ptr<ImageFrameWorker> DFFImagesProcess::createFrameWorker()
{
    return std::make_unique<DFFImagesWorker>(*m_deltaF);
}

} // namespace zarvi
