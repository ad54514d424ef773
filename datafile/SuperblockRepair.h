#pragma once

#include <QString>
#include <QStringList>

namespace zarvi {

/// Recognises and repairs the damage a write killed half-way leaves in an HDF5 file:
/// the end-of-allocation address in the superblock stops short of the end of the
/// file (or lies past it), so the library refuses objects written after it, and the
/// interrupted run's own objects may be half on disk. The repair works on a copy only:
/// it copies the file, sets the address in the copy's superblock to the copy's size
/// (with a new checksum for superblock versions 2 and 3); when objects still cannot be
/// read, the copy is rebuilt from the readable ones (ReadableCopy) and the others are
/// named. The copy is kept only when every object in it can be reached. Plain
/// functions on files; any thread.
class SuperblockRepair
{
public:
    /// True when path is an HDF5 file whose recorded end of allocation differs from
    /// its size. Meaningful for a file the library refused: one that opens may differ
    /// harmlessly (a killed run leaves bytes past the recorded end).
    static bool looksInterrupted(const QString& path);
    /// True when the file opens and every object in it can be reached.
    static bool readsWhole(const QString& path);
    /// Writes the repaired copy; `leftOut` receives the paths of the objects that could
    /// not be read and are not in it. False with `error` set (and no copy left) when the
    /// file reads whole already, the copy cannot be written or still does not open.
    static bool repairInto(const QString& path, const QString& copyPath, QStringList& leftOut,
                           QString& error);
    /// The message for a file the library refused that looks damaged this way.
    static QString damagedMessage(const QString& path);
    /// Bob Jenkins' lookup3 hash (hashlittle) that checksums superblocks 2 and 3.
    static quint32 lookup3(const char* data, qsizetype length, quint32 initial = 0);
};

} // namespace zarvi
