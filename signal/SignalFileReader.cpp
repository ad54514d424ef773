#include "signal/SignalFileReader.h"

#include "datafile/HDF5Reader_V6.h"
#include "definitions/FileDefinitions.h"
#include "definitions/SignalOperationDefinitions.h"
#include "framework/LockedFileRead.h"
#include "signal/operations/SampleRate.h"

#include <array>

namespace zarvi {

namespace {

QString busyMessage(const QString& filepath)
{
    return SignalOperationDefinitions::fileBusyMessage().arg(filepath);
}

} // namespace

bool SignalFileReader::read(const QString& filepath, const QString& valuesPath, Signal& signal,
                            QString& error)
{
    std::vector<Signal> loaded;
    if (!read(filepath, QStringList{valuesPath}, loaded, error))
        return false;
    signal = std::move(loaded.front());
    return true;
}

bool SignalFileReader::read(const QString& filepath, const QStringList& valuesPaths,
                            std::vector<Signal>& loaded, QString& error)
{
    loaded.clear();
    LockedFileRead read(filepath);
    if (!read.isOpen()) {
        error = read.isBusy() ? busyMessage(filepath) : read.error();
        return false;
    }
    HDF5Reader_V6& reader = read.reader();
    loaded.resize(static_cast<std::size_t>(valuesPaths.size()));
    for (qsizetype i = 0; i < valuesPaths.size(); ++i) {
        if (!SignalDataset::read(reader, valuesPaths[i], loaded[static_cast<std::size_t>(i)], error)) {
            loaded.clear();
            return false;
        }
    }
    return true;
}

namespace {

/// The "Time" beside a values dataset.
QString timePathOf(const QString& valuesPath)
{
    return valuesPath.left(valuesPath.lastIndexOf(QLatin1Char('/')) + 1) + FileDefinitions::Time;
}

} // namespace

double SignalFileReader::sampleRate(const QString& filepath, const QString& valuesPath)
{
    LockedFileRead read(filepath);
    if (!read.isOpen())
        return 0.0;
    HDF5Reader_V6& reader = read.reader();
    const QString timePath = timePathOf(valuesPath);
    const hid_t dataset = reader.openDataset(reader.fileId(), timePath);
    if (dataset < 0)
        return 0.0;
    double rate = 0.0;
    const std::vector<hsize_t> dims = reader.dimensions(dataset);
    std::array<double, 2> ends{};
    if (dims.size() == 1 && dims[0] >= 2 && reader.read(dataset, {0}, {1}, &ends[0]) &&
        reader.read(dataset, {dims[0] - 1}, {1}, &ends[1])) {
        rate = sampleRateOf(static_cast<std::size_t>(dims[0]), ends[0], ends[1]);
    }
    reader.closeDataset(dataset);
    return rate;
}

std::size_t SignalFileReader::sampleCount(const QString& filepath, const QString& valuesPath)
{
    LockedFileRead read(filepath);
    if (!read.isOpen())
        return 0;
    HDF5Reader_V6& reader = read.reader();
    const QString timePath = timePathOf(valuesPath);
    const hid_t dataset = reader.openDataset(reader.fileId(), timePath);
    if (dataset < 0)
        return 0;
    const std::vector<hsize_t> dims = reader.dimensions(dataset);
    reader.closeDataset(dataset);
    return dims.size() == 1 ? static_cast<std::size_t>(dims[0]) : 0;
}

QStringList SignalFileReader::recordingSensors(const QString& filepath, const QStringList& valuesPaths)
{
    // values path = <recording>/<sensor>/<values>
    const auto parentOf = [](const QString& path) {
        return path.left(std::max<qsizetype>(0, path.lastIndexOf(QLatin1Char('/'))));
    };
    QStringList sensors;
    QStringList recordings;
    for (const QString& path : valuesPaths) {
        const QString sensorGroup = parentOf(path);
        const QString sensor = sensorGroup.mid(sensorGroup.lastIndexOf(QLatin1Char('/')) + 1);
        if (!sensor.isEmpty() && !sensors.contains(sensor))
            sensors << sensor;
        if (const QString recording = parentOf(sensorGroup);
            !recording.isEmpty() && !recordings.contains(recording))
            recordings << recording;
    }
    LockedFileRead read(filepath);
    if (!read.isOpen())
        return sensors;
    HDF5Reader_V6& reader = read.reader();
    for (const QString& recording : recordings) {
        const hid_t group = reader.openGroup(reader.fileId(), recording);
        if (group < 0)
            continue;
        for (const QString& sensor : reader.children(group)) {
            const QString values =
                recording + QLatin1Char('/') + sensor + QLatin1Char('/') + FileDefinitions::SignalValues;
            if (!sensors.contains(sensor) &&
                reader.objectKind(reader.fileId(), values) == ObjectKind::Dataset)
                sensors << sensor;
        }
        reader.closeGroup(group);
    }
    return sensors;
}

QStringList SignalFileReader::existing(const QString& filepath, const QStringList& paths)
{
    LockedFileRead read(filepath);
    if (!read.isOpen())
        return {};
    HDF5Reader_V6& reader = read.reader();
    QStringList found;
    for (const QString& path : paths) {
        if (reader.objectKind(reader.fileId(), path) == ObjectKind::Dataset)
            found << path;
    }
    return found;
}

} // namespace zarvi
