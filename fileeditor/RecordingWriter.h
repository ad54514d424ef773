#pragma once

#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <functional>
#include <span>
#include <vector>

#include <hdf5.h>

#include "fileeditor/ConversionTarget.h"
#include "fileeditor/RecordingSummary.h"

namespace zarvi {

/// Writes the streams of one acquired recording into an open ConversionTarget while the
/// source is still being read: each signal is a sensor group
/// "DataConverted/<device>/Signals/Series<N>/<name>" whose "Signal" and "Time" grow by
/// blocks, so memory stays constant in the recording's length. Signals sampled at the same
/// instants share one "Time": the first writes it, the others get a second name for it (a
/// hard link) and never compute or hold their times. Each digital line or epoch
/// store is an event array "DataConverted/<device>/Events/Series<M>/<name>" of [events, 1]
/// onsets or [events, 2] onsets and offsets, in seconds. Every group and event array
/// records "SourceFile", "SourceFilepath" and the conversion's parameters. What it creates
/// is tracked by the target, so a rollback removes it. Lives on the thread of the job.
class RecordingWriter
{
public:
    /// Checks the destination, opens the target, lets `body` write through a writer, then
    /// commits, or rolls back everything when body fails (a cancel is body failing with
    /// the cancel message). The one frame of every recording conversion.
    static ConversionResult convert(const RecordingConversionConfig& config, const QVariantMap& parameters,
                                    const std::function<bool(RecordingWriter&, QString&)>& body);

    RecordingWriter(ConversionTarget& target, const ConversionDestination& destination,
                    const QString& sourcePath, const QVariantMap& parameters);
    ~RecordingWriter();
    RecordingWriter(const RecordingWriter&) = delete;
    RecordingWriter& operator=(const RecordingWriter&) = delete;

    /// Records one more parameter on every group and event array created after this call.
    void addParameter(const QString& key, const QVariant& value) { m_parameters.insert(key, value); }
    /// Creates the sensor group of a new signal; returns its index for append(), or -1
    /// with error set. unit goes onto "Signal" as "Unit" when not empty.
    int addSignal(const QString& name, const QString& username, const QString& unit, QString& error);
    /// As addSignal(), for a signal the source samples at exactly the instants of signal
    /// `owner` (decided from how the source is laid out): its "Time" is the owner's dataset
    /// under a second name. Its samples go in through appendValues(); by finish() it must
    /// hold as many as the owner.
    int addSignalOnTimesOf(int owner, const QString& name, const QString& username, const QString& unit,
                           QString& error);
    /// Adds samples with their times in seconds (equal lengths) to signal `index`, one
    /// made by addSignal().
    bool append(int index, std::span<const double> values, std::span<const double> times, QString& error);
    /// Adds samples to signal `index`, one made by addSignalOnTimesOf(): their times are
    /// those its owner is given.
    bool appendValues(int index, std::span<const double> values, QString& error);
    /// Writes an event array; offsets is empty for onsets only, or as long as onsets.
    bool writeEvents(const QString& name, const QString& username, std::span<const double> onsets,
                     std::span<const double> offsets, QString& error);
    /// Writes what is still buffered and closes every dataset; fails when a signal holds
    /// another number of samples than the times it shares.
    bool finish(QString& error);

    /// Values datasets and event arrays written, full paths.
    const QStringList& datapaths() const { return m_datapaths; }

private:
    struct Stream
    {
        QString path;
        hid_t values = H5I_INVALID_HID;
        /// Invalid for a signal that shares its owner's "Time".
        hid_t time = H5I_INVALID_HID;
        /// The signal whose "Time" this one shares, or -1 when it writes its own.
        int owner = -1;
        /// Samples taken in so far, buffered or written.
        std::size_t length = 0;
        std::vector<double> pendingValues;
        std::vector<double> pendingTimes;
    };

    int addStream(const QString& name, const QString& username, const QString& unit, int owner,
                  QString& error);
    /// times is null for a signal that shares its owner's "Time".
    bool add(Stream& stream, const double* values, const double* times, std::size_t n, QString& error);
    bool write(Stream& stream, const double* values, const double* times, std::size_t n, QString& error);
    bool flush(Stream& stream, QString& error);
    bool recordSource(hid_t location, const QString& path, QString& error);
    void closeAll();

    ConversionTarget& m_target;
    ConversionDestination m_destination;
    QString m_sourcePath;
    QVariantMap m_parameters;
    int m_signalSeries = 0;
    int m_eventSeries = 0;
    std::vector<Stream> m_streams;
    QStringList m_datapaths;
};

} // namespace zarvi
