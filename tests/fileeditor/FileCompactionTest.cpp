// Compacting a data file: the space of deleted data comes back, everything else is kept
// (values, storage settings, attributes, permissions), and a failure or a cancel leaves
// the original byte for byte as it was with no new file beside it.
#include "fileeditor/FileCompaction.h"
#include "common/TempDir.h"
#include "datafile/HDF5Reader_V6.h"
#include "datafile/HDF5Writer_V6.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

#include <vector>

namespace zarvi {
namespace {

const QString Raw = QStringLiteral("DataAcquisition/Dev/Signals/Series1/S/Signal");
const QString Packed = QStringLiteral("DataProcessed/Dev/Signals/Series1/Packed1/S/Signal");
const QString Big = QStringLiteral("DataProcessed/Dev/Signals/Series1/Big1");
constexpr std::size_t BigLength = 1'000'000; // 8 MB of float64

void appendSeries(HDF5Writer_V6& writer, hid_t dataset, std::size_t length, double (*value)(std::size_t))
{
    std::vector<double> values(length);
    for (std::size_t i = 0; i < length; ++i)
        values[i] = value(i);
    ASSERT_TRUE(writer.append(dataset, values.data(), {length})) << writer.lastError().toStdString();
    writer.closeDataset(dataset);
}

/// Root attributes of three kinds, a plain and a deflated dataset, and optionally an 8 MB one.
void writeFile(const QString& path, bool withBig)
{
    HDF5Writer_V6 writer;
    const hid_t file = writer.create(path);
    ASSERT_GE(file, 0) << writer.lastError().toStdString();
    ASSERT_TRUE(writer.writeAttribute(file, QStringLiteral("Experimenter"), QStringLiteral("Ana Ödegård")));
    ASSERT_TRUE(writer.writeAttribute(file, QStringLiteral("Gain"), 2.5));
    ASSERT_TRUE(writer.writeAttribute(file, QStringLiteral("Grid"),
                                      std::vector<std::int32_t>{1, 2, 3, 4, 5, 6}, 2, 3));
    // First, so that data lies after it: HDF5 gives back freed space only at the file's end.
    if (withBig) {
        const hid_t big = writer.createGroupPath(file, Big + QStringLiteral("/S"));
        const hid_t values = writer.create1D(big, ElementKind::Float64, QStringLiteral("Signal"), BigLength);
        appendSeries(writer, values, BigLength, [](std::size_t i) { return static_cast<double>(i); });
        writer.closeGroup(big);
    }

    const hid_t raw = writer.createGroupPath(file, QStringLiteral("DataAcquisition/Dev/Signals/Series1/S"));
    const hid_t signal = writer.create1D(raw, ElementKind::Float64, QStringLiteral("Signal"), 1000);
    ASSERT_TRUE(writer.writeAttribute(signal, QStringLiteral("Unit"), QStringLiteral("V")));
    appendSeries(writer, signal, 1000, [](std::size_t i) { return 0.25 * static_cast<double>(i); });
    writer.closeGroup(raw);

    const hid_t processed =
        writer.createGroupPath(file, QStringLiteral("DataProcessed/Dev/Signals/Series1/Packed1/S"));
    const hid_t packed = writer.createDataset(processed, ElementKind::Float64, QStringLiteral("Signal"), 1,
                                              {H5S_UNLIMITED}, {256}, {0}, 4);
    appendSeries(writer, packed, 5000, [](std::size_t i) { return static_cast<double>(i % 7); });
    writer.closeGroup(processed);
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList entriesOf(const test::TempDir& dir)
{
    return QDir(dir.path()).entryList(QDir::Files | QDir::Hidden);
}

/// Records the progress it gets and asks to stop once it reaches `cancelAt`.
class RecordingFeedback : public Feedback
{
public:
    explicit RecordingFeedback(int cancelAt = 101) : m_cancelAt(cancelAt) {}
    bool isCanceled() const override { return !percents.empty() && percents.back() >= m_cancelAt; }
    void setProgress(int percent) override { percents.push_back(percent); }
    std::vector<int> percents;

private:
    int m_cancelAt;
};

TEST(FileCompaction, GivesBackTheSpaceOfDeletedDataAndKeepsEverythingElse)
{
    test::TempDir dir;
    const QString path = dir.file(QStringLiteral("demo.orvel"));
    const QString reference = dir.file(QStringLiteral("never-had-it.orvel"));
    writeFile(path, true);
    writeFile(reference, false);
    QVariantMap rootBefore;
    {
        HDF5Writer_V6 writer;
        ASSERT_GE(writer.open(path), 0);
        ASSERT_TRUE(writer.deleteLink(writer.fileId(), Big));
        rootBefore = writer.readAllAttributes(writer.fileId());
    }
    // Deleting alone gives nothing back.
    const qint64 deletedSize = QFileInfo(path).size();
    ASSERT_GT(deletedSize, qint64(BigLength * sizeof(double)));
    const auto permissions = QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ReadGroup;
    ASSERT_TRUE(QFile::setPermissions(path, permissions));
    const QFileDevice::Permissions permissionsBefore = QFile::permissions(path);

    RecordingFeedback feedback;
    const FileCompaction::Result result = FileCompaction::compact(path, &feedback);
    ASSERT_TRUE(result.ok) << result.reason.toStdString();
    EXPECT_TRUE(result.error.isEmpty());
    EXPECT_EQ(result.sizeBefore, deletedSize);
    EXPECT_EQ(result.sizeAfter, QFileInfo(path).size());
    // About the size of a file that never had the big dataset (a few kB of layout apart).
    EXPECT_LT(std::abs(result.sizeAfter - QFileInfo(reference).size()), 16 * 1024);
    EXPECT_EQ(QFile::permissions(path), permissionsBefore);
    // Two root members: one report after each.
    EXPECT_EQ(feedback.percents, (std::vector<int>{50, 100}));
    EXPECT_EQ(entriesOf(dir),
              (QStringList{QStringLiteral("demo.orvel"), QStringLiteral("never-had-it.orvel")}));

    HDF5Reader_V6 reader;
    ASSERT_GE(reader.open(path), 0);
    const hid_t file = reader.fileId();
    EXPECT_EQ(reader.readAllAttributes(file), rootBefore);
    EXPECT_EQ(reader.readAttribute(file, QStringLiteral("Experimenter")).toString(),
              QStringLiteral("Ana Ödegård"));
    EXPECT_EQ(reader.attributeDimensions(file, QStringLiteral("Grid")), (std::vector<hsize_t>{2, 3}));
    EXPECT_EQ(reader.readAttribute(file, QStringLiteral("Grid")).toList(), (QVariantList{1, 2, 3, 4, 5, 6}));
    EXPECT_FALSE(reader.exists(file, Big));

    const hid_t raw = reader.openDataset(file, Raw);
    std::vector<double> values;
    ASSERT_TRUE(reader.read(raw, values));
    ASSERT_EQ(values.size(), 1000u);
    EXPECT_EQ(values[999], 249.75);
    EXPECT_EQ(reader.readAttribute(raw, QStringLiteral("Unit")).toString(), QStringLiteral("V"));
    reader.closeDataset(raw);

    const hid_t packed = reader.openDataset(file, Packed);
    ASSERT_TRUE(reader.read(packed, values));
    ASSERT_EQ(values.size(), 5000u);
    EXPECT_EQ(values[4999], 1.0); // 4999 = 7 * 714 + 1
    EXPECT_EQ(reader.chunkDimensions(packed), (std::vector<hsize_t>{256}));
    EXPECT_EQ(reader.deflateLevel(packed), 4);
    EXPECT_EQ(reader.maximumDimensions(packed), (std::vector<hsize_t>{H5S_UNLIMITED}));
    reader.closeDataset(packed);
}

TEST(FileCompaction, AFailureOrACancelLeavesTheOriginalAsItWas)
{
    test::TempDir dir;
    // Not an HDF5 file at all.
    const QString notes = dir.file(QStringLiteral("notes.orvel"));
    {
        QFile file(notes);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("plain text, no data file\n");
    }
    FileCompaction::Result result = FileCompaction::compact(notes);
    EXPECT_FALSE(result.ok);
    EXPECT_EQ(result.error, QStringLiteral("Failed to repack file <b>notes.orvel</b>."));
    EXPECT_FALSE(result.reason.isEmpty());
    EXPECT_EQ(contentOf(notes), QByteArray("plain text, no data file\n"));

    // A root link that leads nowhere fails the copy after the new file was begun.
    const QString broken = dir.file(QStringLiteral("broken.orvel"));
    writeFile(broken, false);
    {
        HDF5Writer_V6 writer;
        ASSERT_GE(writer.open(broken), 0);
        ASSERT_GE(H5Lcreate_soft("/Nowhere", writer.fileId(), "Zlink", H5P_DEFAULT, H5P_DEFAULT), 0);
    }
    const QByteArray brokenBefore = contentOf(broken);
    result = FileCompaction::compact(broken);
    EXPECT_FALSE(result.ok);
    EXPECT_FALSE(result.canceled);
    EXPECT_EQ(result.error, QStringLiteral("Failed to repack file <b>broken.orvel</b>."));
    EXPECT_EQ(contentOf(broken), brokenBefore);

    // A cancel after the first of the two root members.
    const QString canceled = dir.file(QStringLiteral("canceled.orvel"));
    writeFile(canceled, true);
    const QByteArray canceledBefore = contentOf(canceled);
    RecordingFeedback feedback(50);
    result = FileCompaction::compact(canceled, &feedback);
    EXPECT_TRUE(result.canceled);
    EXPECT_FALSE(result.ok);
    EXPECT_TRUE(result.error.isEmpty());
    EXPECT_EQ(contentOf(canceled), canceledBefore);

    // No new file stays behind.
    EXPECT_EQ(entriesOf(dir), (QStringList{QStringLiteral("broken.orvel"), QStringLiteral("canceled.orvel"),
                                           QStringLiteral("notes.orvel")}));
}

} // namespace
} // namespace zarvi
