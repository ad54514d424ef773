#include "DataFileTestSupport.h"
#include "common/TempDir.h"
#include "datafile/HDF5Reader_V6.h"
#include "datafile/HDF5Writer_V6.h"

#include <QFile>
#include <QFileInfo>

#include <thread>

using namespace zarvi;
using zarvi::test::openIdentifierCount;
using zarvi::test::TempDir;

namespace {

void writeBytes(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

/// A valid file holding a 3 x 4 number dataset, a string dataset and a dataset
/// whose extent claims 1e15 doubles (never written, so the file stays small).
void writeSampleFile(const QString& path)
{
    HDF5Writer_V6 writer;
    const hid_t file = writer.create(path);
    ASSERT_GE(file, 0);
    const hid_t group = writer.createGroup(file, QStringLiteral("G"));
    const hid_t values = writer.createDataset(group, ElementKind::Float64, QStringLiteral("Values"), 2,
                                              {3, 4}, {3, 4}, {3, 4}, 0);
    const std::vector<double> data(12, 1.5);
    ASSERT_TRUE(writer.write(values, data.data(), {0, 0}, {3, 4}));
    writer.closeDataset(values);

    // Strings are not something the writer makes, so build this one directly.
    const hsize_t two = 2;
    const hid_t space = H5Screate_simple(1, &two, nullptr);
    const hid_t type = H5Tcopy(H5T_C_S1);
    H5Tset_size(type, 8);
    const hid_t names = H5Dcreate2(group, "Names", type, space, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT);
    ASSERT_GE(names, 0);
    H5Dwrite(names, type, H5S_ALL, H5S_ALL, H5P_DEFAULT, "abcdefghabcdefgh");
    H5Dclose(names);
    H5Tclose(type);
    H5Sclose(space);

    const hid_t huge = writer.create1D(group, ElementKind::Float64, QStringLiteral("Huge"), 65536);
    const hsize_t claimed = 1000000000000000ULL;
    ASSERT_GE(H5Dset_extent(huge, &claimed), 0);
    writer.closeDataset(huge);

    // 2·10^8 doubles fit in memory, but only one chunk of them is stored.
    const hid_t declared = writer.create1D(group, ElementKind::Float64, QStringLiteral("Declared"), 65536);
    const std::vector<double> chunk(65536, 3.0);
    ASSERT_TRUE(writer.append(declared, chunk.data(), {chunk.size()}));
    const hsize_t declaredLength = 200000000ULL;
    ASSERT_GE(H5Dset_extent(declared, &declaredLength), 0);
    writer.closeDataset(declared);
    writer.closeGroup(group);
}

} // namespace

TEST(HDF5BadInput, EveryRefusalIsClearAndQuiet)
{
    TempDir dir;
    const QString text = dir.file(QStringLiteral("notes.txt"));
    const QString empty = dir.file(QStringLiteral("empty.orvel"));
    const QString truncated = dir.file(QStringLiteral("truncated.orvel"));
    const QString good = dir.file(QStringLiteral("good.orvel"));
    const QString missing = dir.file(QStringLiteral("missing.orvel"));
    writeBytes(text, QByteArray("These are notes, not a data file.\n").repeated(100));
    writeBytes(empty, {});
    writeSampleFile(good);
    {
        HDF5Writer_V6 writer;
        const hid_t file = writer.create(truncated);
        const hid_t d = writer.create1D(file, ElementKind::Float64, QStringLiteral("D"), 4096);
        const std::vector<double> data(4096, 2.0);
        ASSERT_TRUE(writer.append(d, data.data(), {data.size()}));
    }
    QFile::resize(truncated, QFileInfo(truncated).size() / 2);

    ::testing::internal::CaptureStderr();
    const long long identifiersBefore = openIdentifierCount();
    HDF5Reader_V6 reader;
    EXPECT_LT(reader.open(text), 0);
    EXPECT_EQ(reader.lastError(), "Not an HDF5 file: " + text);
    EXPECT_LT(reader.open(empty), 0);
    EXPECT_EQ(reader.lastError(), "File is empty: " + empty);
    EXPECT_LT(reader.open(truncated), 0);
    EXPECT_TRUE(reader.lastError().contains(truncated)) << reader.lastError().toStdString();
    EXPECT_LT(reader.open(dir.path()), 0);
    EXPECT_EQ(reader.lastError(), "Not a file but a folder: " + dir.path());
    EXPECT_LT(reader.open(missing), 0);
    EXPECT_EQ(reader.lastError(), "File not found: " + missing);
    EXPECT_FALSE(reader.isOpen());

    const hid_t file = reader.open(good);
    ASSERT_GE(file, 0) << reader.lastError().toStdString();
    EXPECT_LT(reader.openDataset(file, QStringLiteral("G/Nope")), 0);
    EXPECT_EQ(reader.lastError(), QStringLiteral("Path not found in file: G/Nope"));
    EXPECT_LT(reader.openGroup(file, QStringLiteral("X/Y/Z")), 0);
    EXPECT_FALSE(reader.exists(file, QStringLiteral("G/Values/deeper")));
    EXPECT_EQ(reader.objectKind(file, QStringLiteral("X/Y")), ObjectKind::Missing);
    EXPECT_LT(reader.openGroup(file, QStringLiteral("G/Values")), 0);
    EXPECT_FALSE(reader.readAttribute(file, QStringLiteral("Nope")).isValid());

    const hid_t values = reader.openDataset(file, QStringLiteral("G/Values"));
    std::vector<double> out;
    EXPECT_FALSE(reader.read(values, {0}, {3}, out));
    EXPECT_TRUE(reader.lastError().contains(QStringLiteral("rank"))) << reader.lastError().toStdString();
    EXPECT_FALSE(reader.read(values, {2, 0}, {2, 4}, out));
    EXPECT_FALSE(reader.read(values, {0, 0}, {4, 4}, out));

    const hid_t names = reader.openDataset(file, QStringLiteral("G/Names"));
    EXPECT_EQ(reader.elementType(names).elementClass, ElementClass::String);
    EXPECT_FALSE(reader.read(names, out));
    EXPECT_TRUE(reader.lastError().contains(QStringLiteral("does not hold numbers")));

    const hid_t huge = reader.openDataset(file, QStringLiteral("G/Huge"));
    out.clear();
    EXPECT_FALSE(reader.read(huge, out));
    EXPECT_TRUE(reader.lastError().startsWith(QStringLiteral("Dataset /G/Huge is too large to read")))
        << reader.lastError().toStdString();
    EXPECT_TRUE(out.empty());

    // A declared extent is trusted only as far as the stored bytes go.
    const hid_t declared = reader.openDataset(file, QStringLiteral("G/Declared"));
    EXPECT_FALSE(reader.read(declared, out));
    EXPECT_EQ(reader.lastError(),
              QStringLiteral("Dataset /G/Declared declares 200000000 values (1600000000 bytes) but the file "
                             "holds only 524288 bytes of them"));
    EXPECT_TRUE(out.empty());
    std::vector<double> first;
    EXPECT_TRUE(reader.read(declared, {0}, {10}, first)) << reader.lastError().toStdString();
    EXPECT_EQ(first, std::vector<double>(10, 3.0));
    reader.closeDataset(declared);

    // Identifiers that are closed, foreign or made up are refused, not used.
    EXPECT_TRUE(reader.closeDataset(names));
    EXPECT_FALSE(reader.closeDataset(names));
    EXPECT_FALSE(reader.read(names, out));
    EXPECT_TRUE(reader.dimensions(names).empty());
    EXPECT_FALSE(reader.closeGroup(values));
    EXPECT_FALSE(reader.closeDataset(-1));
    EXPECT_TRUE(reader.children(123456789).isEmpty());
    EXPECT_FALSE(reader.exists(-1, QStringLiteral("G")));
    HDF5Writer_V6 writer;
    EXPECT_FALSE(writer.writeAttribute(-1, QStringLiteral("A"), 1));
    EXPECT_FALSE(writer.flush());
    EXPECT_LT(writer.createGroup(file, QStringLiteral("ReadOnlyFile")), 0);

    // The library's error printing is switched off per thread: a reader made here
    // and used on a new thread must stay quiet there too.
    std::thread worker([&] {
        EXPECT_LT(reader.open(truncated), 0);
        EXPECT_FALSE(reader.read(values, out));
    });
    worker.join();
    reader.closeFile();
    EXPECT_EQ(openIdentifierCount(), identifiersBefore);
    const std::string printed = ::testing::internal::GetCapturedStderr();
    EXPECT_TRUE(printed.empty()) << printed;
}
