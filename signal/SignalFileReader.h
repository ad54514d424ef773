#pragma once

#include "datafile/SignalDataset.h"

#include <QString>
#include <QStringList>

#include <cstddef>

namespace zarvi {

/// Reads loaded of a data file for views and their previews, which must never wait
/// for a file that a run holds: every call only tries the file's lock and gives up at
/// once when the file is busy, opens the file read-only and closes it before
/// returning. Stateless; callable from any thread.
class SignalFileReader
{
public:
    /// Reads values, time and unit of the signal at `valuesPath`. False with `error`
    /// set when the file is busy or unreadable or the signal is missing.
    static bool read(const QString& filepath, const QString& valuesPath, Signal& signal, QString& error);

    /// Reads several loaded within one open of the file; false at the first failure.
    static bool read(const QString& filepath, const QStringList& valuesPaths, std::vector<Signal>& loaded,
                     QString& error);

    /// The sample rate of the signal at `valuesPath` (the shared rule, from the ends of
    /// its time vector, without reading the rest); 0 when busy, unreadable or missing.
    static double sampleRate(const QString& filepath, const QString& valuesPath);

    /// The number of samples of the signal at `valuesPath` (the length of its time
    /// vector); 0 when busy, unreadable or missing.
    static std::size_t sampleCount(const QString& filepath, const QString& valuesPath);

    /// The sensors of the recordings the signals at `valuesPaths` belong to: the groups
    /// beside their sensor groups that hold a signal, in file order, the given ones first;
    /// only the given ones when the file is busy or unreadable.
    static QStringList recordingSensors(const QString& filepath, const QStringList& valuesPaths);

    /// Those of `paths` that are datasets of the file; empty when the file is busy or
    /// unreadable.
    static QStringList existing(const QString& filepath, const QStringList& paths);
};

} // namespace zarvi
