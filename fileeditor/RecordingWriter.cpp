#include "fileeditor/RecordingWriter.h"

#include <QFileInfo>

#include <algorithm>

#include "definitions/FileDefinitions.h"
#include "definitions/FileEditorOperationDefinitions.h"

namespace zarvi {

namespace {

using FD = FileDefinitions;
using Texts = FileEditorOperationDefinitions;

/// Samples gathered per signal before they go to the file: one chunk of the datasets.
constexpr std::size_t BlockLength = 65536;

} // namespace

ConversionResult RecordingWriter::convert(const RecordingConversionConfig& config,
                                          const QVariantMap& parameters,
                                          const std::function<bool(RecordingWriter&, QString&)>& body)
{
    ConversionResult result;
    const ConversionDestination& to = config.destination;
    result.filepath = to.filepath;
    if (!ConversionTarget::isUsableName(to.device))
        result.error = Texts::deviceNameMessage().arg(to.device);
    else if (to.series < 0)
        result.error = Texts::seriesNumberMessage().arg(to.series);
    if (!result.ok())
        return result;
    ConversionTarget target;
    if (!target.open(to.filepath, false, result.error))
        return result;
    bool ok = false;
    {
        RecordingWriter writer(target, to, config.sourcePath, parameters);
        ok = body(writer, result.error) && writer.finish(result.error);
        if (ok)
            result.datapaths = writer.datapaths();
    }
    if (!ok || !target.commit(result.error)) {
        target.rollback();
        result.datapaths.clear();
        result.canceled = result.error == Texts::canceledMessage();
    }
    return result;
}

RecordingWriter::RecordingWriter(ConversionTarget& target, const ConversionDestination& destination,
                                 const QString& sourcePath, const QVariantMap& parameters)
    : m_target(target), m_destination(destination), m_sourcePath(QFileInfo(sourcePath).absoluteFilePath()),
      m_parameters(parameters)
{
}

RecordingWriter::~RecordingWriter()
{
    closeAll();
}

bool RecordingWriter::recordSource(hid_t location, const QString& path, QString& error)
{
    QVariantMap attributes = m_parameters;
    attributes.insert(FD::SourceFile, QFileInfo(m_sourcePath).fileName());
    attributes.insert(FD::SourceFilepath, m_sourcePath);
    for (auto it = attributes.cbegin(); it != attributes.cend(); ++it) {
        if (!m_target.file().writeAttribute(location, it.key(), it.value())) {
            error = Texts::unableToWriteMessage().arg(path, m_target.file().lastError());
            return false;
        }
    }
    return true;
}

int RecordingWriter::addSignal(const QString& name, const QString& username, const QString& unit,
                               QString& error)
{
    return addStream(name, username, unit, -1, error);
}

int RecordingWriter::addSignalOnTimesOf(int owner, const QString& name, const QString& username,
                                        const QString& unit, QString& error)
{
    Q_ASSERT(owner >= 0 && static_cast<std::size_t>(owner) < m_streams.size());
    // Every sharer names the dataset that holds the times, not another sharer.
    if (m_streams[static_cast<std::size_t>(owner)].owner >= 0)
        owner = m_streams[static_cast<std::size_t>(owner)].owner;
    return addStream(name, username, unit, owner, error);
}

int RecordingWriter::addStream(const QString& name, const QString& username, const QString& unit, int owner,
                               QString& error)
{
    if (m_signalSeries == 0)
        m_signalSeries = m_target.seriesNumber(m_destination.device, FD::Signals, m_destination.series);
    Stream stream;
    stream.path = ConversionTarget::dataPath(m_destination.device, FD::Signals, m_signalSeries, name);
    stream.owner = owner;
    // The group is tracked by the target, so a rollback takes the link inside it too.
    const hid_t group = m_target.createGroup(stream.path, error);
    if (group < 0)
        return -1;
    HDF5Writer_V6& file = m_target.file();
    bool ok = recordSource(group, stream.path, error);
    if (ok) {
        stream.values = file.create1D(group, ElementKind::Float64, FD::SignalValues, BlockLength);
        if (owner < 0) {
            stream.time = file.create1D(group, ElementKind::Float64, FD::Time, BlockLength);
            ok = stream.time >= 0 && file.writeAttribute(stream.time, FD::Unit, Texts::SecondsUnit);
        } else {
            // The owner's dataset grows as its times come; this name sees them as they do.
            const QString ownerTime =
                m_streams[static_cast<std::size_t>(owner)].path + QLatin1Char('/') + FD::Time;
            ok = file.link(file.fileId(), ownerTime, group, FD::Time);
        }
        ok = ok && stream.values >= 0 && file.writeAttribute(stream.values, FD::Username, username) &&
             (unit.isEmpty() || file.writeAttribute(stream.values, FD::Unit, unit)) &&
             recordSource(stream.values, stream.path, error);
        if (!ok)
            error = FD::unableToCreateDatasetMessage().arg(stream.path) + QStringLiteral("<br>") +
                    file.lastError();
    }
    file.closeGroup(group);
    if (!ok) {
        file.closeDataset(stream.values);
        file.closeDataset(stream.time);
        return -1;
    }
    stream.pendingValues.reserve(BlockLength);
    if (owner < 0)
        stream.pendingTimes.reserve(BlockLength);
    m_datapaths << SignalDataset::valuesPath(stream.path);
    m_streams.push_back(std::move(stream));
    return static_cast<int>(m_streams.size() - 1);
}

bool RecordingWriter::append(int index, std::span<const double> values, std::span<const double> times,
                             QString& error)
{
    Stream& stream = m_streams[static_cast<std::size_t>(index)];
    Q_ASSERT(stream.owner < 0);
    return add(stream, values.data(), times.data(), std::min(values.size(), times.size()), error);
}

bool RecordingWriter::appendValues(int index, std::span<const double> values, QString& error)
{
    Stream& stream = m_streams[static_cast<std::size_t>(index)];
    Q_ASSERT(stream.owner >= 0);
    return add(stream, values.data(), nullptr, values.size(), error);
}

bool RecordingWriter::add(Stream& stream, const double* values, const double* times, std::size_t n,
                          QString& error)
{
    stream.length += n;
    for (std::size_t done = 0; done < n;) {
        // Whole blocks go to the file as given, without a copy through the buffer.
        if (stream.pendingValues.empty() && n - done >= BlockLength) {
            if (!write(stream, values + done, times ? times + done : nullptr, BlockLength, error))
                return false;
            done += BlockLength;
            continue;
        }
        const std::size_t take = std::min(n - done, BlockLength - stream.pendingValues.size());
        stream.pendingValues.insert(stream.pendingValues.end(), values + done, values + done + take);
        if (times)
            stream.pendingTimes.insert(stream.pendingTimes.end(), times + done, times + done + take);
        done += take;
        if (stream.pendingValues.size() == BlockLength && !flush(stream, error))
            return false;
    }
    return true;
}

bool RecordingWriter::write(Stream& stream, const double* values, const double* times, std::size_t n,
                            QString& error)
{
    HDF5Writer_V6& file = m_target.file();
    if (!file.append(stream.values, values, {n}) || (times && !file.append(stream.time, times, {n}))) {
        error = Texts::unableToWriteMessage().arg(stream.path, file.lastError());
        return false;
    }
    return true;
}

bool RecordingWriter::flush(Stream& stream, QString& error)
{
    if (stream.pendingValues.empty())
        return true;
    const double* times = stream.owner < 0 ? stream.pendingTimes.data() : nullptr;
    if (!write(stream, stream.pendingValues.data(), times, stream.pendingValues.size(), error))
        return false;
    stream.pendingValues.clear();
    stream.pendingTimes.clear();
    return true;
}

bool RecordingWriter::writeEvents(const QString& name, const QString& username,
                                  std::span<const double> onsets, std::span<const double> offsets,
                                  QString& error)
{
    if (m_eventSeries == 0)
        m_eventSeries = m_target.seriesNumber(m_destination.device, FD::Events, m_destination.series);
    const QString seriesPath =
        QStringList{FD::DataConverted, m_destination.device, FD::Events, FD::SeriesPattern.arg(m_eventSeries)}
            .join(QLatin1Char('/'));
    const hid_t group = m_target.openOrCreateGroup(seriesPath, error);
    if (group < 0)
        return false;
    HDF5Writer_V6& file = m_target.file();
    const QString path = seriesPath + QLatin1Char('/') + name;
    if (file.exists(group, name)) {
        error = Texts::pathExistsMessage().arg(path, m_destination.filepath);
        file.closeGroup(group);
        return false;
    }
    const hsize_t n = onsets.size();
    const hsize_t columns = offsets.empty() ? 1 : 2;
    std::vector<double> rows;
    rows.reserve(n * columns);
    for (hsize_t k = 0; k < n; ++k) {
        rows.push_back(onsets[k]);
        if (columns == 2)
            rows.push_back(offsets[k]);
    }
    const hid_t dataset =
        file.createDataset(group, ElementKind::Float64, name, 2, {H5S_UNLIMITED, columns},
                           {std::clamp<hsize_t>(n, 1, BlockLength), columns}, {n, columns}, 0);
    if (dataset >= 0)
        m_target.track(path);
    bool ok = dataset >= 0 && (n == 0 || file.write(dataset, rows.data(), {0, 0}, {n, columns})) &&
              file.writeAttribute(dataset, FD::Unit, Texts::SecondsUnit) &&
              file.writeAttribute(dataset, FD::Username, username);
    if (!ok)
        error = FD::unableToCreateDatasetMessage().arg(path) + QStringLiteral("<br>") + file.lastError();
    else
        ok = recordSource(dataset, path, error);
    file.closeDataset(dataset);
    file.closeGroup(group);
    if (ok)
        m_datapaths << path;
    return ok;
}

bool RecordingWriter::finish(QString& error)
{
    bool ok = true;
    for (Stream& stream : m_streams) {
        ok = ok && flush(stream, error);
        // The source's layout said these signals are sampled together; counts that differ
        // mean it was wrong, and the shared times would not fit the values.
        const std::size_t timeLength =
            stream.owner < 0 ? stream.length : m_streams[static_cast<std::size_t>(stream.owner)].length;
        if (ok && stream.length != timeLength) {
            error = Texts::sharedTimeLengthMessage().arg(stream.path).arg(stream.length).arg(timeLength);
            ok = false;
        }
    }
    closeAll();
    return ok;
}

void RecordingWriter::closeAll()
{
    for (Stream& stream : m_streams) {
        m_target.file().closeDataset(stream.values);
        if (stream.owner < 0)
            m_target.file().closeDataset(stream.time);
        stream.values = stream.time = H5I_INVALID_HID;
    }
}

} // namespace zarvi
