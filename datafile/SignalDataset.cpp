#include "datafile/SignalDataset.h"

#include "datafile/HDF5Writer_V6.h"
#include "datafile/MemoryBudget.h"
#include "definitions/FileDefinitions.h"

namespace zarvi {

namespace {

bool read1D(HDF5Manager_V6& file, const QString& path, std::vector<double>& out, QString& error)
{
    std::size_t length = 0;
    const hid_t dataset = SignalDataset::open1D(file, path, true, length, error);
    if (dataset < 0)
        return false;
    const bool ok = file.read(dataset, out);
    if (!ok)
        error = file.lastError();
    file.closeDataset(dataset);
    return ok;
}

bool write1D(HDF5Writer_V6& file, hid_t group, const QString& name, const std::vector<double>& data,
             const QVariantMap& attributes, QString& error)
{
    const hid_t dataset = file.create1D(group, ElementKind::Float64, name, data.size());
    if (dataset < 0) {
        error = FileDefinitions::unableToCreateDatasetMessage().arg(name);
        return false;
    }
    bool ok = data.empty() || file.append(dataset, data.data(), {data.size()});
    for (auto it = attributes.cbegin(); ok && it != attributes.cend(); ++it)
        ok = file.writeAttribute(dataset, it.key(), it.value());
    if (!ok)
        error = file.lastError();
    file.closeDataset(dataset);
    return ok;
}

QString timePathOf(const QString& valuesPath)
{
    const QString group = valuesPath.left(valuesPath.lastIndexOf(QLatin1Char('/')));
    return group.isEmpty() ? FileDefinitions::Time : group + QLatin1Char('/') + FileDefinitions::Time;
}

QString unequalLengthMessage(const QString& path)
{
    return QStringLiteral("Signal <b>%1</b> and its time vector differ in length.").arg(path);
}

/// The length of the 1-D "Time" at `path`, with its first and last sample.
bool readTimeSpan(HDF5Manager_V6& file, const QString& path, TimeSpan& span, QString& error)
{
    span = TimeSpan{};
    const hid_t dataset = SignalDataset::open1D(file, path, false, span.count, error);
    if (dataset < 0)
        return false;
    const bool ok = span.count == 0 || (file.read(dataset, {0}, {1}, &span.first) &&
                                        file.read(dataset, {span.count - 1}, {1}, &span.last));
    if (!ok)
        error = file.lastError();
    file.closeDataset(dataset);
    return ok;
}

/// A signal read for an operation lives beside its result: values and time, and as many
/// again. Checked on the declared length before any of it is allocated.
bool fitsInMemory(HDF5Manager_V6& file, const QString& valuesPath, QString& error)
{
    const hid_t dataset = file.openDataset(file.fileId(), valuesPath);
    if (dataset < 0)
        return true; // read1D says it is missing
    const std::vector<hsize_t> dims = file.dimensions(dataset);
    file.closeDataset(dataset);
    if (dims.size() != 1)
        return true;
    constexpr std::uint64_t BuffersPerSample = 4;
    error = MemoryBudget::problem(QStringLiteral("Signal %1 of %2 samples").arg(valuesPath).arg(dims[0]),
                                  MemoryBudget::product({dims[0], sizeof(double), BuffersPerSample}));
    return error.isEmpty();
}

QString unitOf(HDF5Manager_V6& file, const QString& valuesPath)
{
    const hid_t dataset = file.openDataset(file.fileId(), valuesPath);
    const QString unit = file.readAttribute(dataset, FileDefinitions::Unit).toString();
    file.closeDataset(dataset);
    return unit;
}

/// The attributes of a signal's values: the run's, and the unit when the signal has one.
QVariantMap withUnit(QVariantMap attributes, const QString& unit)
{
    if (!unit.isEmpty())
        attributes.insert(FileDefinitions::Unit, unit);
    return attributes;
}

} // namespace

hid_t SignalDataset::open1D(HDF5Manager_V6& file, const QString& path, bool wholeRead, std::size_t& length,
                            QString& error)
{
    const hid_t dataset =
        wholeRead ? file.openDatasetForWholeRead(file.fileId(), path) : file.openDataset(file.fileId(), path);
    if (dataset < 0) {
        error = FileDefinitions::datasetNotFoundMessage().arg(path);
        return H5I_INVALID_HID;
    }
    const std::vector<hsize_t> dims = file.dimensions(dataset);
    if (dims.size() != 1) {
        error = FileDefinitions::notOneDimensionalMessage().arg(path);
        file.closeDataset(dataset);
        return H5I_INVALID_HID;
    }
    length = static_cast<std::size_t>(dims[0]);
    return dataset;
}

QString SignalDataset::valuesPath(const QString& groupPath)
{
    return groupPath + QLatin1Char('/') + FileDefinitions::SignalValues;
}

bool SignalDataset::read(HDF5Manager_V6& file, const QString& valuesPath, Signal& signal, QString& error)
{
    if (!fitsInMemory(file, valuesPath, error))
        return false;
    if (!read1D(file, valuesPath, signal.values, error) ||
        !read1D(file, timePathOf(valuesPath), signal.time, error))
        return false;
    if (signal.values.size() != signal.time.size()) {
        error = unequalLengthMessage(valuesPath);
        return false;
    }
    signal.unit = unitOf(file, valuesPath);
    return true;
}

bool SignalDataset::readOnly(HDF5Manager_V6& file, const QString& valuesPath, ReadOnlySignal& signal,
                             QString& error)
{
    if (!fitsInMemory(file, valuesPath, error))
        return false;
    if (!signal.values.load(file, valuesPath, error) ||
        !signal.time.load(file, timePathOf(valuesPath), error))
        return false;
    if (signal.values.samples().size() != signal.time.samples().size()) {
        error = unequalLengthMessage(valuesPath);
        return false;
    }
    signal.unit = unitOf(file, valuesPath);
    return true;
}

bool SignalDataset::readValues(HDF5Manager_V6& file, const QString& valuesPath, Signal& signal,
                               TimeSpan& span, QString& error)
{
    signal.time.clear();
    if (!fitsInMemory(file, valuesPath, error))
        return false;
    if (!read1D(file, valuesPath, signal.values, error) ||
        !readTimeSpan(file, timePathOf(valuesPath), span, error))
        return false;
    if (signal.values.size() != span.count) {
        error = unequalLengthMessage(valuesPath);
        return false;
    }
    signal.unit = unitOf(file, valuesPath);
    return true;
}

bool SignalDataset::write(HDF5Writer_V6& file, const QString& groupPath, const Signal& signal,
                          const QVariantMap& attributes, QString& error)
{
    if (signal.time.size() != signal.values.size()) {
        error = unequalLengthMessage(groupPath);
        return false;
    }
    const hid_t group = file.createGroupPath(file.fileId(), groupPath);
    if (group < 0) {
        error = FileDefinitions::unableToCreateGroupMessage().arg(groupPath);
        return false;
    }
    const QVariantMap valueAttributes = withUnit(attributes, signal.unit);
    const bool ok =
        write1D(file, group, FileDefinitions::Time, signal.time,
                {{FileDefinitions::Unit, QStringLiteral("s")}}, error) &&
        write1D(file, group, FileDefinitions::SignalValues, signal.values, valueAttributes, error);
    file.closeGroup(group);
    return ok;
}

bool SignalDataset::writeWithTimeOf(HDF5Writer_V6& file, const QString& groupPath,
                                    const QString& timeSourcePath, const Signal& signal,
                                    const QVariantMap& attributes, QString& error)
{
    const QString sourceTime = timePathOf(timeSourcePath);
    TimeSpan span;
    if (!readTimeSpan(file, sourceTime, span, error))
        return false;
    if (span.count != signal.values.size()) {
        error = unequalLengthMessage(groupPath);
        return false;
    }
    const hid_t group = file.createGroupPath(file.fileId(), groupPath);
    if (group < 0) {
        error = FileDefinitions::unableToCreateGroupMessage().arg(groupPath);
        return false;
    }
    const QVariantMap valueAttributes = withUnit(attributes, signal.unit);
    // The output's "Time" is the input's own dataset under a second name: nothing is
    // copied, and it is left exactly as it is, attributes included.
    bool ok = file.link(file.fileId(), sourceTime, group, FileDefinitions::Time);
    if (!ok)
        error = FileDefinitions::unableToCreateDatasetMessage().arg(FileDefinitions::Time) +
                QLatin1Char(' ') + file.lastError();
    ok = ok && write1D(file, group, FileDefinitions::SignalValues, signal.values, valueAttributes, error);
    file.closeGroup(group);
    return ok;
}

} // namespace zarvi
