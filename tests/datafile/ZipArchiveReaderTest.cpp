#include "datafile/ZipArchiveReader.h"

#include <QtEndian>

#include <gtest/gtest.h>

#include <zlib.h>

using zarvi::ZipArchiveReader;

namespace {

void put16(QByteArray& bytes, quint16 value)
{
    char field[2];
    qToLittleEndian(value, field);
    bytes.append(field, 2);
}

void put32(QByteArray& bytes, quint32 value)
{
    char field[4];
    qToLittleEndian(value, field);
    bytes.append(field, 4);
}

/// `data` deflated as ZIP stores it: raw, without zlib's header.
QByteArray deflated(const QByteArray& data)
{
    z_stream stream{};
    EXPECT_EQ(deflateInit2(&stream, 9, Z_DEFLATED, -MAX_WBITS, 9, Z_DEFAULT_STRATEGY), Z_OK);
    QByteArray packed(static_cast<qsizetype>(deflateBound(&stream, static_cast<uLong>(data.size()))), '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data.constData()));
    stream.avail_in = static_cast<uInt>(data.size());
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    EXPECT_EQ(deflate(&stream, Z_FINISH), Z_STREAM_END);
    packed.resize(static_cast<qsizetype>(stream.total_out));
    deflateEnd(&stream);
    return packed;
}

/// An archive of one deflated entry "a.xml" holding `data`, whose headers declare
/// `declaredSize` unpacked bytes.
QByteArray archiveOf(const QByteArray& data, quint32 declaredSize)
{
    const QByteArray packed = deflated(data);
    const quint32 crc =
        crc32(0L, reinterpret_cast<const Bytef*>(data.constData()), static_cast<uInt>(data.size()));
    const QByteArray name("a.xml");
    QByteArray zip;
    put32(zip, 0x04034b50);
    for (const quint16 field : {20, 0, 8, 0, 0})
        put16(zip, field); // version, flags, method, time, date
    put32(zip, crc);
    put32(zip, static_cast<quint32>(packed.size()));
    put32(zip, declaredSize);
    put16(zip, static_cast<quint16>(name.size()));
    put16(zip, 0);
    zip += name + packed;
    const quint32 directoryStart = static_cast<quint32>(zip.size());
    put32(zip, 0x02014b50);
    for (const quint16 field : {20, 20, 0, 8, 0, 0})
        put16(zip, field); // made by, version, flags, method, time, date
    put32(zip, crc);
    put32(zip, static_cast<quint32>(packed.size()));
    put32(zip, declaredSize);
    for (const quint16 field :
         {static_cast<quint16>(name.size()), quint16(0), quint16(0), quint16(0), quint16(0)})
        put16(zip, field); // name, extra, comment lengths, disk, internal attributes
    put32(zip, 0);         // external attributes
    put32(zip, 0);         // local header at the start
    zip += name;
    const quint32 directorySize = static_cast<quint32>(zip.size()) - directoryStart;
    put32(zip, 0x06054b50);
    for (const quint16 field : {0, 0, 1, 1})
        put16(zip, field); // disk, directory disk, entries here, entries in all
    put32(zip, directorySize);
    put32(zip, directoryStart);
    put16(zip, 0);
    return zip;
}

} // namespace

// Deflate unpacks to at most 1032 times its packed size (a run of 258 bytes in 2 bits):
// 4 MiB of zeros, about as packed as deflate gets, read whole; the same entry declaring
// one byte more than 1032 times its packed size is refused before anything is allocated.
TEST(ZipArchiveReader, DeclaredSizesBeyondWhatThePackedBytesHoldAreRefused)
{
    const QByteArray zeros(4 << 20, '\0');
    const qsizetype packedSize = deflated(zeros).size();
    ASSERT_LT(packedSize * 1000, zeros.size()) << "zlib packs zeros over 1000 to 1";

    std::vector<ZipArchiveReader::Entry> entries;
    QString error;
    ASSERT_TRUE(ZipArchiveReader::read(archiveOf(zeros, static_cast<quint32>(zeros.size())), entries, error))
        << error.toStdString();
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].data, zeros);

    entries.clear();
    const quint32 beyond = static_cast<quint32>(packedSize * 1032 + 1);
    EXPECT_FALSE(ZipArchiveReader::read(archiveOf(zeros, beyond), entries, error));
    EXPECT_TRUE(entries.empty());
    EXPECT_EQ(error, QStringLiteral("The archive entry <b>a.xml</b> claims %1 bytes, more than its %2 packed "
                                    "bytes can hold.")
                         .arg(beyond)
                         .arg(packedSize));
}
