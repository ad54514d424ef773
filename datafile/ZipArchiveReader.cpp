#include "datafile/ZipArchiveReader.h"

#include "datafile/MemoryBudget.h"

#include <QtEndian>

#include <zlib.h>

#include <cstdint>
#include <limits>

namespace zarvi {

namespace {

constexpr std::uint32_t EndOfDirectorySignature = 0x06054b50;
constexpr std::uint32_t DirectoryEntrySignature = 0x02014b50;
constexpr std::uint32_t LocalHeaderSignature = 0x04034b50;
constexpr qsizetype EndOfDirectorySize = 22;
constexpr qsizetype DirectoryEntrySize = 46;
constexpr qsizetype LocalHeaderSize = 30;
constexpr std::uint16_t Stored = 0;
constexpr std::uint16_t Deflated = 8;
constexpr std::uint16_t EncryptedFlag = 0x0001;
constexpr std::uint16_t Utf8NameFlag = 0x0800;
/// A ROI file holds a few kilobytes and a workbook sheet of a million rows some hundred
/// megabytes; a larger entry is not inflated, to keep a damaged size from taking the memory.
constexpr std::uint32_t LargestEntry = 1024u << 20;
/// Deflate codes a run of 258 repeated bytes in 2 bits at best, so no stream unpacks to more
/// than 1032 times its own size.
constexpr std::uint64_t LargestDeflateRatio = 1032;

/// Little-endian fields at an offset the caller has checked to lie inside `bytes`.
std::uint16_t u16(const QByteArray& bytes, qsizetype at)
{
    return qFromLittleEndian<quint16>(bytes.constData() + at);
}

std::uint32_t u32(const QByteArray& bytes, qsizetype at)
{
    return qFromLittleEndian<quint32>(bytes.constData() + at);
}

bool fits(const QByteArray& bytes, qint64 at, qint64 length)
{
    return at >= 0 && length >= 0 && at + length <= bytes.size();
}

/// The end-of-directory record: the last one whose comment reaches exactly to the end.
qsizetype findEndOfDirectory(const QByteArray& bytes)
{
    const qsizetype lowest = std::max<qsizetype>(0, bytes.size() - EndOfDirectorySize - 0xFFFF);
    for (qsizetype at = bytes.size() - EndOfDirectorySize; at >= lowest; --at)
        if (u32(bytes, at) == EndOfDirectorySignature &&
            at + EndOfDirectorySize + u16(bytes, at + 20) == bytes.size())
            return at;
    return -1;
}

bool inflateRaw(const QByteArray& packed, std::uint32_t size, QByteArray& data)
{
    // Exactly the size: resize() would reserve room to grow, up to twice the entry.
    data = QByteArray(static_cast<qsizetype>(size), Qt::Uninitialized);
    z_stream stream{};
    // Negative window bits: a raw deflate stream, as ZIP stores it, without zlib's header.
    if (inflateInit2(&stream, -MAX_WBITS) != Z_OK)
        return false;
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(packed.constData()));
    stream.avail_in = static_cast<uInt>(packed.size());
    stream.next_out = reinterpret_cast<Bytef*>(data.data());
    stream.avail_out = static_cast<uInt>(size);
    const int result = inflate(&stream, Z_FINISH);
    const bool ok = result == Z_STREAM_END && stream.total_out == size;
    inflateEnd(&stream);
    return ok;
}

bool readEntry(const QByteArray& bytes, qsizetype at, ZipArchiveReader::Entry& entry, QString& error)
{
    const std::uint16_t flags = u16(bytes, at + 8);
    const std::uint16_t method = u16(bytes, at + 10);
    const std::uint32_t crc = u32(bytes, at + 16);
    const std::uint32_t packedSize = u32(bytes, at + 20);
    const std::uint32_t size = u32(bytes, at + 24);
    const std::uint32_t localHeader = u32(bytes, at + 42);
    const QString name = QStringLiteral("<b>%1</b>").arg(entry.name.toHtmlEscaped());
    if (flags & EncryptedFlag) {
        error = QStringLiteral("The archive entry %1 is encrypted.").arg(name);
        return false;
    }
    if (method != Stored && method != Deflated) {
        error = QStringLiteral(
                    "The archive entry %1 is compressed with method %2; only stored and deflated entries "
                    "are read.")
                    .arg(name)
                    .arg(method);
        return false;
    }
    if (size > LargestEntry) {
        error = QStringLiteral("The archive entry %1 holds %2 bytes, too many to read.").arg(name).arg(size);
        return false;
    }
    if (method == Deflated && size > LargestDeflateRatio * packedSize) {
        error =
            QStringLiteral("The archive entry %1 claims %2 bytes, more than its %3 packed bytes can hold.")
                .arg(name)
                .arg(size)
                .arg(packedSize);
        return false;
    }
    const QString memory =
        MemoryBudget::problem(QStringLiteral("The archive entry %1").arg(entry.name.toHtmlEscaped()), size);
    if (!memory.isEmpty()) {
        error = memory;
        return false;
    }
    if (!fits(bytes, localHeader, LocalHeaderSize) || u32(bytes, localHeader) != LocalHeaderSignature) {
        error = QStringLiteral("The archive entry %1 points to no local header.").arg(name);
        return false;
    }
    const qint64 dataStart =
        qint64(localHeader) + LocalHeaderSize + u16(bytes, localHeader + 26) + u16(bytes, localHeader + 28);
    if (!fits(bytes, dataStart, packedSize)) {
        error = QStringLiteral("The archive entry %1 runs past the end of the file.").arg(name);
        return false;
    }
    const QByteArray packed =
        bytes.mid(static_cast<qsizetype>(dataStart), static_cast<qsizetype>(packedSize));
    bool unpacked = false;
    if (method == Stored) {
        entry.data = packed;
        unpacked = packedSize == size;
    } else {
        unpacked = inflateRaw(packed, size, entry.data);
    }
    if (!unpacked) {
        error = QStringLiteral("The archive entry %1 cannot be unpacked.").arg(name);
        return false;
    }
    const auto check = crc32(0L, reinterpret_cast<const Bytef*>(entry.data.constData()),
                             static_cast<uInt>(entry.data.size()));
    if (check != crc) {
        error = QStringLiteral("The archive entry %1 is damaged (its CRC-32 does not match).").arg(name);
        return false;
    }
    return true;
}

} // namespace

