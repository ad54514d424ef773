#include "image/operations/roisignals/ROISignalsProcess.h"

#include "definitions/FileDefinitions.h"
#include "definitions/ImageOperationDefinitions.h"
#include "framework/RunTransaction.h"
#include "roi/RoiGeometry.h"
#include "roi/RoiStore.h"

#include <algorithm>

namespace zarvi {

using ID = ImageOperationDefinitions;
using FD = FileDefinitions;

namespace {

/// Cells enclose pixels; points and lines (calibrations, markers) do not.
bool isCell(const RoiShape& roi)
{
    return roi.kind == RoiKind::Rectangle || roi.kind == RoiKind::Circle || roi.kind == RoiKind::Polygon ||
           roi.kind == RoiKind::Freehand;
}

} // namespace

QString ROISignalsProcess::outputKind() const
{
    return FD::ROISignals;
}

QString ROISignalsProcess::progressLabel() const
{
    return ID::extractingRoiSignalsProgress();
}

bool ROISignalsProcess::chooseRois(const std::vector<RoiShape>& stored, std::vector<RoiShape>& chosen)
{
    if (std::none_of(stored.begin(), stored.end(), isCell)) {
        addError(ID::noRoisMessage().arg(m_inputPath));
        return false;
    }
    const QStringList names = m_parameters.texts(ID::ROINames);
    if (names.isEmpty()) {
        std::copy_if(stored.begin(), stored.end(), std::back_inserter(chosen), isCell);
        return true;
    }
    QStringList taken;
    for (const QString& name : names) {
        // A name given twice would only write the same signal twice.
        if (taken.contains(name))
            continue;
        taken << name;
        const auto found = std::find_if(stored.begin(), stored.end(),
                                        [&name](const RoiShape& roi) { return roi.name == name; });
        if (found == stored.end()) {
            addError(ID::unknownRoiMessage().arg(m_inputPath, name));
            return false;
        }
        if (!isCell(*found)) {
            addError(ID::notCellRoiMessage().arg(name, roiKindName(found->kind)));
            return false;
        }
        chosen.push_back(*found);
    }
    return true;
}

bool ROISignalsProcess::prepareStack(const ImageStackInfo& input, ImageStackInfo& output,
                                     std::size_t& expectedFrames)
{
    std::vector<RoiShape> stored;
    QString error;
    if (!RoiStore::list(m_run->file(), m_inputPath, stored, error)) {
        addError(error);
        return false;
    }
    m_rois.clear();
    if (!chooseRois(stored, m_rois))
        return false;
    // The store checked each ROI against the stack when it was added; a stack rewritten
    // since then may be smaller.
    for (const RoiShape& roi : m_rois) {
        if (!validateRoi(roi, input.width, input.height, error)) {
            addError(error);
            return false;
        }
    }
    m_extraction.emplace(m_rois, cv::Size(input.width, input.height), input.frames);
    output = input;
    expectedFrames = input.frames;
    return true;
}

bool ROISignalsProcess::computeOperation()
{
    m_extraction->add(m_frame);
    return true;
}

bool ROISignalsProcess::finishStack()
{
    for (std::size_t i = 0; i < m_rois.size(); ++i) {
        const Signal signal{m_inputTime, m_extraction->values(i), ID::RoiSignalUnit};
        QString error;
        const QString written = m_run->writeSignal(m_inputPath, signal, error, m_rois[i].label());
        if (written.isEmpty()) {
            addError(error);
            return false;
        }
        if (!recordRoi(written, m_rois[i]))
            return false;
        addOutput(written);
    }
    m_extraction.reset();
    return true;
}

bool ROISignalsProcess::recordRoi(const QString& valuesPath, const RoiShape& roi)
{
    HDF5Writer_V6& file = m_run->file();
    std::vector<std::int32_t> coordinates;
    coordinates.reserve(roi.points.size() * 2);
    for (const cv::Point& point : roi.points) {
        coordinates.push_back(point.x);
        coordinates.push_back(point.y);
    }
    const hid_t dataset = file.openDataset(file.fileId(), valuesPath);
    const bool ok =
        dataset >= 0 && file.writeAttribute(dataset, FD::Username, roi.label()) &&
        file.writeAttribute(dataset, RoiStore::CoordinatesKey, coordinates, roi.points.size(), 2) &&
        file.writeAttribute(dataset, RoiStore::ShapeKey, static_cast<int>(roi.kind));
    if (dataset >= 0)
        file.closeDataset(dataset);
    if (!ok)
        addError(FD::unableToWriteAttributeMessage().arg(valuesPath) + QStringLiteral(" ") +
                 file.lastError());
    return ok;
}

} // namespace zarvi
