#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>
#include <QtEndian>

#include <cstdint>
#include <cstring>
#include <vector>

namespace zarvi::test {

/// Writes bytes to path, replacing the file.
inline bool writeBytes(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(bytes) == bytes.size();
}

/// A .ppd file as pyPhotometry describes it: a little-endian 16-bit header length, the
/// JSON header, then one little-endian 16-bit word per channel and sample (channels
/// interleaved): reading << 1 | digital bit. readings[c][k] and bits[c][k] are channel c's
/// sample k; bits may have fewer channels than readings.
inline QByteArray ppdBytes(double sampleRate, const QString& mode,
                           const std::vector<double>& voltsPerDivision,
                           const std::vector<std::vector<int>>& readings,
                           const std::vector<std::vector<int>>& bits)
{
    QJsonArray scale;
    for (const double v : voltsPerDivision)
        scale.append(v);
    const QJsonObject header{{"subject_ID", "m1"},
                             {"mode", mode},
                             {"sampling_rate", sampleRate},
                             {"volts_per_division", scale},
                             {"n_analog_signals", static_cast<int>(readings.size())},
                             {"n_digital_signals", 2}};
    const QByteArray json = QJsonDocument(header).toJson(QJsonDocument::Compact);
    QByteArray bytes(2, '\0');
    qToLittleEndian<quint16>(static_cast<quint16>(json.size()), bytes.data());
    bytes += json;
    for (std::size_t k = 0; k < readings.front().size(); ++k) {
        for (std::size_t c = 0; c < readings.size(); ++c) {
            const int bit = c < bits.size() ? bits[c][k] : 0;
            char word[2];
            qToLittleEndian<quint16>(static_cast<quint16>(readings[c][k] << 1 | bit), word);
            bytes.append(word, 2);
        }
    }
    return bytes;
}

/// One record of a TDT event index, 40 bytes little-endian.
struct TsqRecord
{
    std::int32_t words = 10;
    std::int32_t type = 0;
    char store[4] = {0, 0, 0, 0};
    std::uint16_t channel = 0;
    std::uint16_t sortCode = 0;
    double timestamp = 0.0;
    /// Offset into the .tev for stream records, strobe value for epochs (as its bits).
    std::int64_t offsetOrStrobe = 0;
    std::int32_t format = 0;
    float rate = 0.0f;

    QByteArray bytes() const
    {
        QByteArray out(40, '\0');
        char* at = out.data();
        qToLittleEndian(words, at);
        qToLittleEndian(type, at + 4);
        std::memcpy(at + 8, store, 4);
        qToLittleEndian(channel, at + 12);
        qToLittleEndian(sortCode, at + 14);
        qToLittleEndian(timestamp, at + 16);
        qToLittleEndian(offsetOrStrobe, at + 24);
        qToLittleEndian(format, at + 32);
        qToLittleEndian(rate, at + 36);
        return out;
    }
};

inline TsqRecord tsqRecord(std::int32_t type, const char* store, double timestamp)
{
    TsqRecord record;
    record.type = type;
    std::memcpy(record.store, store, std::min<std::size_t>(4, std::strlen(store)));
    record.timestamp = timestamp;
    return record;
}

/// A TDT block being written: the index and the data file side by side.
struct TdtBlockBuilder
{
    static constexpr std::int32_t StrobeOn = 0x101;
    static constexpr std::int32_t StrobeOff = 0x102;
    static constexpr std::int32_t Stream = 0x8101;
    static constexpr std::int32_t Snip = 0x8201;
    static constexpr std::int32_t Mark = 0x8801;

    QByteArray tsq;
    QByteArray tev;

    /// The empty first record and the start mark at `start` (seconds since the epoch).
    explicit TdtBlockBuilder(double start)
    {
        tsq += TsqRecord().bytes();
        TsqRecord mark = tsqRecord(Mark, "", start);
        mark.store[0] = 1;
        tsq += mark.bytes();
    }
    /// One stream record of int16 samples (format 2), channel from 1.
    void streamInt16(const char* store, std::uint16_t channel, double timestamp, float rate,
                     const std::vector<std::int16_t>& samples)
    {
        TsqRecord record = tsqRecord(Stream, store, timestamp);
        record.channel = channel;
        record.format = 2;
        record.rate = rate;
        record.offsetOrStrobe = tev.size();
        record.words = 10 + static_cast<std::int32_t>(samples.size() / 2);
        for (const std::int16_t s : samples) {
            char b[2];
            qToLittleEndian(s, b);
            tev.append(b, 2);
        }
        tsq += record.bytes();
    }
    /// One stream record of float32 samples (format 0).
    void streamFloat(const char* store, std::uint16_t channel, double timestamp, float rate,
                     const std::vector<float>& samples)
    {
        TsqRecord record = tsqRecord(Stream, store, timestamp);
        record.channel = channel;
        record.format = 0;
        record.rate = rate;
        record.offsetOrStrobe = tev.size();
        record.words = 10 + static_cast<std::int32_t>(samples.size());
        for (const float s : samples) {
            char b[4];
            qToLittleEndian(s, b);
            tev.append(b, 4);
        }
        tsq += record.bytes();
    }
    /// One snippet: a short float32 waveform of channel (from 1) with its sort code,
    /// stored like a stream record under the snippet type.
    void snippet(const char* store, std::uint16_t channel, std::uint16_t sortCode, double timestamp,
                 float rate, const std::vector<float>& waveform)
    {
        streamFloat(store, channel, timestamp, rate, waveform);
        char* record = tsq.data() + tsq.size() - 40;
        qToLittleEndian<std::int32_t>(Snip, record + 4);
        qToLittleEndian<std::uint16_t>(sortCode, record + 14);
    }
    void epoch(const char* store, std::int32_t type, double timestamp, double value)
    {
        TsqRecord record = tsqRecord(type, store, timestamp);
        std::memcpy(&record.offsetOrStrobe, &value, 8);
        tsq += record.bytes();
    }
    void stop(double timestamp)
    {
        TsqRecord mark = tsqRecord(Mark, "", timestamp);
        mark.store[0] = 2;
        tsq += mark.bytes();
    }
    /// Writes "<folder>/<name>.tsq" and ".tev", creating the folder.
    bool write(const QString& folder, const QString& name) const
    {
        return QDir().mkpath(folder) && writeBytes(folder + "/" + name + ".tsq", tsq) &&
               writeBytes(folder + "/" + name + ".tev", tev);
    }
};

} // namespace zarvi::test
