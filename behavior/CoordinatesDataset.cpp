#include "behavior/CoordinatesDataset.h"

#include "datafile/HDF5Manager_V6.h"
#include "definitions/BehaviorViewDefinitions.h"
#include "definitions/FileDefinitions.h"

#include <QHash>

#include <cstdint>

namespace zarvi {

namespace {

using FD = FileDefinitions;

QString timeBeside(const QString& path)
{
    const qsizetype slash = path.lastIndexOf(QLatin1Char('/'));
    return (slash < 0 ? QString() : path.left(slash + 1)) + FD::Time;
}

bool isPositionType(const ElementType& type)
{
    return type.elementClass == ElementClass::Integer && type.isSigned && type.size == 4;
}

} // namespace

QStringList CoordinatesDataset::find(const std::vector<DataFileNode>& nodes)
{
    QHash<QString, const DataFileNode*> datasets;
    for (const DataFileNode& node : nodes)
        if (node.kind == ObjectKind::Dataset)
            datasets.insert(node.path, &node);
    QStringList found;
    for (const DataFileNode& node : nodes) {
        if (node.kind != ObjectKind::Dataset || !node.path.startsWith(FD::DataBehavior + QLatin1Char('/')) ||
            !node.name.startsWith(FD::Coordinates) || node.dimensions.size() != 2 ||
            node.dimensions[1] != 2 || !isPositionType(node.elementType))
            continue;
        const DataFileNode* time = datasets.value(timeBeside(node.path));
        if (time && time->dimensions.size() == 1 && time->dimensions[0] == node.dimensions[0])
            found << node.path;
    }
    return found;
}

bool CoordinatesDataset::read(HDF5Manager_V6& file, const QString& path, TrackedPath& tracked, QString& error)
{
    const QString notCoordinates = BehaviorViewDefinitions::notCoordinatesMessage().arg(path);
    const hid_t dataset = file.openDataset(file.fileId(), path);
    if (dataset < 0) {
        error = FD::datasetNotFoundMessage().arg(path);
        return false;
    }
    const std::vector<hsize_t> dimensions = file.dimensions(dataset);
    std::vector<std::int32_t> values;
    const bool shaped =
        dimensions.size() == 2 && dimensions[1] == 2 && isPositionType(file.elementType(dataset));
    const bool readValues = shaped && file.read(dataset, values);
    const QString username = file.readAttribute(dataset, FD::Username).toString();
    file.closeDataset(dataset);
    if (!readValues) {
        error = notCoordinates;
        return false;
    }
    const hid_t time = file.openDataset(file.fileId(), timeBeside(path));
    std::vector<double> times;
    const bool timeRead = time >= 0 && file.dimensions(time).size() == 1 && file.read(time, times);
    file.closeDataset(time);
    if (!timeRead || times.size() != dimensions[0]) {
        error = notCoordinates;
        return false;
    }
    tracked.path = path;
    tracked.name = username.isEmpty() ? path.section(QLatin1Char('/'), -1) : username;
    tracked.time = std::move(times);
    tracked.positions.resize(tracked.time.size());
    for (std::size_t k = 0; k < tracked.positions.size(); ++k)
        tracked.positions[k] = cv::Point(values[2 * k], values[2 * k + 1]);
    return true;
}

} // namespace zarvi
