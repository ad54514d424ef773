#include "fileeditor/SourceDetector.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "fileeditor/NeurophotometricsFile.h"
#include "fileeditor/PyPhotometryFile.h"

#include <sys/stat.h>

namespace zarvi {

namespace {

/// Bytes looked at; enough for a header line or a .ppd header's beginning.
constexpr qint64 HeadLength = 4096;

bool isTiff(const QByteArray& head)
{
    return head.startsWith(QByteArrayLiteral("II*\0")) || head.startsWith(QByteArrayLiteral("MM\0*")) ||
           head.startsWith(QByteArrayLiteral("II+\0")) || head.startsWith(QByteArrayLiteral("MM\0+"));
}

bool isVideo(const QByteArray& head, const QString& suffix)
{
    const bool avi = head.startsWith("RIFF") && head.mid(8, 4) == "AVI ";
    const bool isoMedia = head.mid(4, 4) == "ftyp";
    const bool mpeg =
        head.startsWith(QByteArrayLiteral("\0\0\1\xBA")) || head.startsWith(QByteArrayLiteral("\0\0\1\xB3"));
    static const QStringList suffixes{"avi", "mp4", "mpeg", "mpg", "mov", "mkv"};
    return avi || isoMedia || mpeg || (suffixes.contains(suffix) && !head.isEmpty());
}

/// Text whose first line holds no control bytes besides tabs and line ends.
bool isText(const QByteArray& head)
{
    const qsizetype end = head.indexOf('\n');
    const QByteArray line = head.left(end < 0 ? head.size() : end);
    if (line.trimmed().isEmpty())
        return false;
    for (const char c : line) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 && c != '\t' && c != '\r')
            return false;
    }
    return true;
}

} // namespace

bool SourceDetector::isSpecialFile(const QString& path)
{
    struct stat status
    {
    };
    if (path.isEmpty() || ::stat(QFile::encodeName(path).constData(), &status) != 0)
        return false;
    return !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode);
}

SourceFormat SourceDetector::detect(const QString& path)
{
    const QFileInfo info(path);
    const QString suffix = info.suffix().toLower();
    if (info.isDir()) {
        const QDir dir(path);
        if (!dir.entryList({QStringLiteral("*.tsq")}, QDir::Files).isEmpty())
            return SourceFormat::TdtBlock;
        if (!dir.entryList({QStringLiteral("*.tif"), QStringLiteral("*.tiff")}, QDir::Files).isEmpty())
            return SourceFormat::TiffFolder;
        return SourceFormat::Unknown;
    }
    if (suffix == QStringLiteral("tsq") || suffix == QStringLiteral("tev"))
        return SourceFormat::TdtBlock;
    if (isSpecialFile(path))
        return SourceFormat::Unknown;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return SourceFormat::Unknown;
    const QByteArray head = file.read(HeadLength);
    if (head.startsWith(QByteArrayLiteral("\x89HDF\r\n\x1a\n")))
        return suffix == QStringLiteral("doric") ? SourceFormat::Doric : SourceFormat::HDF5;
    if (head.startsWith(QByteArrayLiteral("PK\x03\x04")))
        return SourceFormat::Workbook;
    if (isTiff(head))
        return SourceFormat::TiffStack;
    if (PyPhotometryFile::looksLike(head))
        return SourceFormat::PyPhotometry;
    if (isVideo(head, suffix))
        return SourceFormat::Video;
    if (!isText(head))
        return SourceFormat::Unknown;
    if (NeurophotometricsFile::looksLike(head))
        return SourceFormat::Neurophotometrics;
    return SourceFormat::Spreadsheet;
}

} // namespace zarvi
