#include "DataFileTestSupport.h"
#include "common/TempDir.h"
#include "datafile/DataFileTree.h"
#include "datafile/HDF5Reader_V6.h"
#include "datafile/HDF5Writer_V6.h"

#include <QDateTime>
#include <QProcess>

using namespace zarvi;
using zarvi::test::expectSameVariant;
using zarvi::test::openIdentifierCount;
using zarvi::test::TempDir;

TEST(HDF5Structure, CreatedFileCarriesTheProgramIdentity)
{
    TempDir dir;
    const QString path = dir.file(QStringLiteral("identity.orvel"));
    {
        HDF5Writer_V6 writer;
        ASSERT_GE(writer.create(path), 0) << writer.lastError().toStdString();
    }
    HDF5Reader_V6 reader;
    ASSERT_GE(reader.open(path), 0) << reader.lastError().toStdString();
    EXPECT_EQ(reader.readAttribute(reader.fileId(), "SoftwareName"), QVariant(QStringLiteral("zarvi")));
    EXPECT_EQ(reader.readAttribute(reader.fileId(), "SoftwareVersion"), QVariant(QStringLiteral("2.0.8.1")));
    const QDateTime created =
        QDateTime::fromString(reader.readAttribute(reader.fileId(), "Created").toString());
    ASSERT_TRUE(created.isValid());
    EXPECT_LE(qAbs(created.secsTo(QDateTime::currentDateTime())), 120);
    EXPECT_TRUE(reader.children(reader.fileId()).isEmpty());
}

TEST(HDF5Structure, AttributeIsReplacedByAnotherType)
{
    TempDir dir;
    HDF5Writer_V6 writer;
    const hid_t file = writer.create(dir.file(QStringLiteral("replace.orvel")));
    ASSERT_GE(file, 0);
    const hid_t group = writer.createGroup(file, QStringLiteral("G"));
    ASSERT_GE(group, 0);

    ASSERT_TRUE(writer.writeAttribute(group, "X", QStringLiteral("text")));
    expectSameVariant(writer.readAttribute(group, "X"), QStringLiteral("text"), "string");
    EXPECT_TRUE(writer.attributeDimensions(group, "X").empty());

    ASSERT_TRUE(writer.writeAttribute(group, "X", 7));
    expectSameVariant(writer.readAttribute(group, "X"), 7, "int");

    ASSERT_TRUE(writer.writeAttribute(group, "X", QVariantList{1.5, 2.5, 3}));
    expectSameVariant(writer.readAttribute(group, "X"), QVariantList{1.5, 2.5, 3.0}, "double list");
    EXPECT_EQ(writer.attributeDimensions(group, "X"), std::vector<hsize_t>{3});

    // A kind that cannot be written fails and leaves the old value in place.
    EXPECT_FALSE(writer.writeAttribute(group, "X", QDate(2024, 1, 2)));
    EXPECT_FALSE(writer.lastError().isEmpty());
    EXPECT_FALSE(writer.writeAttribute(group, "X", QVariantList{1, QStringLiteral("a")}));
    EXPECT_EQ(writer.attributeDimensions(group, "X"), std::vector<hsize_t>{3});

    // An integer matrix reads back row after row; values that do not fill it are refused.
    ASSERT_TRUE(writer.writeAttribute(group, "X", std::vector<std::int32_t>{1, 2, 3, 4, 5, -6}, 3, 2));
    expectSameVariant(writer.readAttribute(group, "X"), QVariantList{1, 2, 3, 4, 5, -6}, "int matrix");
    EXPECT_EQ(writer.attributeDimensions(group, "X"), (std::vector<hsize_t>{3, 2}));
    EXPECT_FALSE(writer.writeAttribute(group, "X", std::vector<std::int32_t>{1, 2, 3}, 2, 2));
    EXPECT_EQ(writer.attributeDimensions(group, "X"), (std::vector<hsize_t>{3, 2}));

    ASSERT_TRUE(writer.renameAttribute(group, "X", "Y"));
    EXPECT_FALSE(writer.attributeExists(group, "X"));
    EXPECT_TRUE(writer.attributeExists(group, "Y"));
    EXPECT_TRUE(writer.deleteAttribute(group, "Y"));
    EXPECT_FALSE(writer.deleteAttribute(group, "Y"));
    EXPECT_FALSE(writer.readAttribute(group, "Y").isValid());
    EXPECT_TRUE(writer.closeGroup(group));
}

