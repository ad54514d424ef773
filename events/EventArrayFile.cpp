#include "events/EventArrayFile.h"

#include "datafile/HDF5Manager_V6.h"
#include "definitions/FileDefinitions.h"

namespace zarvi {

namespace {

using FD = FileDefinitions;

/// The data-kind level of a path ("Events", "TimePeriods"): the level above the series.
bool isUnderKind(const QString& path, const QString& kind)
{
    const QStringList parts = path.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    return parts.size() >= 3 && parts[parts.size() - 3] == kind &&
           parts[parts.size() - 2].contains(FD::SeriesText);
}

bool isNumeric(const ElementType& type)
{
    return type.elementClass == ElementClass::Integer || type.elementClass == ElementClass::Float;
}

StoredArray storedArray(const DataFileNode& node)
{
    StoredArray array;
    array.path = node.path.left(node.path.lastIndexOf(QLatin1Char('/')));
    array.name = node.name;
    array.rows = node.dimensions.empty() ? 0 : static_cast<std::size_t>(node.dimensions[0]);
    array.hasOffsets = node.dimensions.size() == 2 && node.dimensions[1] == 2;
    return array;
}

/// Reads a numeric [rows] or [rows, columns] dataset; `columns` is 1 for rank 1.
bool readTable(HDF5Manager_V6& file, const QString& datapath, std::vector<double>& values, hsize_t& rows,
               hsize_t& columns)
{
    if (file.objectKind(file.fileId(), datapath) != ObjectKind::Dataset)
        return false;
    const hid_t dataset = file.openDataset(file.fileId(), datapath);
    const std::vector<hsize_t> dims = file.dimensions(dataset);
    bool ok = dataset >= 0 && (dims.size() == 1 || dims.size() == 2) && isNumeric(file.elementType(dataset));
    if (ok) {
        rows = dims[0];
        columns = dims.size() == 2 ? dims[1] : 1;
        ok = file.read(dataset, values);
    }
    file.closeDataset(dataset);
    return ok;
}

QString join(const QString& path, const QString& name)
{
    return path + QLatin1Char('/') + name;
}

} // namespace

std::vector<StoredArray> EventArrayFile::eventArrays(const std::vector<DataFileNode>& nodes)
{
    std::vector<StoredArray> arrays;
    for (const DataFileNode& node : nodes) {
        const bool shape =
            node.dimensions.size() == 1 ||
            (node.dimensions.size() == 2 && (node.dimensions[1] == 1 || node.dimensions[1] == 2));
        if (node.kind == ObjectKind::Dataset && shape && isNumeric(node.elementType) &&
            isUnderKind(node.path, FD::Events))
            arrays.push_back(storedArray(node));
    }
    return arrays;
}

std::vector<StoredArray> EventArrayFile::timePeriodArrays(const std::vector<DataFileNode>& nodes)
{
    std::vector<StoredArray> arrays;
    for (const DataFileNode& node : nodes) {
        if (node.kind != ObjectKind::Dataset || node.dimensions.size() != 2 || node.dimensions[1] != 2 ||
            !isNumeric(node.elementType) || !isUnderKind(node.path, FD::TimePeriods))
            continue;
        StoredArray array = storedArray(node);
        for (const QString& name : node.attributes.value(FD::PeriodNames).toStringList())
            if (!array.periodNames.contains(name))
                array.periodNames << name;
        arrays.push_back(array);
    }
    return arrays;
}

std::optional<EventArray> EventArrayFile::readEvents(HDF5Manager_V6& file, const QString& path,
                                                     const QString& name)
{
    std::vector<double> values;
    hsize_t rows = 0, columns = 0;
    if (path.isEmpty() || name.isEmpty() || !readTable(file, join(path, name), values, rows, columns) ||
        columns < 1 || columns > 2)
        return std::nullopt;
    std::vector<double> onsets(rows), offsets(columns == 2 ? rows : 0);
    for (hsize_t r = 0; r < rows; ++r) {
        onsets[r] = values[r * columns];
        if (columns == 2)
            offsets[r] = values[r * columns + 1];
    }
    return EventArray(std::move(onsets), std::move(offsets));
}

std::optional<TimePeriodArray> EventArrayFile::readTimePeriods(HDF5Manager_V6& file, const QString& path,
                                                               const QString& name)
{
    std::vector<double> values;
    hsize_t rows = 0, columns = 0;
    if (path.isEmpty() || name.isEmpty() || !readTable(file, join(path, name), values, rows, columns) ||
        columns != 2)
        return std::nullopt;
    TimePeriodArray periods;
    const hid_t dataset = file.openDataset(file.fileId(), join(path, name));
    periods.names = file.readAttribute(dataset, FD::PeriodNames).toStringList();
    file.closeDataset(dataset);
    if (static_cast<hsize_t>(periods.names.size()) != rows)
        return std::nullopt;
    for (hsize_t r = 0; r < rows; ++r) {
        periods.starts.push_back(values[2 * r]);
        periods.ends.push_back(values[2 * r + 1]);
    }
    return periods;
}

} // namespace zarvi
