#pragma once

#include <QString>
#include <QStringList>

#include <mutex>
#include <vector>

#include <hdf5.h>

#include "datafile/HDF5Writer_V6.h"

namespace zarvi {

/// Where a conversion writes: "DataConverted/<device>/<kind>/Series<N>/<sensor>" in a data file.
struct ConversionDestination
{
    /// The data file; created when it does not exist.
    QString filepath;
    QString device;
    /// Sensor group of an image stack (TIFF stacks, videos converted to a stack).
    QString sensor;
    /// Series number from 1; 0 takes the next free number of the device and data kind.
    int series = 0;
};

/// What a conversion reports to the dialog or the command line.
struct ConversionResult
{
    /// The data file written into.
    QString filepath;
    /// Groups and datasets written, full paths in the file.
    QStringList datapaths;
    /// What the user should know about a successful conversion (renamed columns, copies).
    QStringList notes;
    /// Title for the message of a refusal; empty for the usual error title.
    QString title;
    QString error;
    /// The source was refused by a version check: show error as a warning.
    bool refused = false;
    bool canceled = false;

    bool ok() const { return error.isEmpty(); }
};

/// The data file a conversion writes into, for the length of one conversion. It holds
/// the file's FileAccessLock, opens the file read-write or creates it, hands out group
/// paths and series numbers, and remembers everything it created: commit() stamps the
/// file as edited and closes it, rollback() deletes what was created (or removes a file
/// it created), so that a failed or cancelled conversion leaves nothing half written.
/// The destructor rolls back what was not committed. Lives on the thread of the job.
class ConversionTarget
{
public:
    ConversionTarget() = default;
    ~ConversionTarget();
    ConversionTarget(const ConversionTarget&) = delete;
    ConversionTarget& operator=(const ConversionTarget&) = delete;

    /// Takes the file's lock, then opens it or, when it does not exist, creates it.
    /// An existing file must be a version-6 data file (not an experiment file); with
    /// mustBeNew it must not exist at all.
    bool open(const QString& filepath, bool mustBeNew, QString& error);
    HDF5Writer_V6& file() { return m_file; }

    /// The series number to write: the one named (above 0) or one above the highest
    /// "Series<N>" under DataConverted/<device>/<kind>.
    int seriesNumber(const QString& device, const QString& kind, int named);
    /// "DataConverted/<device>/<kind>/Series<N>/<name>".
    static QString dataPath(const QString& device, const QString& kind, int series, const QString& name);
    /// A device or sensor name must be non-empty, hold no slash or backslash, and not be
    /// structural (a reserved name, or containing "Series").
    static bool isUsableName(const QString& name);

    /// Creates the group at path with its missing parents and opens it; refuses a path
    /// that exists. The caller closes the group.
    hid_t createGroup(const QString& path, QString& error);
    /// Opens the group at path, creating it and its missing parents when absent.
    hid_t openOrCreateGroup(const QString& path, QString& error);
    /// Remembers an object created inside a group that existed before, for rollback.
    void track(const QString& path) { m_created.push_back(path); }
    /// Creates the sensor group at groupPath (see createGroup) holding an empty
    /// "ImageStack" of height x width that grows by frames: Format 28, the given
    /// BitCount, "Username". Returns the stack and sets group; the caller closes both.
    hid_t createImageStack(const QString& groupPath, int height, int width, int bitCount,
                           const QString& username, hid_t& group, QString& error);
    /// A 1-D float64 dataset of times in seconds ("Unit" = "s") in group.
    bool writeTimes(hid_t group, const QString& name, const std::vector<double>& times, QString& error);

    /// Writes "EditingSoftwareName", "EditingSoftwareVersion" and "Edited" on the root,
    /// flushes and closes the file. On failure, rolls back and says why.
    bool commit(QString& error);
    /// Deletes what this conversion created, or the whole file when it was created here.
    void rollback();

private:
    /// Records the highest level of path that does not exist yet.
    void trackMissingLevels(const QString& path);
    void release();

    HDF5Writer_V6 m_file;
    QString m_path;
    std::unique_lock<std::mutex> m_lock;
    bool m_createdFile = false;
    bool m_finished = true;
    std::vector<QString> m_created;
};

} // namespace zarvi
