#pragma once

#include <QByteArray>
#include <QString>

#include <vector>

namespace zarvi {

/// Reads every file of a ZIP archive into memory, for the archives other programs save
/// their ROI sets and spreadsheet workbooks (.xlsx) in. Only what those archives use is
/// read: entries
/// stored or deflated (inflated with zlib), without encryption or ZIP64, each checked
/// against its CRC-32. We read the central directory ourselves because zlib, already a
/// dependency of Qt and HDF5, is all that takes; no archive library is needed. Plain
/// functions of the data given; any thread.
class ZipArchiveReader
{
public:
    struct Entry
    {
        /// The path inside the archive, folders included.
        QString name;
        QByteArray data;
    };

    /// The files of the archive `bytes` in central-directory order (folders left out);
    /// false with `error` saying what is wrong, in rich text, for anything else.
    static bool read(const QByteArray& bytes, std::vector<Entry>& entries, QString& error);
};

} // namespace zarvi
