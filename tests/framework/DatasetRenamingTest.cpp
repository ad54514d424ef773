// Renaming a result in a real file: the link moves with its members and attributes, and
// names the file cannot take, or paths that are no result, change nothing.
#include "framework/DatasetRenaming.h"
#include "common/TempDir.h"
#include "datafile/HDF5Reader_V6.h"
#include "datafile/HDF5Writer_V6.h"

#include <gtest/gtest.h>

namespace zarvi {
namespace {

const QString Series = QStringLiteral("DataProcessed/Dev/Signals/Series1");

void writeResults(const QString& path)
{
    HDF5Writer_V6 writer;
    ASSERT_GE(writer.create(path), 0);
    for (const QString& result : {QStringLiteral("Filtered1"), QStringLiteral("Filtered2")}) {
        const hid_t group = writer.createGroupPath(writer.fileId(),
                                                   Series + QLatin1Char('/') + result + QStringLiteral("/S"));
        ASSERT_TRUE(writer.writeAttribute(group, QStringLiteral("Username"), result));
        const hid_t signal = writer.create1D(group, ElementKind::Float64, QStringLiteral("Signal"), 3);
        const double values[] = {1.5, -2.0, 4.25};
        ASSERT_TRUE(writer.append(signal, values, {3}));
        ASSERT_TRUE(writer.writeAttribute(signal, QStringLiteral("Unit"), QStringLiteral("z-score")));
        writer.closeDataset(signal);
        writer.closeGroup(group);
    }
    writer.createGroupPath(writer.fileId(), QStringLiteral("DataAcquisition/Dev/Signals/Series1/S"));
}

TEST(DatasetRenaming, OnlyResultLevelsThatNoReaderFindsByNameAreRenamable)
{
    EXPECT_TRUE(DatasetRenaming::isRenamable(Series + QStringLiteral("/Filtered1")));
    EXPECT_TRUE(DatasetRenaming::isRenamable(Series + QStringLiteral("/Filtered1/S")));
    EXPECT_TRUE(DatasetRenaming::isRenamable(QStringLiteral("DataAnalyzed/Dev/Perievents1/Matrix")));
    EXPECT_TRUE(DatasetRenaming::isRenamable(QStringLiteral("DataProcessed/Dev")));
    for (const char* path :
         {"DataProcessed", "DataAnalyzed", "DataProcessed/Dev/Signals", "DataProcessed/Dev/Signals/Series1",
          "DataProcessed/Dev/Signals/Series1/Filtered1/S/Time",
          "DataProcessed/Dev/Signals/Series1/Filtered1/S/Signal", "DataAcquisition/Dev/Signals/Series1/S",
          "DataConverted/Dev", ""})
        EXPECT_FALSE(DatasetRenaming::isRenamable(QString::fromLatin1(path))) << path;
}

TEST(DatasetRenaming, MovesTheResultWithItsAttributesAndRefusesBadNames)
{
    test::TempDir dir;
    const QString file = dir.file(QStringLiteral("results.orvel"));
    writeResults(file);
    const QString old = Series + QStringLiteral("/Filtered1");

    const DatasetRenaming::Result renamed =
        DatasetRenaming::rename(file, old, QStringLiteral("Lowpass 5 Hz"));
    ASSERT_TRUE(renamed.error.isEmpty()) << renamed.error.toStdString();
    EXPECT_FALSE(renamed.busy);
    EXPECT_EQ(renamed.newPath, Series + QStringLiteral("/Lowpass 5 Hz"));
    {
        HDF5Reader_V6 reader;
        ASSERT_GE(reader.open(file), 0);
        EXPECT_FALSE(reader.exists(reader.fileId(), old));
        const hid_t group = reader.openGroup(reader.fileId(), renamed.newPath + QStringLiteral("/S"));
        EXPECT_EQ(reader.readAttribute(group, QStringLiteral("Username")).toString(),
                  QStringLiteral("Filtered1"));
        const hid_t signal = reader.openDataset(group, QStringLiteral("Signal"));
        std::vector<double> values;
        ASSERT_TRUE(reader.read(signal, values));
        EXPECT_EQ(values, (std::vector<double>{1.5, -2.0, 4.25}));
        EXPECT_EQ(reader.readAttribute(signal, QStringLiteral("Unit")).toString(), QStringLiteral("z-score"));
        reader.closeDataset(signal);
        reader.closeGroup(group);
    }

    const QString other = Series + QStringLiteral("/Filtered2");
    const struct
    {
        QString path;
        QString name;
        QString error;
    } refusals[] = {
        {other, QString(), QStringLiteral("The new name is empty.")},
        {other, QStringLiteral("  "), QStringLiteral("The new name is empty.")},
        {other, QStringLiteral("a/b"), QStringLiteral("A name cannot contain <b>/</b>.")},
        {other, QStringLiteral("a\\b"), QStringLiteral("A name cannot contain <b>\\</b>.")},
        {other, QStringLiteral("Lowpass 5 Hz"),
         QStringLiteral("<b>Lowpass 5 Hz</b> already exists in this group.")},
        {other, QStringLiteral("Series2"),
         QStringLiteral("<b>Series2</b> is a name the file keeps for its own levels and datasets.")},
        {other + QStringLiteral("/S/Time"), QStringLiteral("Clock"),
         QStringLiteral(
             "<b>%1/S/Time</b> cannot be renamed: only the results of processing and analyses can.")
             .arg(other)},
    };
    for (const auto& refusal : refusals) {
        const DatasetRenaming::Result result = DatasetRenaming::rename(file, refusal.path, refusal.name);
        EXPECT_EQ(result.error, refusal.error) << refusal.name.toStdString();
        EXPECT_TRUE(result.newPath.isEmpty());
    }
    HDF5Reader_V6 reader;
    ASSERT_GE(reader.open(file), 0);
    EXPECT_EQ(reader.children(reader.openGroup(reader.fileId(), Series)),
              (QStringList{QStringLiteral("Filtered2"), QStringLiteral("Lowpass 5 Hz")}));
}

} // namespace
} // namespace zarvi
