#pragma once

#include "datafile/HDF5Writer_V6.h"
#include "datafile/SignalDataset.h"
#include "definitions/FileDefinitions.h"

#include <algorithm>
#include <vector>

namespace zarvi::test {

/// Writes an event array as the program stores one: float64 [events, 1] of onsets,
/// or [events, 2] of onsets and offsets when `offsets` is given, "Unit" = "s", and
/// "Username" when not empty.
inline bool writeEventArray(HDF5Writer_V6& writer, const QString& group, const QString& name,
                            const std::vector<double>& onsets, const std::vector<double>& offsets = {},
                            const QString& username = {})
{
    const hsize_t count = onsets.size();
    const hsize_t width = offsets.empty() ? 1 : 2;
    std::vector<double> rows;
    for (std::size_t i = 0; i < onsets.size(); ++i) {
        rows.push_back(onsets[i]);
        if (width == 2)
            rows.push_back(offsets[i]);
    }
    const hid_t location = writer.createGroupPath(writer.fileId(), group);
    const hid_t dataset =
        writer.createDataset(location, ElementKind::Float64, name, 2, {H5S_UNLIMITED, width},
                             {std::max<hsize_t>(count, 1), width}, {count, width}, 0);
    bool ok = dataset >= 0 && (count == 0 || writer.write(dataset, rows.data(), {0, 0}, {count, width})) &&
              writer.writeAttribute(dataset, FileDefinitions::Unit, QStringLiteral("s"));
    if (ok && !username.isEmpty())
        ok = writer.writeAttribute(dataset, FileDefinitions::Username, username);
    writer.closeDataset(dataset);
    writer.closeGroup(location);
    return ok;
}

/// A signal sampled at `rate` Hz from time 0 whose value is its own time: sample k is
/// (k / rate, k / rate), so any point of a plot says where it came from.
inline bool writeRampSignal(HDF5Writer_V6& writer, const QString& group, int samples, double rate)
{
    Signal signal;
    for (int k = 0; k < samples; ++k) {
        signal.time.push_back(k / rate);
        signal.values.push_back(k / rate);
    }
    signal.unit = QStringLiteral("V");
    QString error;
    return SignalDataset::write(writer, group, signal, {}, error);
}

} // namespace zarvi::test
