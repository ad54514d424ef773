#include "fileeditor/TdtBlockFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QtEndian>

#include <algorithm>
#include <bit>
#include <cstring>
#include <deque>
#include <functional>
#include <map>
#include <optional>

#include "definitions/FileDefinitions.h"
#include "definitions/FileEditorOperationDefinitions.h"
#include "fileeditor/RecordingWriter.h"

namespace zarvi {

namespace {

using FD = FileDefinitions;
using Texts = FileEditorOperationDefinitions;

constexpr qint64 RecordBytes = 40;
constexpr qint32 HeaderWords = 10;
constexpr qint32 StrobeOn = 0x101;
constexpr qint32 StrobeOff = 0x102;
constexpr qint32 Stream = 0x8101;
constexpr qint32 Snip = 0x8201;
constexpr qint32 Mark = 0x8801;
constexpr qint32 StartMark = 1;
/// Index records read at once.
constexpr qint64 RecordsPerRead = 4096;
/// Bytes of the data file read at once.
constexpr qint64 WindowBytes = 4 << 20;

struct Record
{
    qint32 words = 0;
    qint32 type = 0;
    QString store;
    quint16 channel = 0;
    double timestamp = 0.0;
    qint64 offset = 0;
    double strobe = 0.0;
    qint32 format = 0;
    float rate = 0.0f;
};

Record decode(const char* bytes)
{
    Record record;
    record.words = qFromLittleEndian<qint32>(bytes);
    record.type = qFromLittleEndian<qint32>(bytes + 4);
    record.store = QString::fromLatin1(bytes + 8, 4);
    while (record.store.endsWith(QChar(0)) || record.store.endsWith(QLatin1Char(' ')))
        record.store.chop(1);
    record.channel = qFromLittleEndian<quint16>(bytes + 12);
    record.timestamp = qFromLittleEndian<double>(bytes + 16);
    record.offset = qFromLittleEndian<qint64>(bytes + 24);
    record.strobe = qFromLittleEndian<double>(bytes + 24);
    record.format = qFromLittleEndian<qint32>(bytes + 32);
    record.rate = qFromLittleEndian<float>(bytes + 36);
    return record;
}

/// Bytes of one sample in a data format, 0 for an unknown format.
int sampleBytes(qint32 format)
{
    static constexpr int sizes[] = {4, 4, 2, 1, 8, 8};
    return format >= 0 && format < 6 ? sizes[format] : 0;
}

double sampleAt(const char* data, qint32 format)
{
    switch (format) {
    case 0:
        return qFromLittleEndian<float>(data);
    case 1:
        return qFromLittleEndian<qint32>(data);
    case 2:
        return qFromLittleEndian<qint16>(data);
    case 3:
        return static_cast<qint8>(*data);
    case 4:
        return qFromLittleEndian<double>(data);
    default:
        return static_cast<double>(qFromLittleEndian<qint64>(data));
    }
}

struct StoreInfo
{
    bool stream = false;
    std::map<quint16, std::size_t> samples;
    /// Snippets of each channel of a snippet store.
    std::map<quint16, std::size_t> snippets;
    double rate = 0.0;
    std::size_t onsets = 0;
    std::size_t offsets = 0;
};

/// What sets the times of a stream record's samples (timestamp + i / rate for i below
/// the count), kept as bits so that equal means the same times to the last bit.
struct RecordTiming
{
    quint64 timestamp = 0;
    quint32 rate = 0;
    qint64 samples = 0;

    bool operator==(const RecordTiming&) const = default;
};

/// Streams whose first records carry the same timing, followed side by side through the
/// index: the first of them to reach its k-th record leaves that record's timing here,
/// and the others compare theirs with it. Only the last TrackDepth records are kept, so
/// memory does not grow with the recording; a stream lagging further behind, or whose
/// record differs, leaves the track.
struct TimingTrack
{
    static constexpr std::size_t TrackDepth = 1024;

    RecordTiming first;
    /// Timings of the records [reached - recent.size(), reached).
    std::deque<RecordTiming> recent;
    std::size_t reached = 0;
};

struct StreamTiming
{
    /// Index of the stream's track, -1 once it left it.
    int track = -1;
    std::size_t records = 0;
};

using StreamKey = std::pair<QString, quint16>;

struct Block
{
    QString tsq;
    QString tev;
    qint64 tevSize = 0;
    double start = 0.0;
    double end = 0.0;
    std::map<QString, StoreInfo> stores;
    std::vector<TimingTrack> tracks;
    std::map<StreamKey, StreamTiming> timings;

