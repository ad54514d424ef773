#include "behavior/BehaviorRegions.h"

#include "behavior/operations/measures/PathMeasures.h"
#include "datafile/HDF5Writer_V6.h"
#include "definitions/BehaviorViewDefinitions.h"
#include "definitions/FileDefinitions.h"
#include "definitions/ZarviMainDefinitions.h"
#include "framework/ParameterValues.h"
#include "roi/RoiGeometry.h"
#include "roi/RoiJson.h"
#include "roi/RoiStore.h"

#include <QScopeGuard>

#include <algorithm>

#include <cmath>
#include <cstdint>
#include <limits>

namespace zarvi {

namespace {

using BD = BehaviorViewDefinitions;
using FD = FileDefinitions;

/// Shapes are checked against an image of unknown size: only their points and signs.
constexpr int anySize = std::numeric_limits<int>::max();

std::vector<cv::Point> pointsOf(const QVariantList& values)
{
    std::vector<cv::Point> points;
    for (qsizetype i = 0; i + 1 < values.size(); i += 2)
        points.emplace_back(values[i].toInt(), values[i + 1].toInt());
    return points;
}

/// The points of an int32 [n, 2] attribute; empty when it is missing or not of that form.
std::vector<cv::Point> readPoints(HDF5Manager_V6& file, hid_t location, const QString& name)
{
    const std::vector<hsize_t> dimensions = file.attributeDimensions(location, name);
    const QVariantList values = file.readAttribute(location, name).toList();
    if (dimensions.size() != 2 || dimensions[1] != 2 ||
        values.size() != static_cast<qsizetype>(dimensions[0] * 2))
        return {};
    for (const QVariant& value : values)
        if (value.typeId() != QMetaType::Int)
            return {};
    return pointsOf(values);
}

bool writePoints(HDF5Writer_V6& file, hid_t location, const QString& name,
                 const std::vector<cv::Point>& points)
{
    std::vector<std::int32_t> values;
    for (const cv::Point& point : points) {
        values.push_back(point.x);
        values.push_back(point.y);
    }
    return file.writeAttribute(location, name, values, points.size(), 2);
}

bool removeAttribute(HDF5Writer_V6& file, hid_t location, const QString& name)
{
    return !file.attributeExists(location, name) || file.deleteAttribute(location, name);
}

/// Whole pixel pairs from a parameter's list; false for an odd count or a fraction.
bool pixelPairs(const std::vector<double>& values, std::vector<cv::Point>& points)
{
    if (values.empty() || values.size() % 2 != 0)
        return false;
    for (double value : values)
        if (value != std::floor(value) || std::abs(value) > anySize)
            return false;
    for (std::size_t i = 0; i < values.size(); i += 2)
        points.emplace_back(static_cast<int>(values[i]), static_cast<int>(values[i + 1]));
    return true;
}

bool readZones(HDF5Manager_V6& file, const QString& linkPath, std::vector<RoiShape>& zones, QString& error)
{
    const QString groupPath = linkPath + QLatin1Char('/') + BehaviorRegionStore::ZonesGroup;
    if (file.objectKind(file.fileId(), groupPath) != ObjectKind::Group)
        return true;
    const hid_t group = file.openGroup(file.fileId(), groupPath);
    const auto closeGroup = qScopeGuard([&] { file.closeGroup(group); });
    for (const QString& name : file.children(group)) {
        const hid_t entry = file.openGroup(group, name);
        RoiShape zone;
        const QVariant code = file.readAttribute(entry, RoiStore::ShapeKey);
        zone.points = readPoints(file, entry, RoiStore::CoordinatesKey);
        file.closeGroup(entry);
        if (entry < 0 || !roiKindFromCode(code.toInt(), zone.kind) || zone.points.empty()) {
            error = BD::damagedZoneMessage().arg(groupPath + QLatin1Char('/') + name);
            return false;
        }
        zone.name = name;
        zone.number = name.startsWith(QStringLiteral("Zone")) ? name.mid(4).toInt() : 0;
        zones.push_back(std::move(zone));
    }
    // "Zone10" after "Zone9", as they were numbered.
    std::stable_sort(zones.begin(), zones.end(), [](const RoiShape& a, const RoiShape& b) {
        return a.number != b.number ? a.number < b.number : a.name < b.name;
    });
    return true;
}

bool writeZones(HDF5Writer_V6& file, const QString& linkPath, const std::vector<RoiShape>& zones)
{
    const QString groupPath = linkPath + QLatin1Char('/') + BehaviorRegionStore::ZonesGroup;
    if (file.exists(file.fileId(), groupPath) && !file.deleteLink(file.fileId(), groupPath))
        return false;
    if (zones.empty())
        return true;
    const hid_t group = file.createGroupPath(file.fileId(), groupPath);
    if (group < 0)
        return false;
    const auto closeGroup = qScopeGuard([&] { file.closeGroup(group); });
    for (const RoiShape& zone : zones) {
        const hid_t entry = file.createGroup(group, zone.label());
        const bool ok = entry >= 0 && writePoints(file, entry, RoiStore::CoordinatesKey, zone.points) &&
                        file.writeAttribute(entry, RoiStore::ShapeKey, static_cast<int>(zone.kind)) &&
                        file.writeAttribute(entry, FD::Username, zone.label());
        file.closeGroup(entry);
        if (!ok)
            return false;
    }
    return true;
}

bool isAreaKind(RoiKind kind)
{
    return kind == RoiKind::Rectangle || kind == RoiKind::Circle || kind == RoiKind::Polygon ||
           kind == RoiKind::Freehand;
}

bool zonesFromParameters(const ParameterValues& parameters, std::vector<RoiShape>& zones, QString& error)
{
    if (!parameters.has(BD::Zones))
        return true;
    if (!roisFromJson(parameters.map().value(BD::Zones), zones, error))
        return false;
    QStringList names;
    for (std::size_t i = 0; i < zones.size(); ++i) {
        RoiShape& zone = zones[i];
        zone.number = static_cast<int>(i + 1);
        if (zone.name.isEmpty())
            zone.name = FD::ZonePattern.arg(zone.number);
        if (names.contains(zone.name)) {
            error = BD::duplicateZoneMessage().arg(zone.name.toHtmlEscaped());
            return false;
        }
        names << zone.name;
        for (const QString& forbidden : HDF5Writer_V6::forbiddenNameTexts())
            if (zone.name.contains(forbidden)) {
                error = BD::zoneNameMessage().arg(zone.name.toHtmlEscaped(), forbidden);
                return false;
            }
        if (!isAreaKind(zone.kind)) {
            error = BD::zoneShapeMessage().arg(zone.name.toHtmlEscaped(), roiKindName(zone.kind));
            return false;
        }
        if (!validateRoi(zone, anySize, anySize, error))
            return false;
    }
    return true;
}

} // namespace

double BehaviorRegions::pixelsPerCentimetre() const
{
    if (!calibration || calibration->points.size() != 2)
        return 0.0;
    return zarvi::pixelsPerCentimetre(calibration->points[0], calibration->points[1], calibrationCentimetres);
}

bool BehaviorRegionStore::read(HDF5Manager_V6& file, const QString& linkPath, BehaviorRegions& regions,
                               QString& error)
{
    regions = BehaviorRegions{};
    const hid_t link = file.openGroup(file.fileId(), linkPath);
    if (link < 0) {
        error = FD::datasetNotFoundMessage().arg(linkPath);
        return false;
    }
    RoiShape arena;
    arena.points = readPoints(file, link, BD::ArenaCoordinates);
    if (!arena.points.empty() &&
        roiKindFromName(file.readAttribute(link, BD::ArenaRoiShape).toString(), arena.kind)) {
        arena.number = 1;
        arena.name = BD::arenaName();
        regions.arena = arena;
    }
    RoiShape line{RoiKind::Line, readPoints(file, link, BD::CalibrationCoordinates), 1, QString()};
    if (line.points.size() == 2)
        regions.calibration = line;
    regions.calibrationCentimetres = file.readAttribute(link, BD::CalibrationLength).toDouble();
    file.closeGroup(link);
    return readZones(file, linkPath, regions.zones, error);
}

bool BehaviorRegionStore::write(HDF5Writer_V6& file, const QString& linkPath, const BehaviorRegions& regions,
                                QString& error)
{
    const hid_t link = file.openGroup(file.fileId(), linkPath);
    if (link < 0) {
        error = FD::datasetNotFoundMessage().arg(linkPath);
        return false;
    }
    bool ok = regions.arena
                  ? writePoints(file, link, BD::ArenaCoordinates, regions.arena->points) &&
                        file.writeAttribute(link, BD::ArenaRoiShape, roiKindName(regions.arena->kind))
                  : removeAttribute(file, link, BD::ArenaCoordinates) &&
                        removeAttribute(file, link, BD::ArenaRoiShape);
    ok = ok && (regions.calibration
                    ? writePoints(file, link, BD::CalibrationCoordinates, regions.calibration->points)
                    : removeAttribute(file, link, BD::CalibrationCoordinates));
    ok = ok && (regions.calibrationCentimetres > 0.0
                    ? file.writeAttribute(link, BD::CalibrationLength, regions.calibrationCentimetres)
                    : removeAttribute(file, link, BD::CalibrationLength));
    file.closeGroup(link);
    ok = ok && writeZones(file, linkPath, regions.zones);
    if (!ok)
        error = FD::unableToCreateGroupMessage().arg(linkPath) + QStringLiteral("<br>") + file.lastError();
    return ok;
}

QVariantMap BehaviorRegionStore::toParameters(const BehaviorRegions& regions)
{
    QVariantMap parameters;
    auto flat = [](const std::vector<cv::Point>& points) {
        QVariantList values;
        for (const cv::Point& point : points)
            values << point.x << point.y;
        return values;
    };
    if (regions.arena) {
        parameters.insert(BD::ArenaCoordinates, flat(regions.arena->points));
        parameters.insert(BD::ArenaRoiShape, roiKindName(regions.arena->kind));
    }
    if (!regions.zones.empty())
        parameters.insert(BD::Zones, roisToJson(regions.zones));
    if (regions.calibration && regions.calibrationCentimetres > 0.0) {
        parameters.insert(BD::CalibrationCoordinates, flat(regions.calibration->points));
        parameters.insert(BD::CalibrationLength, regions.calibrationCentimetres);
    }
    return parameters;
}

bool BehaviorRegionStore::fromParameters(const ParameterValues& parameters, BehaviorRegions& regions,
                                         QString& error)
{
    regions = BehaviorRegions{};
    if (parameters.has(BD::ArenaCoordinates)) {
        RoiShape arena{RoiKind::Rectangle, {}, 1, BD::arenaName()};
        QString problem;
        if (!pixelPairs(parameters.numbers(BD::ArenaCoordinates), arena.points))
            problem = BD::pixelPairsMessage().arg(BD::ArenaCoordinates);
        else if (!roiKindFromName(parameters.text(BD::ArenaRoiShape), arena.kind) || !isAreaKind(arena.kind))
            problem = ZarviMainDefinitions::parameterMissingMessage().arg(BD::ArenaRoiShape);
        else
            validateRoi(arena, anySize, anySize, problem);
        if (!problem.isEmpty()) {
            error = BD::badArenaMessage().arg(problem);
            return false;
        }
        regions.arena = arena;
    }
    if (!zonesFromParameters(parameters, regions.zones, error))
        return false;
    const bool hasLine = parameters.has(BD::CalibrationCoordinates);
    if (hasLine != parameters.has(BD::CalibrationLength)) {
        error = BD::badCalibrationMessage();
        return false;
    }
    if (hasLine) {
        RoiShape line{RoiKind::Line, {}, 1, QString()};
        regions.calibrationCentimetres = parameters.number(BD::CalibrationLength);
        if (!pixelPairs(parameters.numbers(BD::CalibrationCoordinates), line.points) ||
            line.points.size() != 2 || !(regions.calibrationCentimetres > 0.0)) {
            error = BD::badCalibrationMessage();
            return false;
        }
        regions.calibration = line;
        if (regions.pixelsPerCentimetre() <= 0.0) {
            error = BD::noCalibrationLengthMessage().arg(QStringLiteral("[%1, %2, %3, %4]")
                                                             .arg(line.points[0].x)
                                                             .arg(line.points[0].y)
                                                             .arg(line.points[1].x)
                                                             .arg(line.points[1].y));
            return false;
        }
    }
    return true;
}

} // namespace zarvi
