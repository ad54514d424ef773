#include "fileeditor/PyPhotometryFile.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtEndian>

#include <functional>
#include <span>

#include "definitions/FileDefinitions.h"
#include "definitions/FileEditorOperationDefinitions.h"
#include "fileeditor/DigitalEdges.h"
#include "fileeditor/RecordingWriter.h"

namespace zarvi {

namespace {

using FD = FileDefinitions;
using Texts = FileEditorOperationDefinitions;

/// Sample periods read at once.
constexpr qint64 BlockSamples = 65536;

/// Calls `block` with the words of consecutive sample periods (analogCount words each)
/// and the index of the block's first sample, until the data ends, block fails or the
/// user cancels.
bool forEachBlock(const QString& path, const PpdHeader& header, Feedback* feedback, QString& error,
                  const std::function<bool(std::span<const quint16>, qint64)>& block)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || !file.seek(header.dataOffset)) {
        error = Texts::unableToOpenMessage().arg(path);
        return false;
    }
    ProgressTracker progress(feedback, static_cast<std::size_t>(header.samplesPerChannel));
    std::vector<quint16> words(static_cast<std::size_t>(BlockSamples * header.analogCount));
    for (qint64 first = 0; first < header.samplesPerChannel; first += BlockSamples) {
        if (progress.isCanceled()) {
            error = Texts::canceledMessage();
            return false;
        }
        const qint64 samples = std::min(BlockSamples, header.samplesPerChannel - first);
        const qint64 bytes = samples * header.analogCount * 2;
        if (file.read(reinterpret_cast<char*>(words.data()), bytes) != bytes) {
            error = Texts::readFailedMessage().arg(path);
            return false;
        }
        const std::span<quint16> read(words.data(), static_cast<std::size_t>(samples * header.analogCount));
        for (quint16& word : read)
            word = qFromLittleEndian(word);
        if (!block(read, first))
            return false;
        progress.update(static_cast<std::size_t>(first + samples));
    }
    return true;
}

int digitalLines(const PpdHeader& header)
{
    return std::min(header.digitalCount, header.analogCount);
}

} // namespace

bool PyPhotometryFile::looksLike(const QByteArray& head)
{
    return head.size() > 3 && head.at(2) == '{' && head.contains("\"sampling_rate\"");
}

bool PyPhotometryFile::readHeader(const QString& path, PpdHeader& header, QString& error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        error = QFileInfo::exists(path) ? Texts::unableToOpenMessage().arg(path)
                                        : Texts::missingFileMessage().arg(path);
        return false;
    }
    const QByteArray lengthBytes = file.read(2);
    if (lengthBytes.size() < 2) {
        error =
            Texts::ppdHeaderMessage().arg(path, QStringLiteral("the file is shorter than the header length"));
        return false;
    }
    const qint64 length = qFromLittleEndian<quint16>(lengthBytes.constData());
    if (2 + length > file.size()) {
        error = Texts::ppdHeaderLengthMessage().arg(path).arg(length).arg(file.size() - 2);
        return false;
    }
    QJsonParseError parse;
    const QJsonDocument document = QJsonDocument::fromJson(file.read(length), &parse);
    const QJsonObject json = document.object();
    if (parse.error != QJsonParseError::NoError || !document.isObject()) {
        error = Texts::ppdHeaderMessage().arg(path, parse.errorString());
        return false;
    }
    header.sampleRate = json.value(QStringLiteral("sampling_rate")).toDouble();
    header.mode = json.value(QStringLiteral("mode")).toString();
    header.timeDivision = header.mode.contains(QStringLiteral("time div"), Qt::CaseInsensitive);
    header.analogCount = json.value(QStringLiteral("n_analog_signals")).toInt(2);
    header.digitalCount = json.value(QStringLiteral("n_digital_signals")).toInt(2);
    header.voltsPerDivision.clear();
    for (const QJsonValue value : json.value(QStringLiteral("volts_per_division")).toArray())
        header.voltsPerDivision.push_back(value.toDouble());
    if (!(header.sampleRate > 0.0) || header.analogCount < 1 || header.digitalCount < 0 ||
        header.voltsPerDivision.empty()) {
        error = Texts::ppdHeaderMessage().arg(
            path,
            QStringLiteral("it needs sampling_rate above 0, volts_per_division and at least one channel"));
        return false;
    }
    // Three-channel modes reuse the first channel's scale for the third.
    while (header.voltsPerDivision.size() < static_cast<std::size_t>(header.analogCount))
        header.voltsPerDivision.push_back(header.voltsPerDivision.front());
    header.dataOffset = 2 + length;
    const qint64 dataBytes = file.size() - header.dataOffset;
    const qint64 periodBytes = 2 * header.analogCount;
    if (dataBytes % periodBytes != 0) {
        error = Texts::ppdTruncatedMessage().arg(path).arg(dataBytes).arg(header.analogCount);
        return false;
    }
    header.samplesPerChannel = dataBytes / periodBytes;
    return true;
}

