#pragma once

#include <QString>
#include <QStringList>

#include <vector>

#include <hdf5.h>

#include "framework/RunTransaction.h"

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

/// The data file a conversion writes into, for the length of one conversion: the run
/// transaction (lock, open or create, rollback of everything created, commit) with the
/// conversions' own rules on top: an existing file must be a version-6 data file, the
/// series numbers and group paths under "DataConverted", and the image stack and time
/// datasets conversions write. commit() also stamps the file as edited. Lives on the
/// thread of the job.
class ConversionTarget : public RunTransaction
{
public:
    /// Takes the file's lock, then opens it or, when it does not exist, creates it.
    /// An existing file must be a version-6 data file (not an experiment file); with
    /// mustBeNew it must not exist at all.
    bool open(const QString& filepath, bool mustBeNew, QString& error);

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
    /// A 1-D float64 dataset of times in seconds ("Unit" = "s") in group.
    bool writeTimes(hid_t group, const QString& name, const std::vector<double>& times, QString& error);

    /// Stamps the file as edited, flushes and closes it. On failure, rolls back and says why.
    bool commit(QString& error);
};

} // namespace zarvi
