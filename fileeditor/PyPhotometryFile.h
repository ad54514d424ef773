#pragma once

#include <QByteArray>
#include <QString>

#include <vector>

#include "datafile/Feedback.h"
#include "fileeditor/ConversionTarget.h"
#include "fileeditor/RecordingSummary.h"

namespace zarvi {

/// The header of a pyPhotometry .ppd file.
struct PpdHeader
{
    double sampleRate = 0.0;
    QString mode;
    int analogCount = 2;
    int digitalCount = 2;
    std::vector<double> voltsPerDivision;
    /// Byte offset of the first sample word.
    qint64 dataOffset = 0;
    /// Samples of each analog channel.
    qint64 samplesPerChannel = 0;

    /// In time-division modes the channels are read one after another within each
    /// sample period rather than together. Taken from the mode once, as the reader.
    bool timeDivision = false;

    /// Time in seconds of sample k of analog channel `channel`.
    double sampleTime(qint64 k, int channel) const
    {
        if (!timeDivision)
            return static_cast<double>(k) / sampleRate;
        return static_cast<double>(k * analogCount + channel) / (sampleRate * analogCount);
    }
};

/// Reads a pyPhotometry .ppd file: a little-endian 16-bit header length, a JSON header of
/// that length, then little-endian 16-bit words, one per channel and sample, the channels
/// interleaved. A word's upper 15 bits are the analog reading (volts = reading x the
/// channel's volts per division); its lowest bit is a digital input: digital line 1 rides
/// on the words of analog channel 1, line 2 on those of channel 2, so each edge falls on a
/// sample time of its channel. Analog channels become signals "AIN%1" in volts, digital
/// lines event arrays "DIO%1". Streams the file in blocks. Runs on the job's worker thread.
class PyPhotometryFile
{
public:
    /// True when head (the file's first bytes) starts with a header length and a JSON
    /// object naming a sampling rate.
    static bool looksLike(const QByteArray& head);
    static bool readHeader(const QString& path, PpdHeader& header, QString& error);
    static RecordingSummary describe(const QString& path);
    static ConversionResult convert(const RecordingConversionConfig& config, Feedback* feedback = nullptr);
};

} // namespace zarvi
