#include "datafile/SuperblockRepair.h"

#include "datafile/ReadableCopy.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>
#include <QtEndian>

#include <hdf5.h>

#include <optional>

namespace zarvi {

namespace {

/// Where a superblock lies and where its end-of-allocation field is.
struct Superblock
{
    qint64 offset = 0;
    int version = 0;
    int addressBytes = 0;
    qint64 eoaField = 0; ///< from the start of the file
    quint64 baseAddress = 0;
    quint64 endOfAllocation = 0;
};

const QByteArray& signature()
{
    static const QByteArray bytes("\x89HDF\r\n\x1a\n", 8);
    return bytes;
}

quint64 readAddress(const QByteArray& bytes, qsizetype at, int size)
{
    quint64 value = 0;
    for (int i = size - 1; i >= 0; --i)
        value = (value << 8) | static_cast<quint8>(bytes[at + i]);
    return value;
}

/// The superblock sits at 0 or at 512, 1024, 2048, ... (after a user block).
std::optional<Superblock> findSuperblock(QFile& file)
{
    const qint64 size = file.size();
    for (qint64 offset = 0; offset + 64 <= size; offset = offset == 0 ? 512 : offset * 2) {
        if (!file.seek(offset))
            return std::nullopt;
        const QByteArray head = file.read(96);
        if (!head.startsWith(signature()))
            continue;
        Superblock block;
        block.offset = offset;
        block.version = static_cast<quint8>(head[8]);
        // Versions 0 and 1 keep the sizes at 13, then the addresses (base, free space,
        // end of allocation, driver) from 24, or from 28 for version 1; versions 2 and
        // 3 keep the size at 9 and the addresses (base, extension, end of allocation,
        // root) from 12.
        qsizetype addresses = 0;
        if (block.version <= 1) {
            block.addressBytes = static_cast<quint8>(head[13]);
            addresses = block.version == 0 ? 24 : 28;
        } else if (block.version <= 3) {
            block.addressBytes = static_cast<quint8>(head[9]);
            addresses = 12;
        } else {
            return std::nullopt;
        }
        if (block.addressBytes != 2 && block.addressBytes != 4 && block.addressBytes != 8)
            return std::nullopt;
        if (addresses + 4 * block.addressBytes + 4 > head.size())
            return std::nullopt;
        block.baseAddress = readAddress(head, addresses, block.addressBytes);
        block.eoaField = offset + addresses + 2 * block.addressBytes;
        block.endOfAllocation = readAddress(head, addresses + 2 * block.addressBytes, block.addressBytes);
        return block;
    }
    return std::nullopt;
}

bool allocationMismatch(QFile& file, Superblock& block)
{
    const std::optional<Superblock> found = findSuperblock(file);
    if (!found)
        return false;
    block = *found;
    return block.baseAddress + block.endOfAllocation != static_cast<quint64>(file.size());
}

#if H5_VERSION_GE(1, 12, 0)
herr_t countObject(hid_t, const char*, const H5O_info2_t*, void* count)
#else
herr_t countObject(hid_t, const char*, const H5O_info_t*, void* count)
#endif
{
    ++*static_cast<qint64*>(count);
    return 0;
}

/// Copies the file at `path` into the open `into`, with its permissions, and closes it.
bool copyBytes(const QString& path, QFile& into)
{
    QFile original(path);
    if (!original.open(QIODevice::ReadOnly) || !into.setPermissions(original.permissions()))
        return false;
    while (!original.atEnd()) {
        const QByteArray block = original.read(1 << 20);
        if (block.isEmpty() || into.write(block) != block.size())
            return false;
    }
    into.close();
    return true;
}

/// Sets the end of allocation in the superblock of the file at `path` to the file's size:
/// with `evenIfShort` whenever they differ, otherwise only when the recorded end lies past
/// the file's end. False when the file cannot be written.
bool restoreEndOfAllocation(const QString& path, bool evenIfShort)
{
    QFile copy(path);
    if (!copy.open(QIODevice::ReadWrite))
        return false;
    Superblock block;
    if (!allocationMismatch(copy, block) ||
        (!evenIfShort && block.baseAddress + block.endOfAllocation < static_cast<quint64>(copy.size())))
        return true;
    const quint64 end = static_cast<quint64>(copy.size()) - block.baseAddress;
    QByteArray field(block.addressBytes, '\0');
    for (int i = 0; i < block.addressBytes; ++i)
        field[i] = static_cast<char>((end >> (8 * i)) & 0xff);
    bool ok = copy.seek(block.eoaField) && copy.write(field) == field.size();
    if (ok && block.version >= 2) {
        // The checksum covers the superblock up to itself: after the root address.
        const qsizetype checked = 12 + 4 * block.addressBytes;
        ok = copy.seek(block.offset);
        const QByteArray head = copy.read(checked);
        const quint32 sum = SuperblockRepair::lookup3(head.constData(), head.size());
        char bytes[4];
        qToLittleEndian(sum, bytes);
        ok = ok && head.size() == checked && copy.write(bytes, 4) == 4;
    }
    return copy.flush() && ok;
}

} // namespace

quint32 SuperblockRepair::lookup3(const char* data, qsizetype length, quint32 initial)
{
    const auto rot = [](quint32 x, int k) { return (x << k) | (x >> (32 - k)); };
    quint32 a = 0xdeadbeef + static_cast<quint32>(length) + initial;
    quint32 b = a;
    quint32 c = a;
    const auto* k = reinterpret_cast<const quint8*>(data);
    const auto word = [](const quint8* p, qsizetype n) {
        quint32 w = 0;
        for (qsizetype i = 0; i < n && i < 4; ++i)
            w |= static_cast<quint32>(p[i]) << (8 * i);
        return w;
    };
    while (length > 12) {
        a += word(k, 4);
        b += word(k + 4, 4);
        c += word(k + 8, 4);
        a -= c, a ^= rot(c, 4), c += b;
        b -= a, b ^= rot(a, 6), a += c;
        c -= b, c ^= rot(b, 8), b += a;
        a -= c, a ^= rot(c, 16), c += b;
        b -= a, b ^= rot(a, 19), a += c;
        c -= b, c ^= rot(b, 4), b += a;
        length -= 12;
        k += 12;
    }
    if (length == 0)
        return c;
    a += word(k, length);
    b += length > 4 ? word(k + 4, length - 4) : 0;
    c += length > 8 ? word(k + 8, length - 8) : 0;
    c ^= b, c -= rot(b, 14);
    a ^= c, a -= rot(c, 11);
    b ^= a, b -= rot(a, 25);
    c ^= b, c -= rot(b, 16);
    a ^= c, a -= rot(c, 4);
    b ^= a, b -= rot(a, 14);
    c ^= b, c -= rot(b, 24);
    return c;
}

bool SuperblockRepair::readsWhole(const QString& path)
{
    // The damage is expected here; the library's own report would only repeat it.
    H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr);
    const hid_t file = H5Fopen(QFile::encodeName(path).constData(), H5F_ACC_RDONLY, H5P_DEFAULT);
    qint64 objects = 0;
#if H5_VERSION_GE(1, 12, 0)
    const bool ok =
        file >= 0 && H5Ovisit3(file, H5_INDEX_NAME, H5_ITER_INC, countObject, &objects, H5O_INFO_BASIC) >= 0;
#else
    const bool ok =
        file >= 0 && H5Ovisit2(file, H5_INDEX_NAME, H5_ITER_INC, countObject, &objects, H5O_INFO_BASIC) >= 0;
#endif
    if (file >= 0)
        H5Fclose(file);
    return ok;
}

