#pragma once

#include <QString>
#include <QStringList>

#include "datafile/Feedback.h"
#include "fileeditor/ConversionTarget.h"
#include "fileeditor/RecordingSummary.h"

namespace zarvi {

/// Reads a TDT block: the folder holding the event index (.tsq) and the event data (.tev).
/// The index is a sequence of 40-byte little-endian records (size in 4-byte words with
/// the record, event type, store code of four characters, channel, sort code, timestamp
/// in seconds, data offset in the .tev or strobe value, data format, sample rate); the
/// second record marks the block's start. Continuous (stream) stores become one signal
/// per channel, named after the store ("<store>-<channel>" when it has several), each
/// record's samples taken at its timestamp + i / rate; epoch stores become event arrays
/// named after the store, [events, 2] with the offsets when the store records them
/// (a last epoch still open ends at the block's end), else [events, 1]; snippet stores
/// (short waveforms cut around events, spikes most often) become one event array of
/// onsets per channel, named like the signals, their waveforms and sort codes left out.
/// Times start at 0 at the block's start mark. Streams the files record by record. Runs
/// on the job's worker thread.
class TdtBlockFile
{
public:
    /// The .tsq and .tev of a block given by its folder or either file; false when missing.
    static bool locate(const QString& path, QString& tsq, QString& tev);
    static RecordingSummary describe(const RecordingConversionConfig& config);
    static ConversionResult convert(const RecordingConversionConfig& config, Feedback* feedback = nullptr);
};

} // namespace zarvi