bool ZipArchiveReader::read(const QByteArray& bytes, std::vector<Entry>& entries, QString& error)
{
    const qsizetype end = bytes.size() < EndOfDirectorySize ? -1 : findEndOfDirectory(bytes);
    if (end < 0) {
        error = QStringLiteral("The file is not a ZIP archive: it has no central directory.");
        return false;
    }
    const std::uint16_t count = u16(bytes, end + 10);
    const std::uint32_t directorySize = u32(bytes, end + 12);
    const std::uint32_t directoryStart = u32(bytes, end + 16);
    if (count == 0xFFFF || directoryStart == std::numeric_limits<std::uint32_t>::max()) {
        error = QStringLiteral("The archive is in the ZIP64 form, which is not read.");
        return false;
    }
    if (u16(bytes, end + 4) != 0 || u16(bytes, end + 8) != count) {
        error = QStringLiteral("The archive spans several disks, which is not read.");
        return false;
    }
    if (!fits(bytes, directoryStart, directorySize)) {
        error = QStringLiteral("The archive's central directory lies outside the file.");
        return false;
    }
    std::vector<Entry> read;
    qsizetype at = directoryStart;
    for (std::uint16_t i = 0; i < count; ++i) {
        if (!fits(bytes, at, DirectoryEntrySize) || u32(bytes, at) != DirectoryEntrySignature) {
            error = QStringLiteral("The archive's central directory is damaged at entry %1.").arg(i + 1);
            return false;
        }
        const std::uint16_t nameLength = u16(bytes, at + 28);
        const qint64 next =
            qint64(at) + DirectoryEntrySize + nameLength + u16(bytes, at + 30) + u16(bytes, at + 32);
        if (!fits(bytes, at + DirectoryEntrySize, nameLength)) {
            error = QStringLiteral("The archive's central directory is damaged at entry %1.").arg(i + 1);
            return false;
        }
        const QByteArray rawName = bytes.mid(at + DirectoryEntrySize, nameLength);
        Entry entry;
        // Names not marked UTF-8 are in the old DOS code page; its ASCII part, all that
        // ROI names use in practice, reads the same as Latin-1.
        entry.name =
            (u16(bytes, at + 8) & Utf8NameFlag) ? QString::fromUtf8(rawName) : QString::fromLatin1(rawName);
        if (!entry.name.endsWith(QLatin1Char('/'))) {
            if (!readEntry(bytes, at, entry, error))
                return false;
            read.push_back(std::move(entry));
        }
        at = static_cast<qsizetype>(next);
    }
    entries.insert(entries.end(), read.begin(), read.end());
    return true;
}

} // namespace zarvi
