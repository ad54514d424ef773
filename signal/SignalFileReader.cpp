#include "signal/SignalFileReader.h"

#include "datafile/HDF5Reader_V6.h"
#include "definitions/FileDefinitions.h"
#include "definitions/SignalOperationDefinitions.h"
#include "framework/FileAccessLock.h"
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
    const auto lock = FileAccessLock::tryLock(filepath);
    if (!lock.owns_lock()) {
        error = busyMessage(filepath);
        return false;
    }
    HDF5Reader_V6 reader;
    if (reader.open(filepath) < 0) {
        error = reader.lastError();
        return false;
    }
    loaded.resize(static_cast<std::size_t>(valuesPaths.size()));
    for (qsizetype i = 0; i < valuesPaths.size(); ++i) {
        if (!SignalDataset::read(reader, valuesPaths[i], loaded[static_cast<std::size_t>(i)], error)) {
            loaded.clear();
            return false;
        }
    }
    return true;
}

double SignalFileReader::sampleRate(const QString& filepath, const QString& valuesPath)
{
    const auto lock = FileAccessLock::tryLock(filepath);
    HDF5Reader_V6 reader;
    if (!lock.owns_lock() || reader.open(filepath) < 0)
        return 0.0;
    const QString timePath =
        valuesPath.left(valuesPath.lastIndexOf(QLatin1Char('/')) + 1) + FileDefinitions::Time;
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

QStringList SignalFileReader::existing(const QString& filepath, const QStringList& paths)
{
    const auto lock = FileAccessLock::tryLock(filepath);
    HDF5Reader_V6 reader;
    if (!lock.owns_lock() || reader.open(filepath) < 0)
        return {};
    QStringList found;
    for (const QString& path : paths) {
        if (reader.objectKind(reader.fileId(), path) == ObjectKind::Dataset)
            found << path;
    }
    return found;
}

} // namespace zarvi