RecordingSummary PyPhotometryFile::describe(const QString& path)
{
    RecordingSummary summary;
    summary.format = Texts::PyPhotometryFormat;
    PpdHeader header;
    if (!readHeader(path, header, summary.error))
        return summary;
    for (int c = 0; c < header.analogCount; ++c)
        summary.channels.push_back({FD::AINPattern.arg(c + 1),
                                    static_cast<std::size_t>(header.samplesPerChannel), header.sampleRate});
    std::vector<DigitalEdges> edges(static_cast<std::size_t>(digitalLines(header)));
    forEachBlock(path, header, nullptr, summary.error, [&](std::span<const quint16> words, qint64 first) {
        const std::size_t n = words.size() / header.analogCount;
        for (std::size_t k = 0; k < n; ++k) {
            for (std::size_t d = 0; d < edges.size(); ++d)
                edges[d].add(words[k * header.analogCount + d] & 1u, static_cast<double>(first + k));
        }
        return true;
    });
    for (std::size_t d = 0; d < edges.size(); ++d) {
        edges[d].finish();
        summary.events.push_back({FD::DIOPattern.arg(d + 1), edges[d].onsets().size()});
    }
    summary.duration = static_cast<double>(header.samplesPerChannel) / header.sampleRate;
    return summary;
}

ConversionResult PyPhotometryFile::convert(const RecordingConversionConfig& config, Feedback* feedback)
{
    PpdHeader header;
    QString error;
    if (!readHeader(config.sourcePath, header, error)) {
        ConversionResult result;
        result.filepath = config.destination.filepath;
        result.error = error;
        return result;
    }
    QVariantList scale;
    for (int c = 0; c < header.analogCount; ++c)
        scale << header.voltsPerDivision[static_cast<std::size_t>(c)];
    const QVariantMap parameters{{Texts::FormatKey, Texts::PyPhotometryFormat},
                                 {Texts::AcquisitionModeKey, header.mode},
                                 {FD::SampleRate, header.sampleRate},
                                 {Texts::VoltsPerDivisionKey, scale}};
    return RecordingWriter::convert(config, parameters, [&](RecordingWriter& writer, QString& error) {
        const int channels = header.analogCount;
        // Outside time division every channel is read at the same instants: the first
        // channel's times serve them all, computed and written once.
        const bool oneClock = !header.timeDivision;
        for (int c = 0; c < channels; ++c) {
            const QString name = FD::AINPattern.arg(c + 1);
            const int index = c > 0 && oneClock
                                  ? writer.addSignalOnTimesOf(0, name, name, Texts::VoltsUnit, error)
                                  : writer.addSignal(name, name, Texts::VoltsUnit, error);
            if (index != c)
                return false;
        }
        std::vector<DigitalEdges> edges(static_cast<std::size_t>(digitalLines(header)));
        std::vector<double> values;
        std::vector<double> times;
        const bool read = forEachBlock(
            config.sourcePath, header, feedback, error, [&](std::span<const quint16> words, qint64 first) {
                const std::size_t n = words.size() / channels;
                for (int c = 0; c < channels; ++c) {
                    const bool ownTimes = c == 0 || !oneClock;
                    values.resize(n);
                    const double volts = header.voltsPerDivision[static_cast<std::size_t>(c)];
                    for (std::size_t k = 0; k < n; ++k)
                        values[k] = (words[k * channels + c] >> 1) * volts;
                    // On one clock, times still holds the first channel's, which are this one's.
                    if (ownTimes) {
                        times.resize(n);
                        for (std::size_t k = 0; k < n; ++k)
                            times[k] = header.sampleTime(first + static_cast<qint64>(k), c);
                    }
                    if (static_cast<std::size_t>(c) < edges.size()) {
                        for (std::size_t k = 0; k < n; ++k)
                            edges[c].add(words[k * channels + c] & 1u, times[k]);
                    }
                    if (ownTimes ? !writer.append(c, values, times, error)
                                 : !writer.appendValues(c, values, error))
                        return false;
                }
                return true;
            });
        if (!read)
            return false;
        for (std::size_t d = 0; d < edges.size(); ++d) {
            edges[d].finish();
            const QString name = FD::DIOPattern.arg(d + 1);
            if (!writer.writeEvents(name, name, edges[d].onsets(), edges[d].offsets(), error))
                return false;
        }
        return true;
    });
}

} // namespace zarvi
