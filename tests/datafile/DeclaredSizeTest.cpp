#include "common/TempDir.h"
#include "datafile/HDF5Reader_V6.h"
#include "datafile/HDF5Writer_V6.h"
#include "datafile/ImageFrameReader.h"
#include "datafile/MemoryBudget.h"
#include "datafile/SignalDataset.h"

#include <gtest/gtest.h>

#include <limits>

using namespace zarvi;
using zarvi::test::TempDir;

namespace {

/// Stretches a written dataset's extent to `dims` without writing more.
void declare(HDF5Writer_V6& writer, const QString& path, const std::vector<hsize_t>& dims)
{
    const hid_t dataset = writer.openDataset(writer.fileId(), path);
    ASSERT_GE(dataset, 0);
    ASSERT_GE(H5Dset_extent(dataset, dims.data()), 0);
    writer.closeDataset(dataset);
}

} // namespace

// A file may declare sizes no machine holds, deflate-compressed so that the declared
// extent is not a multiple of anything stored: each is refused by name before allocating.
TEST(DeclaredSize, CompressedExtentsBeyondTheStoredBytesAreRefusedBeforeAllocating)
{
    TempDir dir;
    const QString path = dir.file(QStringLiteral("declared.orvel"));
    {
        HDF5Writer_V6 writer;
        ASSERT_GE(writer.create(path), 0);
        const hid_t group = writer.createGroupPath(writer.fileId(), QStringLiteral("R/S"));
        // A signal of 1000 samples, compressed, then declared as 2·10^9 samples.
        for (const QString& name : {QStringLiteral("Time"), QStringLiteral("Signal")}) {
            const hid_t d = writer.createDataset(group, ElementKind::Float64, name, 1, {H5S_UNLIMITED},
                                                 {1000}, {1000}, 6);
            const std::vector<double> values(1000, 1.0);
            ASSERT_TRUE(writer.write(d, values.data(), {0}, {1000}));
            writer.closeDataset(d);
            declare(writer, QStringLiteral("R/S/") + name, {2000000000});
        }
        // A compressed stack of 100 x 100 x 3 frames declared as 100000 x 100000 x 3.
        const hid_t stacks = writer.createGroupPath(writer.fileId(), QStringLiteral("Images"));
        const hid_t stack =
            writer.createDataset(stacks, ElementKind::UInt16, QStringLiteral("ImageStack"), 3,
                                 {100000, 100000, H5S_UNLIMITED}, {100, 100, 1}, {100, 100, 3}, 6);
        const std::vector<std::uint16_t> frame(100 * 100 * 3, 7);
        ASSERT_TRUE(writer.write(stack, frame.data(), {0, 0, 0}, {100, 100, 3}));
        writer.closeDataset(stack);
        declare(writer, QStringLiteral("Images/ImageStack"), {100000, 100000, 3});
        const hid_t time = writer.create1D(stacks, ElementKind::Float64, QStringLiteral("Time"), 3);
        const std::vector<double> times{0.0, 0.1, 0.2};
        ASSERT_TRUE(writer.append(time, times.data(), {3}));
        writer.closeDataset(time);
        writer.closeGroup(stacks);
        writer.closeGroup(group);
    }
    HDF5Reader_V6 reader;
    ASSERT_GE(reader.open(path), 0);

    Signal signal;
    QString error;
    EXPECT_FALSE(SignalDataset::read(reader, QStringLiteral("/R/S/Signal"), signal, error));
    // 2·10^9 doubles (16 GB) with their time and result need 64 GB; where that much is free,
    // the stored bytes still give them away.
    if (MemoryBudget::availableBytes() < 64000000000ULL) {
        EXPECT_TRUE(error.startsWith(QStringLiteral("<b>Signal /R/S/Signal of 2000000000 samples</b> needs "
                                                    "<b>64000000000</b> bytes of memory")))
            << error.toStdString();
    } else {
        EXPECT_TRUE(error.startsWith(QStringLiteral("Dataset /R/S/Signal declares 2000000000 values")))
            << error.toStdString();
    }
    EXPECT_TRUE(signal.values.empty());
    // The stored bytes alone refuse it in a whole read, whatever the memory.
    const hid_t values = reader.openDataset(reader.fileId(), QStringLiteral("R/S/Signal"));
    EXPECT_FALSE(reader.checkStoredExtent(values));
    EXPECT_TRUE(reader.lastError().startsWith(QStringLiteral(
        "Dataset /R/S/Signal declares 2000000000 values (16000000000 bytes) but the file holds "
        "only ")))
        << reader.lastError().toStdString();
    reader.closeDataset(values);

    ImageFrameReader frames;
    EXPECT_FALSE(frames.open(reader, QStringLiteral("/Images/ImageStack"), error));
    EXPECT_EQ(frames.problem(), ImageFrameReader::Problem::TooLarge);
    EXPECT_TRUE(error.contains(QStringLiteral("/Images/ImageStack"))) << error.toStdString();
    const hid_t stack = reader.openDataset(reader.fileId(), QStringLiteral("Images/ImageStack"));
    EXPECT_FALSE(reader.checkStoredExtent(stack));
    EXPECT_TRUE(reader.lastError().contains(
        QStringLiteral("declares 100000 x 100000 x 3 values (60000000000 bytes)")))
        << reader.lastError().toStdString();
    reader.closeDataset(stack);
}

// What is stored in full passes, compressed or not, however well it compresses.
TEST(DeclaredSize, StoredExtentsPassAndTheBudgetSaysWhatDoesNotFit)
{
    TempDir dir;
    const QString path = dir.file(QStringLiteral("stored.orvel"));
    HDF5Writer_V6 writer;
    ASSERT_GE(writer.create(path), 0);
    // 10^6 zeros deflate about a thousandfold: still within reach of the stored bytes.
    const hid_t zeros = writer.createDataset(writer.fileId(), ElementKind::Float64, QStringLiteral("Zeros"),
                                             1, {H5S_UNLIMITED}, {65536}, {1000000}, 9);
    const std::vector<double> data(1000000, 0.0);
    ASSERT_TRUE(writer.write(zeros, data.data(), {0}, {data.size()}));
    EXPECT_TRUE(writer.checkStoredExtent(zeros)) << writer.lastError().toStdString();
    std::vector<double> back;
    EXPECT_TRUE(writer.read(zeros, back));
    EXPECT_EQ(back, data);
    writer.closeDataset(zeros);

    EXPECT_EQ(MemoryBudget::product({3, 4, 5}), 60u);
    EXPECT_EQ(MemoryBudget::product({1ULL << 40, 1ULL << 40}), std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(MemoryBudget::problem(QStringLiteral("Little"), 1), QString());
    EXPECT_TRUE(
        MemoryBudget::problem(QStringLiteral("All"), std::numeric_limits<std::uint64_t>::max())
            .startsWith(QStringLiteral("<b>All</b> needs <b>18446744073709551615</b> bytes of memory")));
}