TEST(HDF5Structure, EveryAttributeKindRoundTripsAndH5dumpReadsTheFile)
{
    TempDir dir;
    const QString path = dir.file(QStringLiteral("attributes.orvel"));
    // written value, value read back
    const QList<std::pair<QVariant, QVariant>> cases{
        {QStringLiteral("Grüße µm"), QStringLiteral("Grüße µm")},
        {42, 42},
        {true, 1},
        {4000000000u, qlonglong(4000000000)},
        {qlonglong(1) << 40, qlonglong(1) << 40},
        {0.25, 0.25},
        {1.5f, 1.5},
        {QStringList{"a", "bé"}, QStringList{"a", "bé"}},
        {QVariantList{1, 2, 3}, QVariantList{1, 2, 3}},
        {QVariantList{1, 2.5}, QVariantList{1.0, 2.5}},
        {QVariantList{qlonglong(1) << 40, 1}, QVariantList{qlonglong(1) << 40, qlonglong(1)}},
        {QVariantList{QStringLiteral("x"), QStringLiteral("y")}, QStringList{"x", "y"}},
        {QVariant::fromValue(QList<int>{4, -5}), QVariantList{4, -5}},
        {QVariant::fromValue(QList<double>{0.5, 1}), QVariantList{0.5, 1.0}},
        {QVariant::fromValue(QList<qlonglong>{-1, 2}), QVariantList{qlonglong(-1), qlonglong(2)}},
        {QStringList{}, QStringList{}},
        {QVariantList{}, QVariantList{}},
        // One stored element reads back as a single value.
        {QVariantList{9}, 9},
    };
    {
        HDF5Writer_V6 writer;
        const hid_t file = writer.create(path);
        ASSERT_GE(file, 0);
        const hid_t dataset = writer.create1D(file, ElementKind::Float64, QStringLiteral("Values"), 10);
        ASSERT_GE(dataset, 0);
        for (qsizetype i = 0; i < cases.size(); ++i)
            ASSERT_TRUE(writer.writeAttribute(dataset, QStringLiteral("A%1").arg(i), cases[i].first))
                << i << writer.lastError().toStdString();
        EXPECT_EQ(writer.attributeDimensions(dataset, "A15"), std::vector<hsize_t>{0});
        writer.closeDataset(dataset);
    }
    HDF5Reader_V6 reader;
    const hid_t file = reader.open(path);
    ASSERT_GE(file, 0);
    const hid_t dataset = reader.openDataset(file, QStringLiteral("Values"));
    const QVariantMap all = reader.readAllAttributes(dataset);
    ASSERT_EQ(all.size(), cases.size());
    for (qsizetype i = 0; i < cases.size(); ++i)
        expectSameVariant(all.value(QStringLiteral("A%1").arg(i)), cases[i].second,
                          QStringLiteral("A%1").arg(i));
    reader.closeFile();

    const QString h5dump = QStringLiteral(ZARVI_H5DUMP);
    if (h5dump.isEmpty())
        GTEST_SKIP() << "h5dump not found";
    QProcess dump;
    dump.start(h5dump, {path});
    ASSERT_TRUE(dump.waitForFinished(60000));
    EXPECT_EQ(dump.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(dump.exitCode(), 0) << dump.readAllStandardError().toStdString();
}

TEST(HDF5Structure, GroupsLinksAndTheirOrder)
{
    TempDir dir;
    HDF5Writer_V6 writer;
    const hid_t file = writer.create(dir.file(QStringLiteral("structure.orvel")));
    ASSERT_GE(file, 0);
    const long long identifiersBefore = openIdentifierCount();

    const hid_t group = writer.createGroup(file, QStringLiteral("G"));
    EXPECT_TRUE(writer.children(group).isEmpty());
    for (const char* name : {"b", "A", "a"})
        writer.closeGroup(writer.createGroup(group, QString::fromLatin1(name)));
    EXPECT_EQ(writer.children(group), (QStringList{"A", "a", "b"}));
    EXPECT_LT(writer.createGroup(group, QStringLiteral("b")), 0);
    for (const QString& bad : {QStringLiteral("x/y"), QStringLiteral("x\\y")}) {
        EXPECT_LT(writer.createGroup(group, bad), 0);
        EXPECT_TRUE(writer.lastError().contains(QStringLiteral("forbidden")))
            << writer.lastError().toStdString();
    }
    EXPECT_EQ(writer.children(group).size(), 3);
    writer.closeGroup(group);

    const hid_t deep = writer.createGroupPath(file, QStringLiteral("P/Q/R"));
    ASSERT_GE(deep, 0);
    writer.closeGroup(deep);
    writer.closeGroup(writer.createGroupPath(file, QStringLiteral("/P/Q/S")));
    EXPECT_EQ(writer.children(file), (QStringList{"G", "P"}));
    EXPECT_EQ(writer.objectKind(file, QStringLiteral("P/Q/S")), ObjectKind::Group);

    const hid_t time = writer.create1D(file, ElementKind::Float64, QStringLiteral("P/Q/R/Time"), 10);
    ASSERT_GE(time, 0);
    EXPECT_TRUE(writer.writeAttribute(time, "Unit", QStringLiteral("s")));
    writer.closeDataset(time);
    EXPECT_EQ(writer.objectKind(file, QStringLiteral("P/Q/R/Time")), ObjectKind::Dataset);

    ASSERT_TRUE(writer.move(file, QStringLiteral("P/Q/R/Time"), QStringLiteral("P/Q/S/Moved")));
    EXPECT_FALSE(writer.exists(file, QStringLiteral("P/Q/R/Time")));
    EXPECT_FALSE(writer.move(file, QStringLiteral("P/Q/R/Time"), QStringLiteral("P/Q/S/Other")));

    ASSERT_TRUE(writer.copy(file, QStringLiteral("P/Q/S"), file, QStringLiteral("Copy")));
    EXPECT_TRUE(writer.exists(file, QStringLiteral("P/Q/S/Moved")));
    const hid_t copied = writer.openDataset(file, QStringLiteral("Copy/Moved"));
    ASSERT_GE(copied, 0);
    EXPECT_EQ(writer.readAttribute(copied, "Unit"), QVariant(QStringLiteral("s")));
    writer.closeDataset(copied);
    EXPECT_FALSE(writer.copy(file, QStringLiteral("P"), file, QStringLiteral("Copy")));

    EXPECT_TRUE(writer.deleteLink(file, QStringLiteral("Copy")));
    EXPECT_FALSE(writer.exists(file, QStringLiteral("Copy")));
    EXPECT_FALSE(writer.exists(file, QStringLiteral("Copy/Moved")));
    EXPECT_FALSE(writer.deleteLink(file, QStringLiteral("Copy")));
    EXPECT_EQ(writer.lastError(), QStringLiteral("Path not found in file: Copy"));

    // Into another file, with attributes.
    HDF5Writer_V6 other;
    const hid_t otherFile = other.create(dir.file(QStringLiteral("other.orvel")));
    ASSERT_TRUE(writer.copy(file, QStringLiteral("P"), otherFile, QStringLiteral("P")));
    const hid_t far = other.openDataset(otherFile, QStringLiteral("P/Q/S/Moved"));
    EXPECT_EQ(other.readAttribute(far, "Unit"), QVariant(QStringLiteral("s")));
    other.closeDataset(far);
    other.closeFile();

    EXPECT_TRUE(writer.flush());
    EXPECT_EQ(openIdentifierCount(), identifiersBefore);
}

// Hard links can make a group its own member or reach one group from two places; a valid
// file all the same. The tree walks each group once: 2 groups, 1 dataset and 2 links back
// to A make 5 nodes, the links back without members.
TEST(HDF5Structure, TreeWalksEachGroupOnceThroughHardLinks)
{
    TempDir dir;
    HDF5Writer_V6 writer;
    const hid_t file = writer.create(dir.file(QStringLiteral("links.orvel")));
    ASSERT_GE(file, 0);
    const hid_t a = writer.createGroup(file, QStringLiteral("A"));
    const hid_t b = writer.createGroup(file, QStringLiteral("B"));
    writer.closeDataset(writer.create1D(a, ElementKind::Float64, QStringLiteral("x"), 3));
    ASSERT_GE(H5Lcreate_hard(a, ".", a, "loop", H5P_DEFAULT, H5P_DEFAULT), 0);
    ASSERT_GE(H5Lcreate_hard(a, ".", b, "shared", H5P_DEFAULT, H5P_DEFAULT), 0);
    writer.closeGroup(a);
    writer.closeGroup(b);
    const long long identifiersBefore = openIdentifierCount();

    const std::vector<DataFileNode> nodes = DataFileTree::collect(writer);
    QStringList paths;
    for (const DataFileNode& node : nodes)
        paths << node.path;
    EXPECT_EQ(paths, (QStringList{"A", "A/loop", "A/x", "B", "B/shared"}));
    EXPECT_EQ(nodes[1].kind, ObjectKind::Group);
    EXPECT_EQ(nodes[1].depth, 1);
    EXPECT_EQ(openIdentifierCount(), identifiersBefore);
}
