#pragma once

#include "datafile/HDF5Writer_V6.h"
#include "datafile/SignalDataset.h"

#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <mutex>
#include <vector>

namespace zarvi {

/// Where the numbered outputs of an operation run go, and what they record.
struct RunOutputSpec
{
    /// "DataProcessed" or "DataAnalyzed".
    QString category;
    /// The data kind level ("Signals", "Images").
    QString kind;
    /// Name of the numbered run groups ("FilteredSignals" gives FilteredSignals1, ...).
    QString outputName;
    /// Recorded on every run group and output dataset, with the sources.
    QVariantMap parameters;
    QStringList sources;
    /// False for operations whose user asked not to save the parameters.
    bool recordParameters = true;
};

/// Everything one run writes into a data file, as one unit: it holds the file's
/// FileAccessLock for the whole run, opens the file read-write (or creates it), hands
/// out numbered output groups "<category>/<device>/<kind>/<series>/<Output><K>" with
/// the parameters recorded on them, writes signals into them, and remembers every
/// object it created. commit() flushes and closes the file; rollback() deletes what
/// the run created (the whole file when the run created it), so that a failed or
/// cancelled run leaves the file as it was, empty parent groups included. The
/// destructor rolls back what was not committed. A process killed mid-run cannot roll
/// back; the file's RollbackJournal (see JournaledFileDriver) does it at the next open.
/// Used by every operation family and
/// by the conversions; lives on the thread of the run.
class RunTransaction
{
public:
    enum class FileMode
    {
        /// The file must exist (operations).
        Existing,
        /// The file is created when it does not exist (conversions).
        CreateIfMissing
    };

    RunTransaction() = default;
    virtual ~RunTransaction();
    RunTransaction(const RunTransaction&) = delete;
    RunTransaction& operator=(const RunTransaction&) = delete;

    /// Takes the file's lock (waiting for it), then opens or creates the file. On
    /// failure the lock is released and lastError() says why.
    bool open(const QString& filepath, FileMode mode);
    /// The library's reason for the last failed open() or commit().
    QString lastError() const { return m_error; }
    HDF5Writer_V6& file() { return m_file; }
    const QString& filepath() const { return m_path; }
    bool createdFile() const { return m_createdFile; }

    void setOutputs(RunOutputSpec outputs) { m_outputs = std::move(outputs); }
    /// The inputs recorded with the outputs, when they are known only once the file is open.
    void setSources(const QStringList& sources) { m_outputs.sources = sources; }
    /// False for a run whose user asked not to save the parameters with its outputs.
    void setRecordParameters(bool record) { m_outputs.recordParameters = record; }
    /// A new, unique sensor group for an output derived from `inputPath` (named
    /// `sensor`, or after the input's sensor) inside the run group of the input's
    /// series, which is created with the recorded parameters on first use. Empty with
    /// `error` set on failure.
    QString sensorGroup(const QString& inputPath, QString& error, const QString& sensor = QString());
    /// Writes a signal into a new sensor group with the parameters, its
    /// "SourceDatapath" and `extra`; returns the written values path, empty on failure.
    QString writeSignal(const QString& inputPath, const Signal& signal, QString& error,
                        const QString& sensor = QString(), const QVariantMap& extra = {});
    /// As writeSignal(), but the output's "Time" is the input's own dataset, linked under
    /// the output (see SignalDataset::writeWithTimeOf); `signal.time` is not used.
    QString writeSignalWithInputTime(const QString& inputPath, const Signal& signal, QString& error,
                                     const QString& sensor = QString(), const QVariantMap& extra = {});
    /// Attributes every output dataset of the run carries.
    QVariantMap datasetAttributes(const QString& inputPath) const;

    /// Creates the group at path with its missing parents and opens it; refuses a path
    /// that exists (`existsMessage` with %1 the path, %2 the file). The caller closes it.
    hid_t createGroup(const QString& path, const QString& existsMessage, QString& error);
    /// Remembers an object created inside a group that existed before, for rollback.
    void track(const QString& path);

    /// Closes the file and keeps what was written; with `markEdited` the root also gets
    /// "EditingSoftwareName", "EditingSoftwareVersion" and "Edited". On failure it rolls
    /// back and returns false with lastError() saying why.
    bool commit(bool markEdited = false);
    /// Deletes what this run created, or the whole file when the run created it.
    void rollback();

private:
    /// Records the highest level of path that does not exist yet, unless path lies inside
    /// a level the run made.
    void trackMissingLevels(const QString& path);
    void release();

    HDF5Writer_V6 m_file;
    QString m_path;
    QString m_error;
    std::unique_lock<std::mutex> m_lock;
    bool m_createdFile = false;
    bool m_finished = true;
    std::vector<QString> m_created;
    RunOutputSpec m_outputs;
    QMap<QString, QString> m_runGroups; ///< series group -> run group
};

} // namespace zarvi