    /// Follows the record of a stream on its track.
    void follow(const StreamKey& key, const RecordTiming& timing)
    {
        StreamTiming& stream = timings[key];
        const std::size_t k = stream.records++;
        if (k == 0) {
            const auto same = std::find_if(tracks.begin(), tracks.end(),
                                           [&](const TimingTrack& track) { return track.first == timing; });
            stream.track = static_cast<int>(same - tracks.begin());
            if (same == tracks.end())
                tracks.push_back({timing, {timing}, 1});
            return;
        }
        if (stream.track < 0)
            return;
        TimingTrack& track = tracks[static_cast<std::size_t>(stream.track)];
        if (k == track.reached) {
            track.recent.push_back(timing);
            ++track.reached;
            if (track.recent.size() > TimingTrack::TrackDepth)
                track.recent.pop_front();
            return;
        }
        const std::size_t oldest = track.reached - track.recent.size();
        if (k < oldest || track.recent[k - oldest] != timing)
            stream.track = -1;
    }

    /// Equal for two streams only when every record of one carries the timing of the
    /// same record of the other, so that their samples fall at the same times; nothing
    /// for a stream that left its track, which keeps times of its own.
    std::optional<std::pair<int, std::size_t>> clockOf(const StreamKey& key) const
    {
        const StreamTiming& stream = timings.at(key);
        if (stream.track < 0)
            return std::nullopt;
        return std::make_pair(stream.track, stream.records);
    }
};

/// The data file read through a window of a few megabytes: the records of a block mostly
/// follow each other in the data file, so most of them are served without a system call.
struct DataWindow
{
    QFile& file;
    QByteArray bytes;
    qint64 start = 0;

