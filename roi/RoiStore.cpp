#include "roi/RoiStore.h"

#include "definitions/FileDefinitions.h"
#include "roi/RoiGeometry.h"

#include <QRegularExpression>
#include <QScopeGuard>

#include <algorithm>
#include <cstdint>

namespace zarvi {

namespace {

using FD = FileDefinitions;

/// The number of a name made by FileDefinitions::ROIPattern ("ROI7" gives 7), else 0.
/// Nine digits at most, so that the next number still fits.
int patternNumber(const QString& name)
{
    static const QRegularExpression pattern(QStringLiteral("^ROI([1-9][0-9]{0,8})$"));
    const QRegularExpressionMatch match = pattern.match(name);
    return match.hasMatch() ? match.captured(1).toInt() : 0;
}

bool isStack(HDF5Manager_V6& file, const QString& stackPath, QString& error)
{
    if (file.objectKind(file.fileId(), stackPath) == ObjectKind::Dataset)
        return true;
    error = QStringLiteral("There is no image stack <b>%1</b> in <b>%2</b>.").arg(stackPath, file.filePath());
    return false;
}

/// An integer as the data-file layer reads it back: int up to 32 bits, qlonglong above.
bool isInteger(const QVariant& value)
{
    return value.typeId() == QMetaType::Int || value.typeId() == QMetaType::LongLong;
}

/// Reads the entry `name` of the ROIs group at groupPath into `roi`.
bool readEntry(HDF5Manager_V6& file, hid_t group, const QString& groupPath, const QString& name,
               RoiShape& roi, QString& error)
{
    const QString where =
        QStringLiteral("The ROI entry <b>%1</b> in <b>%2</b>").arg(name.toHtmlEscaped(), groupPath);
    if (file.objectKind(group, name) != ObjectKind::Group) {
        error = QStringLiteral("%1 is not a group.").arg(where);
        return false;
    }
    const hid_t entry = file.openGroup(group, name);
    if (entry < 0) {
        error = QStringLiteral("%1 cannot be opened: %2").arg(where, file.lastError());
        return false;
    }
    const auto closeEntry = qScopeGuard([&] { file.closeGroup(entry); });
    const QVariant code = file.readAttribute(entry, RoiStore::ShapeKey);
    if (!isInteger(code) || !roiKindFromCode(code.toInt(), roi.kind)) {
        error = isInteger(code)
                    ? QStringLiteral("%1 has the unknown shape code <b>%2</b>.").arg(where, code.toString())
                    : QStringLiteral("%1 has no integer <b>Shape</b> attribute.").arg(where);
        return false;
    }
    const std::vector<hsize_t> dimensions = file.attributeDimensions(entry, RoiStore::CoordinatesKey);
    const QVariantList values = file.readAttribute(entry, RoiStore::CoordinatesKey).toList();
    const bool integers = std::all_of(values.begin(), values.end(), [](const QVariant& v) {
        return v.typeId() == QMetaType::Int; // 32-bit, as written, so every value fits a pixel coordinate
    });
    if (dimensions.size() != 2 || dimensions[1] != 2 || dimensions[0] == 0 ||
        values.size() != static_cast<qsizetype>(dimensions[0] * 2) || !integers) {
        error = QStringLiteral("%1 has no <b>Coordinates</b> attribute of integer rows [x, y].").arg(where);
        return false;
    }
    for (qsizetype i = 0; i < values.size(); i += 2)
        roi.points.emplace_back(values[i].toInt(), values[i + 1].toInt());
    roi.name = name;
    roi.number = patternNumber(name);
    return true;
}

/// The entry names of the stack's ROIs group, empty when it has none.
QStringList entryNames(HDF5Manager_V6& file, const QString& groupPath)
{
    if (file.objectKind(file.fileId(), groupPath) != ObjectKind::Group)
        return {};
    const hid_t group = file.openGroup(file.fileId(), groupPath);
    const QStringList names = group < 0 ? QStringList() : file.children(group);
    file.closeGroup(group);
    return names;
}

/// The name each shape gets, or false with a message when one cannot have its name.
bool assignNames(const std::vector<RoiShape>& shapes, const QStringList& existing, const QString& stackPath,
                 QStringList& names, QString& error)
{
    int highest = 0;
    for (const QString& name : existing)
        highest = std::max(highest, patternNumber(name));
    for (const RoiShape& shape : shapes)
        highest = std::max(highest, patternNumber(shape.name));
    for (const RoiShape& shape : shapes) {
        QString name = shape.name;
        if (name.isEmpty())
            name = FD::ROIPattern.arg(++highest);
        for (const QString& forbidden : HDF5Writer_V6::forbiddenNameTexts())
            if (name.contains(forbidden)) {
                error =
                    QStringLiteral("The ROI name <b>%1</b> holds <b>%2</b>, which a name in the file may not "
                                   "hold.")
                        .arg(name.toHtmlEscaped(), forbidden);
                return false;
            }
        if (existing.contains(name)) {
            error = QStringLiteral("An ROI named <b>%1</b> already exists on <b>%2</b>; remove it first or "
                                   "choose another name.")
                        .arg(name.toHtmlEscaped(), stackPath);
            return false;
        }
        if (names.contains(name)) {
            error = QStringLiteral("The name <b>%1</b> is given to two ROIs.").arg(name.toHtmlEscaped());
            return false;
        }
        names << name;
    }
    return true;
}

bool writeEntry(HDF5Writer_V6& file, hid_t group, const QString& name, const RoiShape& shape)
{
    const hid_t entry = file.createGroup(group, name);
    if (entry < 0)
        return false;
    const auto closeEntry = qScopeGuard([&] { file.closeGroup(entry); });
    std::vector<std::int32_t> coordinates;
    for (const cv::Point& point : shape.points) {
        coordinates.push_back(point.x);
        coordinates.push_back(point.y);
    }
    return file.writeAttribute(entry, RoiStore::CoordinatesKey, coordinates, shape.points.size(), 2) &&
           file.writeAttribute(entry, RoiStore::ShapeKey, static_cast<int>(shape.kind)) &&
           file.writeAttribute(entry, FD::Username, name);
}

} // namespace

QString RoiStore::groupPath(const QString& stackPath)
{
    const qsizetype slash = stackPath.lastIndexOf(QLatin1Char('/'));
    return slash < 0 ? GroupName : stackPath.left(slash + 1) + GroupName;
}

bool RoiStore::imageSize(HDF5Manager_V6& file, const QString& stackPath, int& width, int& height,
                         QString& error)
{
    if (!isStack(file, stackPath, error))
        return false;
    const hid_t stack = file.openDataset(file.fileId(), stackPath);
    if (stack < 0) {
        error =
            QStringLiteral("The image stack <b>%1</b> cannot be opened: %2").arg(stackPath, file.lastError());
        return false;
    }
    const auto closeStack = qScopeGuard([&] { file.closeDataset(stack); });
    const std::vector<hsize_t> extent = file.dimensions(stack);
    if (extent.size() != 3 || extent[0] == 0 || extent[1] == 0) {
        error = QStringLiteral("<b>%1</b> is not an image stack: a stack is a 3-D dataset [height, width, "
                               "frames].")
                    .arg(stackPath);
        return false;
    }
    const QVariant w = file.readAttribute(stack, FD::Width);
    const QVariant h = file.readAttribute(stack, FD::Height);
    width = w.typeId() == QMetaType::Int ? w.toInt() : static_cast<int>(extent[1]);
    height = h.typeId() == QMetaType::Int ? h.toInt() : static_cast<int>(extent[0]);
    return true;
}

bool RoiStore::list(HDF5Manager_V6& file, const QString& stackPath, std::vector<RoiShape>& rois,
                    QString& error)
{
    if (!isStack(file, stackPath, error))
        return false;
    const QString path = groupPath(stackPath);
    const QStringList names = entryNames(file, path);
    if (names.isEmpty())
        return true;
    const hid_t group = file.openGroup(file.fileId(), path);
    const auto closeGroup = qScopeGuard([&] { file.closeGroup(group); });
    std::vector<RoiShape> read(static_cast<std::size_t>(names.size()));
    for (qsizetype i = 0; i < names.size(); ++i)
        if (!readEntry(file, group, path, names[i], read[static_cast<std::size_t>(i)], error))
            return false;
    // Numbered names first, by number; the names come sorted, so the others stay in name order.
    std::stable_sort(read.begin(), read.end(), [](const RoiShape& a, const RoiShape& b) {
        if ((a.number != 0) != (b.number != 0))
            return a.number != 0;
        return a.number < b.number;
    });
    rois.insert(rois.end(), read.begin(), read.end());
    return true;
}

bool RoiStore::add(HDF5Writer_V6& file, const QString& stackPath, const RoiShape& shape, int width,
                   int height, QString& assignedName, QString& error)
{
    QStringList names;
    if (!add(file, stackPath, std::vector<RoiShape>{shape}, width, height, names, error))
        return false;
    assignedName = names.front();
    return true;
}

bool RoiStore::add(HDF5Writer_V6& file, const QString& stackPath, const std::vector<RoiShape>& shapes,
                   int width, int height, QStringList& assignedNames, QString& error)
{
    if (!isStack(file, stackPath, error))
        return false;
    for (const RoiShape& shape : shapes)
        if (!validateRoi(shape, width, height, error))
            return false;
    const QString path = groupPath(stackPath);
    QStringList names;
    if (!assignNames(shapes, entryNames(file, path), stackPath, names, error))
        return false;
    if (shapes.empty())
        return true;

    const bool groupExisted = file.objectKind(file.fileId(), path) == ObjectKind::Group;
    const hid_t group =
        groupExisted ? file.openGroup(file.fileId(), path) : file.createGroupPath(file.fileId(), path);
    QStringList written;
    bool ok = group >= 0;
    for (std::size_t i = 0; ok && i < shapes.size(); ++i) {
        ok = writeEntry(file, group, names[static_cast<qsizetype>(i)], shapes[i]);
        // A group made before the failure goes too, even when its attributes did not.
        if (file.exists(group, names[static_cast<qsizetype>(i)]))
            written << names[static_cast<qsizetype>(i)];
    }
    if (!ok) {
        error = QStringLiteral("The ROIs could not be written to <b>%1</b>: %2").arg(path, file.lastError());
        for (const QString& name : written)
            file.deleteLink(group, name);
    }
    file.closeGroup(group);
    if (!ok) {
        if (!groupExisted)
            file.deleteLink(file.fileId(), path);
        return false;
    }
    assignedNames << names;
    return true;
}

bool RoiStore::remove(HDF5Writer_V6& file, const QString& stackPath, const QString& name, QString& error)
{
    if (!isStack(file, stackPath, error))
        return false;
    const QString path = groupPath(stackPath);
    const QStringList names = entryNames(file, path);
    if (!names.contains(name)) {
        error = names.isEmpty() ? QStringLiteral("There is no ROI <b>%1</b> on <b>%2</b>; it has no ROIs.")
                                      .arg(name.toHtmlEscaped(), stackPath)
                                : QStringLiteral("There is no ROI <b>%1</b> on <b>%2</b>; its ROIs are %3.")
                                      .arg(name.toHtmlEscaped(), stackPath, names.join(QStringLiteral(", ")));
        return false;
    }
    // The group goes with its last ROI, so that a stack without ROIs looks as it did before.
    const QString target = names.size() == 1 ? path : path + QLatin1Char('/') + name;
    if (!file.deleteLink(file.fileId(), target)) {
        error = QStringLiteral("The ROI <b>%1</b> could not be removed: %2")
                    .arg(name.toHtmlEscaped(), file.lastError());
        return false;
    }
    return true;
}

} // namespace zarvi
