#include "behavior/operations/tracking/TrackingProcess.h"

#include "behavior/operations/tracking/TrackCleanup.h"
#include "definitions/FileDefinitions.h"
#include "definitions/VideoOperationDefinitions.h"
#include "definitions/ZarviMainDefinitions.h"
#include "framework/RunTransaction.h"

#include <QRegularExpression>

#include <algorithm>
#include <cmath>

namespace zarvi {

using FD = FileDefinitions;
using VD = VideoOperationDefinitions;

namespace {

/// Rows per chunk of the coordinates, as a signal's "Time" is chunked.
constexpr std::size_t ChunkRows = 65536;

} // namespace

QString TrackingProcess::coordinatesGroup(const QString& linkPath)
{
    const QStringList levels = linkPath.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    const QString device = levels.value(1);
    QString series = FD::SeriesPattern.arg(1);
    for (qsizetype i = 2; i + 1 < levels.size(); ++i) {
        if (levels[i].contains(FD::SeriesText)) {
            series = levels[i];
            break;
        }
    }
    return QStringList{FD::DataBehavior, device, FD::Coordinates, series, levels.value(levels.size() - 1)}
        .join(QLatin1Char('/'));
}

QString TrackingProcess::coordinatesPath(const QString& linkPath)
{
    static const QRegularExpression trailingNumber(QStringLiteral("(\\d+)$"));
    const QRegularExpressionMatch number = trailingNumber.match(linkPath);
    const QString k = number.hasMatch() ? number.captured(1) : QStringLiteral("1");
    return coordinatesGroup(linkPath) + QLatin1Char('/') + FD::CoordinatesPattern.arg(k);
}

QString TrackingProcess::outputKind() const
{
    return FD::Coordinates;
}

QString TrackingProcess::frameProgressLabel(std::size_t done, std::size_t total) const
{
    return VD::findingPositionProgress().arg(done).arg(total);
}

bool TrackingProcess::readRange(const QString& key, std::optional<ThresholdRange>& range, bool wholeNumbers)
{
    range.reset();
    if (!m_parameters.has(key))
        return true;
    const std::vector<double> bounds = m_parameters.numbers(key);
    if (bounds.size() != 2) {
        addError(VD::rangeValuesMessage().arg(key));
        return false;
    }
    if (wholeNumbers && (std::floor(bounds[0]) != bounds[0] || std::floor(bounds[1]) != bounds[1])) {
        addError(VD::hueIntegersMessage().arg(key));
        return false;
    }
    if (bounds[0] > bounds[1]) {
        addError(VD::emptyRangeMessage().arg(key).arg(bounds[0]).arg(bounds[1]));
        return false;
    }
    range = ThresholdRange{bounds[0], bounds[1]};
    return true;
}

bool TrackingProcess::readThresholds()
{
    m_thresholds = ThresholdSettings();
    if (!readRange(VD::ValueRange, m_thresholds.value, false))
        return false;
    // Convert to Grayscale leaves the colour ranges out, which makes the test grey.
    if (m_parameters.flag(VD::ConvertToGrayscale))
        return true;
    return readRange(VD::HueRange, m_thresholds.hue, true) &&
           readRange(VD::SaturationRange, m_thresholds.saturation, false);
}

bool TrackingProcess::prepareVideo(const VideoInfo&, FrameRange& range)
{
    if (!readThresholds())
        return false;
    const std::size_t frames = range.last + 1;
    const std::int64_t first = m_parameters.integer(VD::FirstFrame, 0);
    const std::int64_t last = m_parameters.integer(VD::LastFrame, static_cast<int>(range.last));
    if (first > last) {
        addError(VD::frameOrderMessage());
        return false;
    }
    if (last >= static_cast<std::int64_t>(frames)) {
        addError(VD::frameRangeMessage().arg(first).arg(last).arg(m_link.videoPath).arg(frames - 1));
        return false;
    }
    // The stages that are switched on need their sizes.
    if (m_parameters.flag(VD::DetectOutliers) && !m_parameters.has(VD::AnimalSize)) {
        addError(ZarviMainDefinitions::parameterMissingMessage().arg(VD::AnimalSize));
        return false;
    }
    if (m_parameters.flag(VD::SmoothCoordinates) && !m_parameters.has(VD::SmoothWindow)) {
        addError(ZarviMainDefinitions::parameterMissingMessage().arg(VD::SmoothWindow));
        return false;
    }
    // Checked before the frames are read, so that the user does not wait to be told.
    const QString target = coordinatesPath(m_link.path);
    if (m_run->file().exists(m_run->file().fileId(), target)) {
        addError(VD::alreadySavedMessage().arg(target));
        return false;
    }
    range = FrameRange{static_cast<std::size_t>(first), static_cast<std::size_t>(last)};
    m_range = range;
    m_positions.clear();
    m_positions.reserve(range.last - range.first + 1);
    return true;
}

bool TrackingProcess::computeOperation()
{
    thresholdMask(m_frame, m_thresholds, m_mask, m_work);
    m_positions.push_back(findAnimal(m_mask, m_contours).position);
    return true;
}

bool TrackingProcess::finishVideo(Feedback* feedback)
{
    if (m_parameters.flag(VD::DetectOutliers))
        removeOutliers(m_positions, m_parameters.integer(VD::AnimalSize));
    if (m_parameters.flag(VD::Interpolate))
        interpolateGaps(m_positions);
    if (m_parameters.flag(VD::SmoothCoordinates)) {
        feedback->setLabel(VD::runningAverageProgress());
        ScaledFeedback smoothing(feedback, 0, 90);
        if (!smoothPositions(m_positions, m_parameters.integer(VD::SmoothWindow), &smoothing))
            return false;
    }
    return writeCoordinates();
}

bool TrackingProcess::writeCoordinates()
{
    HDF5Writer_V6& file = m_run->file();
    const QString groupPath = coordinatesGroup(m_link.path);
    const QString datasetPath = coordinatesPath(m_link.path);
    const QString name = datasetPath.section(QLatin1Char('/'), -1);
    QString error;
    hid_t group = H5I_INVALID_HID;
    if (file.exists(file.fileId(), groupPath)) {
        // The link's group exists without these coordinates: only the datasets are new.
        group = file.openGroup(file.fileId(), groupPath);
        m_run->track(datasetPath);
        m_run->track(groupPath + QLatin1Char('/') + FD::Time);
    } else {
        group = m_run->createGroup(groupPath, VD::alreadySavedMessage(), error);
    }
    if (group < 0) {
        addError(error.isEmpty() ? FD::unableToCreateGroupMessage().arg(groupPath) : error);
        return false;
    }

    const auto rows = static_cast<hsize_t>(m_positions.size());
    std::vector<std::int32_t> values;
    values.reserve(2 * m_positions.size());
    for (const cv::Point& p : m_positions) {
        values.push_back(p.x);
        values.push_back(p.y);
    }
    QVariantMap attributes = m_run->datasetAttributes(m_link.path);
    attributes.insert(FD::Username, m_link.filename);
    attributes.insert(VD::Color, VD::TrackColor);
    attributes.insert(VD::VideoRange, QVariant::fromValue(QList<int>{static_cast<int>(m_range.first),
                                                                     static_cast<int>(m_range.last)}));
    attributes.insert(FD::RelativeFilePath, m_link.relativeFilePath);
    attributes.insert(VD::DifferenceMasterStartToFirstImage, m_link.time[m_range.first]);

    const hid_t coordinates = file.createDataset(group, ElementKind::Int32, name, 2, {rows, 2},
                                                 {std::min<hsize_t>(rows, ChunkRows), 2}, {rows, 2}, 0);
    bool ok = coordinates >= 0 && file.write(coordinates, values.data(), {0, 0}, {rows, 2});
    for (auto it = attributes.cbegin(); ok && it != attributes.cend(); ++it)
        ok = file.writeAttribute(coordinates, it.key(), it.value());
    file.closeDataset(coordinates);

    const std::vector<double> time(m_link.time.begin() + static_cast<std::ptrdiff_t>(m_range.first),
                                   m_link.time.begin() + static_cast<std::ptrdiff_t>(m_range.last) + 1);
    const hid_t timeSet = ok ? file.create1D(group, ElementKind::Float64, FD::Time, rows) : H5I_INVALID_HID;
    const bool timeOk = timeSet >= 0 && file.append(timeSet, time.data(), {rows}) &&
                        file.writeAttribute(timeSet, FD::Unit, QStringLiteral("s"));
    file.closeDataset(timeSet);
    file.closeGroup(group);
    if (!ok || !timeOk) {
        addError(FD::unableToCreateDatasetMessage().arg(ok ? groupPath + QLatin1Char('/') + FD::Time
                                                           : datasetPath));
        return false;
    }
    addOutput(datasetPath);
    return true;
}

} // namespace zarvi