    /// The `length` bytes at offset, or nullptr when the file ends before them.
    const char* at(qint64 offset, qint64 length)
    {
        if (offset < start || offset + length > start + bytes.size()) {
            if (!file.seek(offset))
                return nullptr;
            bytes = file.read(std::max(length, WindowBytes));
            start = offset;
            if (bytes.size() < length)
                return nullptr;
        }
        return bytes.constData() + (offset - start);
    }
};

/// Calls `each` with every record after the start mark, in file order.
bool forEachRecord(const QString& tsq, double& start, Feedback* feedback, QString& error,
                   const std::function<bool(const Record&)>& each)
{
    QFile file(tsq);
    if (!file.open(QIODevice::ReadOnly)) {
        error = Texts::unableToOpenMessage().arg(tsq);
        return false;
    }
    if (file.size() % RecordBytes != 0) {
        error = Texts::tdtTruncatedMessage().arg(tsq).arg(file.size());
        return false;
    }
    const qint64 total = file.size() / RecordBytes;
    ProgressTracker progress(feedback, static_cast<std::size_t>(total));
    QByteArray buffer;
    for (qint64 index = 0; index < total;) {
        if (progress.isCanceled()) {
            error = Texts::canceledMessage();
            return false;
        }
        buffer = file.read(RecordsPerRead * RecordBytes);
        if (buffer.isEmpty() || buffer.size() % RecordBytes != 0) {
            error = Texts::readFailedMessage().arg(tsq);
            return false;
        }
        for (qint64 at = 0; at < buffer.size(); at += RecordBytes, ++index) {
            const Record record = decode(buffer.constData() + at);
            if (index == 1) {
                if (record.type != Mark ||
                    qFromLittleEndian<qint32>(buffer.constData() + at + 8) != StartMark) {
                    error = Texts::tdtHeaderMessage().arg(tsq);
                    return false;
                }
                start = record.timestamp;
            } else if (index > 1 && !each(record))
                return false;
        }
        progress.update(static_cast<std::size_t>(index));
    }
    if (total < 2) {
        error = Texts::tdtHeaderMessage().arg(tsq);
        return false;
    }
    return true;
}

/// Reads the whole index once: the stores, their channels and counts, the block's times.
bool scan(const QString& path, Block& block, QString& error)
{
    if (!TdtBlockFile::locate(path, block.tsq, block.tev)) {
        error = Texts::tdtNoTankMessage().arg(path);
        return false;
    }
    block.tevSize = QFileInfo(block.tev).size();
    return forEachRecord(block.tsq, block.start, nullptr, error, [&](const Record& record) {
        block.end = std::max(block.end, record.timestamp - block.start);
        if (record.type == Stream) {
            const int bytes = sampleBytes(record.format);
            if (bytes == 0) {
                error = Texts::tdtFormatMessage().arg(record.store).arg(record.format);
                return false;
            }
            const qint64 dataBytes = static_cast<qint64>(record.words - HeaderWords) * 4;
            if (dataBytes < 0 || record.offset < 0 || record.offset + dataBytes > block.tevSize) {
                error = Texts::tdtDataMessage().arg(record.store, block.tev);
                return false;
            }
            StoreInfo& store = block.stores[record.store];
            store.stream = true;
            store.rate = record.rate;
            store.samples[record.channel] += static_cast<std::size_t>(dataBytes / bytes);
            block.follow({record.store, record.channel},
                         {std::bit_cast<quint64>(record.timestamp), std::bit_cast<quint32>(record.rate),
                          dataBytes / bytes});
        } else if (record.type == Snip) {
            ++block.stores[record.store].snippets[record.channel];
        } else if (record.type == StrobeOn) {
            ++block.stores[record.store].onsets;
        } else if (record.type == StrobeOff) {
            ++block.stores[record.store].offsets;
        }
        return true;
    });
}

/// The store's name when it has one channel, else "<store>-<channel>".
QString channelName(const QString& store, const std::map<quint16, std::size_t>& channels, quint16 channel)
{
    return channels.size() == 1 ? store : Texts::StoreChannelPattern.arg(store).arg(channel);
}

bool isEpochStore(const StoreInfo& info)
{
    return !info.stream && info.snippets.empty();
}

/// The stores chosen, or every store; false naming the first unknown one.
bool chosenStores(const Block& block, const QStringList& wanted, QStringList& stores, QString& error)
{
    QStringList all;
    for (const auto& [name, info] : block.stores)
        all << name;
    for (const QString& name : wanted) {
        if (!block.stores.contains(name)) {
            error = Texts::tdtUnknownStoreMessage().arg(name, all.join(QStringLiteral(", ")));
            return false;
        }
    }
    stores = wanted.isEmpty() ? all : wanted;
    return true;
}

} // namespace

bool TdtBlockFile::locate(const QString& path, QString& tsq, QString& tev)
{
    const QFileInfo info(path);
    if (info.isDir()) {
        const QDir dir(path);
        const QStringList found = dir.entryList({QStringLiteral("*.tsq")}, QDir::Files, QDir::Name);
        if (found.size() != 1)
            return false;
        tsq = dir.filePath(found.front());
    } else {
        tsq = info.path() + QLatin1Char('/') + info.completeBaseName() + QStringLiteral(".tsq");
    }
    tev = tsq.left(tsq.size() - 4) + QStringLiteral(".tev");
    return QFileInfo(tsq).isFile() && QFileInfo(tev).isFile();
}

RecordingSummary TdtBlockFile::describe(const RecordingConversionConfig& config)
{
    RecordingSummary summary;
    summary.format = Texts::TdtFormat;
    Block block;
    QStringList stores;
    if (!scan(config.sourcePath, block, summary.error) ||
        !chosenStores(block, config.stores, stores, summary.error))
        return summary;
    for (const auto& [name, info] : block.stores)
        summary.stores << name;
    for (const QString& name : stores) {
        const StoreInfo& info = block.stores.at(name);
        for (const auto& [channel, samples] : info.samples)
            summary.channels.push_back({channelName(name, info.samples, channel), samples, info.rate});
        for (const auto& [channel, count] : info.snippets)
            summary.events.push_back({channelName(name, info.snippets, channel), count});
        if (isEpochStore(info))
            summary.events.push_back({name, info.onsets});
    }
    summary.duration = block.end;
    return summary;
}

ConversionResult TdtBlockFile::convert(const RecordingConversionConfig& config, Feedback* feedback)
{
    Block block;
    QStringList stores;
    ConversionResult refused;
    refused.filepath = config.destination.filepath;
    if (!scan(config.sourcePath, block, refused.error) ||
        !chosenStores(block, config.stores, stores, refused.error))
        return refused;
    const QVariantMap parameters{{Texts::FormatKey, Texts::TdtFormat}, {Texts::StoresKey, stores}};
    return RecordingWriter::convert(config, parameters, [&](RecordingWriter& writer, QString& error) {
        // (store, channel) -> signal of the writer and whether it is given its own times;
        // epoch store -> its onsets and offsets.
        std::map<StreamKey, std::pair<int, bool>> streams;
        std::map<QString, std::pair<std::vector<double>, std::vector<double>>> epochs;
        // (snippet store, channel) -> onsets of its snippets.
        std::map<StreamKey, std::vector<double>> snippets;
        // The index says which streams are sampled at the same instants (the channels of a
        // store, stores recorded side by side): the first of each such clock writes the
        // times, the others share them and skip computing them.
        std::map<std::pair<int, std::size_t>, int> clocks;
        for (const QString& name : stores) {
            const StoreInfo& info = block.stores.at(name);
            for (const auto& [channel, samples] : info.samples) {
                const QString signal = channelName(name, info.samples, channel);
                const std::optional<std::pair<int, std::size_t>> clock = block.clockOf({name, channel});
                const auto owner = clock ? clocks.find(*clock) : clocks.end();
                const bool ownTimes = owner == clocks.end();
                const int index =
                    ownTimes ? writer.addSignal(signal, signal, QString(), error)
                             : writer.addSignalOnTimesOf(owner->second, signal, signal, QString(), error);
                if (index < 0)
                    return false;
                if (clock && ownTimes)
                    clocks.emplace(*clock, index);
                streams.emplace(std::make_pair(name, channel), std::make_pair(index, ownTimes));
            }
            for (const auto& [channel, count] : info.snippets)
                snippets[{name, channel}].reserve(count);
            if (isEpochStore(info))
                epochs[name];
        }
        QFile tev(block.tev);
        if (!tev.open(QIODevice::ReadOnly)) {
            error = Texts::unableToOpenMessage().arg(block.tev);
            return false;
        }
        DataWindow window{tev, {}, 0};
        std::vector<double> values;
        std::vector<double> times;
        double start = 0.0;
        const bool read = forEachRecord(block.tsq, start, feedback, error, [&](const Record& record) {
            if (record.type == Stream) {
                const auto it = streams.find({record.store, record.channel});
                if (it == streams.end())
                    return true;
                const int bytes = sampleBytes(record.format);
                const qint64 dataBytes = static_cast<qint64>(record.words - HeaderWords) * 4;
                const char* data = window.at(record.offset, dataBytes);
                if (!data) {
                    error = Texts::tdtDataMessage().arg(record.store, block.tev);
                    return false;
                }
                const std::size_t n = static_cast<std::size_t>(dataBytes / bytes);
                values.resize(n);
                for (std::size_t i = 0; i < n; ++i)
                    values[i] = sampleAt(data + i * bytes, record.format);
                const auto [index, ownTimes] = it->second;
                if (!ownTimes)
                    return writer.appendValues(index, values, error);
                times.resize(n);
                const double first = record.timestamp - start;
                for (std::size_t i = 0; i < n; ++i)
                    times[i] = first + static_cast<double>(i) / record.rate;
                return writer.append(index, values, times, error);
            }
            if (record.type == Snip) {
                const auto it = snippets.find({record.store, record.channel});
                if (it != snippets.end())
                    it->second.push_back(record.timestamp - start);
                return true;
            }
            const auto epoch = epochs.find(record.store);
            if (epoch != epochs.end() && record.type == StrobeOn)
                epoch->second.first.push_back(record.timestamp - start);
            else if (epoch != epochs.end() && record.type == StrobeOff)
                epoch->second.second.push_back(record.timestamp - start);
            return true;
        });
        if (!read)
            return false;
        for (auto& [name, edges] : epochs) {
            auto& [onsets, offsets] = edges;
            if (!offsets.empty())
                offsets.resize(onsets.size(), block.end);
            if (!writer.writeEvents(name, name, onsets, offsets, error))
                return false;
        }
        for (const auto& [key, onsets] : snippets) {
            const QString name = channelName(key.first, block.stores.at(key.first).snippets, key.second);
            if (!writer.writeEvents(name, name, onsets, {}, error))
                return false;
        }
        return true;
    });
}

} // namespace zarvi
