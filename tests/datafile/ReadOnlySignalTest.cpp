// Signals an operation only reads: mapped from the file where the chunks lie back to back,
// read otherwise, and the same samples either way.
#include "common/TempDir.h"
#include "datafile/HDF5Reader_V6.h"
#include "datafile/HDF5Writer_V6.h"
#include "datafile/SignalDataset.h"

#include <gtest/gtest.h>

#include <cmath>

namespace zarvi {
namespace {

using test::TempDir;

/// A length that ends inside a chunk, so that the last one is partly beyond the extent.
constexpr std::size_t Length = 3 * 65536 + 1234;

std::vector<double> rampOf(double offset)
{
    std::vector<double> values(Length);
    for (std::size_t i = 0; i < Length; ++i)
        values[i] = offset + std::sin(0.001 * static_cast<double>(i));
    return values;
}

void expectSamples(std::span<const double> samples, const std::vector<double>& expected, const char* what)
{
    ASSERT_EQ(samples.size(), expected.size()) << what;
    for (std::size_t i = 0; i < expected.size(); ++i)
        ASSERT_EQ(samples[i], expected[i]) << what << " sample " << i;
}

TEST(ReadOnlySignal, MappedWhereWrittenInOneGoAndReadOtherwise)
{
    TempDir dir;
    const QString path = dir.file(QStringLiteral("signals.orvel"));
    const Signal whole{rampOf(0.0), rampOf(5.0), QStringLiteral("V")};
    {
        HDF5Writer_V6 writer;
        const hid_t file = writer.create(path);
        ASSERT_GE(file, 0);
        QString error;
        ASSERT_TRUE(SignalDataset::write(writer, QStringLiteral("Whole"), whole, {}, error))
            << error.toStdString();
        // Values and time appended chunk by chunk in turn: their chunks alternate in the file.
        const hid_t pieces = writer.createGroup(file, QStringLiteral("Pieces"));
        const hid_t time = writer.create1D(pieces, ElementKind::Float64, QStringLiteral("Time"), Length);
        const hid_t values = writer.create1D(pieces, ElementKind::Float64, QStringLiteral("Signal"), Length);
        for (std::size_t at = 0; at < Length; at += 65536) {
            const hsize_t count = std::min<std::size_t>(65536, Length - at);
            ASSERT_TRUE(writer.append(time, whole.time.data() + at, {count}));
            ASSERT_TRUE(writer.append(values, whole.values.data() + at, {count}));
        }
        // Packed chunks are not the bytes in memory.
        const hid_t packed = writer.createDataset(file, ElementKind::Float64, QStringLiteral("Packed"), 1,
                                                  {H5S_UNLIMITED}, {65536}, {0}, 4);
        ASSERT_TRUE(writer.append(packed, whole.values.data(), {Length}));
        for (const hid_t id : {time, values, packed})
            writer.closeDataset(id);
        writer.closeGroup(pieces);
    }

    HDF5Writer_V6 file;
    ASSERT_GE(file.open(path), 0);
    ReadOnlySignal mapped;
    QString error;
    ASSERT_TRUE(SignalDataset::readOnly(file, QStringLiteral("Whole/Signal"), mapped, error))
        << error.toStdString();
    EXPECT_TRUE(mapped.values.isMapped());
    EXPECT_TRUE(mapped.time.isMapped());
    EXPECT_EQ(mapped.unit, QStringLiteral("V"));
    // What the run then adds to the file leaves the mapped samples as they were.
    ASSERT_TRUE(
        SignalDataset::write(file, QStringLiteral("Added"), {rampOf(1.0), rampOf(2.0), {}}, {}, error));
    expectSamples(mapped.values.samples(), whole.values, "mapped values");
    expectSamples(mapped.time.samples(), whole.time, "mapped time");

    ReadOnlySignal interleaved;
    ASSERT_TRUE(SignalDataset::readOnly(file, QStringLiteral("Pieces/Signal"), interleaved, error))
        << error.toStdString();
    EXPECT_FALSE(interleaved.values.isMapped());
    EXPECT_FALSE(interleaved.time.isMapped());
    expectSamples(interleaved.values.samples(), whole.values, "interleaved values");
    expectSamples(interleaved.time.samples(), whole.time, "interleaved time");

    DatasetSamples packed;
    ASSERT_TRUE(packed.load(file, QStringLiteral("Packed"), error)) << error.toStdString();
    EXPECT_FALSE(packed.isMapped());
    expectSamples(packed.samples(), whole.values, "packed");
    file.closeFile();

    // The mapping outlives the file's handle.
    expectSamples(mapped.values.samples(), whole.values, "mapped values after closing");
}

TEST(ReadOnlySignal, RefusesWhatIsNoSignal)
{
    TempDir dir;
    const QString path = dir.file(QStringLiteral("bad.orvel"));
    {
        HDF5Writer_V6 writer;
        const hid_t file = writer.create(path);
        ASSERT_GE(file, 0);
        QString error;
        ASSERT_TRUE(
            SignalDataset::write(writer, QStringLiteral("Short"), {{0.0, 1.0}, {2.0, 3.0}, {}}, {}, error));
        // A "Time" one sample longer than its values.
        const std::vector<double> time{0.0, 1.0, 2.0};
        const hid_t group = writer.createGroup(file, QStringLiteral("Unequal"));
        const hid_t longer = writer.create1D(group, ElementKind::Float64, QStringLiteral("Time"), 3);
        ASSERT_TRUE(writer.append(longer, time.data(), {3}));
        const hid_t values = writer.create1D(group, ElementKind::Float64, QStringLiteral("Signal"), 2);
        ASSERT_TRUE(writer.append(values, time.data(), {2}));
        writer.closeDataset(longer);
        writer.closeDataset(values);
        writer.closeGroup(group);
    }
    HDF5Reader_V6 file;
    ASSERT_GE(file.open(path), 0);
    ReadOnlySignal signal;
    QString error;
    EXPECT_TRUE(SignalDataset::readOnly(file, QStringLiteral("Short/Signal"), signal, error));
    EXPECT_EQ(signal.values.samples()[1], 3.0);
    EXPECT_FALSE(SignalDataset::readOnly(file, QStringLiteral("Unequal/Signal"), signal, error));
    EXPECT_EQ(error.toStdString(), "Signal <b>Unequal/Signal</b> and its time vector differ in length.");
    EXPECT_FALSE(SignalDataset::readOnly(file, QStringLiteral("Missing/Signal"), signal, error));
    EXPECT_EQ(error.toStdString(), "Dataset <b>Missing/Signal</b> was not found in the file.");
}

} // namespace
} // namespace zarvi