bool SuperblockRepair::looksInterrupted(const QString& path)
{
    QFile file(path);
    Superblock block;
    return file.open(QIODevice::ReadOnly) && allocationMismatch(file, block);
}

QString SuperblockRepair::damagedMessage(const QString& path)
{
    return QStringLiteral(
               "The file <b>%1</b> looks damaged by an interrupted write. Make a repaired copy with "
               "<b>zarvi-cli repair %1 --into COPY.orvel</b>; the file itself is left as it is.")
        .arg(path);
}

bool SuperblockRepair::repairInto(const QString& path, const QString& copyPath, QStringList& leftOut,
                                  QString& error)
{
    leftOut.clear();
    if (QFileInfo(copyPath).absoluteFilePath() == QFileInfo(path).absoluteFilePath() ||
        QFileInfo::exists(copyPath)) {
        error = QStringLiteral("The copy <b>%1</b> exists already; name a new file.").arg(copyPath);
        return false;
    }
    if (readsWhole(path)) {
        error = QStringLiteral("<b>%1</b> shows no damage from an interrupted write; nothing was written.")
                    .arg(path);
        return false;
    }
    // The original is only ever read. A recorded end past the file's end makes the library
    // refuse the file, so the copy's is set to its size. A recorded end short of it is kept:
    // everything the last whole flush wrote lies before it, and the library refuses what
    // lies after (the interrupted flush's objects) instead of reading a half-written object
    // as if it were whole, which can crash it.
    QTemporaryFile restored(copyPath + QStringLiteral(".XXXXXX"));
    if (!restored.open() || !copyBytes(path, restored) ||
        !restoreEndOfAllocation(restored.fileName(), false)) {
        error = QStringLiteral("Unable to write the copy <b>%1</b>.").arg(copyPath);
        return false;
    }
    if (!readsWhole(restored.fileName())) {
        // A new file of everything that can be read; the rest is what the run never finished.
        if (ReadableCopy::write(restored.fileName(), copyPath, leftOut, error)) {
            if (readsWhole(copyPath))
                return true;
            error = QStringLiteral("The repaired copy <b>%1</b> still does not open; it was removed.")
                        .arg(copyPath);
            QFile::remove(copyPath);
            return false;
        }
        QFile::remove(copyPath);
        leftOut.clear();
        // Not even the root reads before the recorded end: the last resort is to trust every
        // byte of the file.
        if (!restoreEndOfAllocation(restored.fileName(), true) || !readsWhole(restored.fileName())) {
            error = QStringLiteral("<b>%1</b> cannot be repaired: its root group cannot be read.").arg(path);
            return false;
        }
    }
    if (!restored.rename(copyPath)) {
        error = QStringLiteral("Unable to write the copy <b>%1</b>.").arg(copyPath);
        return false;
    }
    restored.setAutoRemove(false);
    return true;
}

} // namespace zarvi
