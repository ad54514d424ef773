#include "image/operations/motioncorrection/AlignmentShifts.h"

#include "datafile/HDF5Writer_V6.h"
#include "definitions/AnalysisOperationDefinitions.h"
#include "definitions/FileDefinitions.h"
#include "definitions/ImageOperationDefinitions.h"

#include <algorithm>

namespace zarvi {

using FD = FileDefinitions;
using ID = ImageOperationDefinitions;

namespace {

/// Rows per chunk: about 1 MiB of shifts.
constexpr hsize_t chunkRows = 65536;

} // namespace

bool AlignmentShifts::write(HDF5Writer_V6& file, const QString& groupPath,
                            const std::vector<FrameShift>& shifts, const QVariantMap& attributes,
                            QString& error)
{
    const auto rows = static_cast<hsize_t>(shifts.size());
    std::vector<double> values;
    values.reserve(shifts.size() * 2);
    for (const FrameShift& shift : shifts) {
        values.push_back(shift.x);
        values.push_back(shift.y);
    }
    const QString path = groupPath + QLatin1Char('/') + ID::AlignmentShifts;
    const hid_t dataset =
        file.createDataset(file.fileId(), ElementKind::Float64, path, 2, {rows, 2},
                           {std::max<hsize_t>(1, std::min(rows, chunkRows)), 2}, {rows, 2}, 0);
    bool written = dataset >= 0 && (rows == 0 || file.write(dataset, values.data(), {0, 0}, {rows, 2}));
    QVariantMap all = attributes;
    all.insert(AnalysisOperationDefinitions::ColumnNames, QStringList{ID::XShift, ID::YShift});
    all.insert(FD::Unit, ID::PixelUnit);
    for (auto it = all.cbegin(); written && it != all.cend(); ++it)
        written = file.writeAttribute(dataset, it.key(), it.value());
    if (dataset >= 0)
        file.closeDataset(dataset);
    if (!written)
        error = FD::unableToCreateDatasetMessage().arg(path) + QStringLiteral(" ") + file.lastError();
    return written;
}

bool AlignmentShifts::read(HDF5Manager_V6& file, const QString& path, std::vector<FrameShift>& shifts,
                           QString& error)
{
    shifts.clear();
    const hid_t dataset = file.objectKind(file.fileId(), path) == ObjectKind::Dataset
                              ? file.openDataset(file.fileId(), path)
                              : H5I_INVALID_HID;
    std::vector<double> values;
    const bool read = dataset >= 0 && file.dimensions(dataset).size() == 2 &&
                      file.dimensions(dataset)[1] == 2 && file.read(dataset, values);
    if (dataset >= 0)
        file.closeDataset(dataset);
    if (!read) {
        error = ID::noShiftsMessage();
        return false;
    }
    for (std::size_t i = 0; i + 1 < values.size(); i += 2)
        shifts.push_back({static_cast<float>(values[i]), static_cast<float>(values[i + 1])});
    return true;
}

} // namespace zarvi
