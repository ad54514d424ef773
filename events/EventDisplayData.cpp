#include "events/EventDisplayData.h"

#include "datafile/HDF5Manager_V6.h"
#include "datafile/SignalDataset.h"
#include "definitions/DatasetDefinitions.h"
#include "definitions/FileDefinitions.h"
#include "events/EventArrayFile.h"

namespace zarvi {

namespace {

using FD = FileDefinitions;

/// The index of the data-kind level `kind` followed by a series, -1 when the path has none.
qsizetype kindLevel(const QStringList& parts, const QString& kind)
{
    for (qsizetype i = 2; i + 1 < parts.size(); ++i)
        if (parts[i] == kind && parts[i + 1].contains(FD::SeriesText))
            return i;
    return -1;
}

QStringList levels(const QString& path)
{
    return path.split(QLatin1Char('/'), Qt::SkipEmptyParts);
}

} // namespace

bool EventDisplayData::isEventArray(const DataFileNode& node)
{
    return !EventArrayFile::eventArrays({node}).empty();
}

QString EventDisplayData::recording(const QString& path)
{
    const QStringList parts = levels(path);
    qsizetype kind = kindLevel(parts, FD::Events);
    if (kind < 0)
        kind = kindLevel(parts, FD::Signals);
    return kind < 0 ? QString() : parts[kind - 1] + QLatin1Char('/') + parts[kind + 1];
}

QStringList EventDisplayData::sameRecording(const QStringList& eventPaths, const QStringList& signalPaths)
{
    QStringList recordings;
    for (const QString& path : signalPaths)
        recordings << recording(path);
    QStringList matching;
    for (const QString& path : eventPaths)
        if (recordings.contains(recording(path)))
            matching << path;
    return matching;
}

QStringList EventDisplayData::recordingSignals(const std::vector<DataFileNode>& nodes,
                                               const QString& eventPath)
{
    const QStringList event = levels(eventPath);
    const qsizetype kind = kindLevel(event, FD::Events);
    if (kind < 0)
        return {};
    // The sensor groups right below the series hold the recorded signals; the
    // results of operations lie deeper.
    QStringList wanted = event.mid(0, kind + 2);
    wanted[kind] = FD::Signals;
    const QString prefix = wanted.join(QLatin1Char('/')) + QLatin1Char('/');
    QStringList paths;
    for (const DataFileNode& node : nodes) {
        const QStringList parts = levels(node.path);
        if (node.kind == ObjectKind::Dataset && node.dimensions.size() == 1 &&
            node.name == FD::SignalValues && node.path.startsWith(prefix) &&
            parts.size() == wanted.size() + 2)
            paths << node.path;
    }
    return paths;
}

bool EventDisplayData::read(HDF5Manager_V6& file, const QString& path, LabelledEvents& events, QString& error)
{
    const qsizetype slash = path.lastIndexOf(QLatin1Char('/'));
    const QString name = path.mid(slash + 1);
    std::optional<EventArray> read = EventArrayFile::readEvents(file, path.left(slash), name);
    if (slash <= 0 || !read) {
        error = DatasetDefinitions::notEventArrayMessage();
        return false;
    }
    const hid_t dataset = file.openDataset(file.fileId(), path);
    const QString username = file.readAttribute(dataset, FD::Username).toString();
    file.closeDataset(dataset);
    events.path = path;
    events.label = username.isEmpty() ? name : username;
    events.events = std::move(*read);
    return true;
}

} // namespace zarvi
