#include "roi/RoiStore.h"
#include "common/TempDir.h"
#include "datafile/DataFileTestSupport.h"
#include "datafile/HDF5Reader_V6.h"
#include "datafile/HDF5Writer_V6.h"

#include <gtest/gtest.h>

#include <hdf5.h>

using namespace zarvi;
using zarvi::test::openIdentifierCount;
using zarvi::test::TempDir;

namespace {

const QString Sensor = QStringLiteral("DataConverted/Scope/Images/Series1/Cam");
const QString Stack = Sensor + QStringLiteral("/ImageStack");
const QString Rois = Sensor + QStringLiteral("/ROIs");
constexpr int Width = 64;
constexpr int Height = 40;

RoiShape shape(RoiKind kind, std::vector<cv::Point> points, const QString& name = QString())
{
    RoiShape roi;
    roi.kind = kind;
    roi.points = std::move(points);
    roi.name = name;
    return roi;
}

/// A data file with one empty 64 x 40 stack and, beside it, a 1-D signal.
QString stackFile(const TempDir& dir)
{
    const QString path = dir.file(QStringLiteral("rois.orvel"));
    HDF5Writer_V6 writer;
    EXPECT_GE(writer.create(path), 0);
    const hid_t sensor = writer.createGroupPath(writer.fileId(), Sensor);
    writer.closeDataset(
        writer.createImageStack(sensor, QStringLiteral("ImageStack"), Height, Width, 28, 16, 0));
    writer.closeDataset(writer.create1D(sensor, ElementKind::Float64, QStringLiteral("Signal"), 16));
    writer.closeGroup(sensor);
    return path;
}

/// The attribute's stored type, read with the library itself.
bool isStoredAsInt32(hid_t location, const char* name)
{
    const hid_t attribute = H5Aopen(location, name, H5P_DEFAULT);
    const hid_t type = H5Aget_type(attribute);
    const bool int32 = H5Tequal(type, H5T_STD_I32LE) > 0;
    H5Tclose(type);
    H5Aclose(attribute);
    return int32;
}

} // namespace

TEST(RoiStore, AddedRoisAreStoredAsDocumentedAndListedInNumberOrder)
{
    TempDir dir;
    const QString path = stackFile(dir);
    const long long identifiers = openIdentifierCount();
    {
        HDF5Writer_V6 writer;
        ASSERT_GE(writer.open(path), 0);
        int width = 0, height = 0;
        QString error;
        ASSERT_TRUE(RoiStore::imageSize(writer, Stack, width, height, error)) << error.toStdString();
        EXPECT_EQ(width, Width);
        EXPECT_EQ(height, Height);

        QString name;
        ASSERT_TRUE(RoiStore::add(writer, Stack, shape(RoiKind::Rectangle, {{1, 2}, {10, 20}}), width, height,
                                  name, error))
            << error.toStdString();
        EXPECT_EQ(name, QStringLiteral("ROI1"));
        QStringList names;
        ASSERT_TRUE(
            RoiStore::add(writer, Stack,
                          {shape(RoiKind::Polygon, {{5, 5}, {30, 6}, {12, 33}}, QStringLiteral("Soma")),
                           shape(RoiKind::Circle, {{32, 20}, {32, 28}}),
                           shape(RoiKind::Line, {{0, 39}, {63, 39}}, QStringLiteral("ROI10")),
                           shape(RoiKind::Point, {{63, 0}})},
                          width, height, names, error))
            << error.toStdString();
        // Unnamed shapes count on from the highest number in use, the batch's own included.
        EXPECT_EQ(names, (QStringList{"Soma", "ROI11", "ROI10", "ROI12"}));
    }
    EXPECT_EQ(openIdentifierCount(), identifiers);

    HDF5Reader_V6 reader;
    ASSERT_GE(reader.open(path), 0);
    std::vector<RoiShape> rois;
    QString error;
    ASSERT_TRUE(RoiStore::list(reader, Stack, rois, error)) << error.toStdString();
    ASSERT_EQ(rois.size(), 5u);
    const std::vector<std::pair<QString, RoiKind>> expected{{"ROI1", RoiKind::Rectangle},
                                                            {"ROI10", RoiKind::Line},
                                                            {"ROI11", RoiKind::Circle},
                                                            {"ROI12", RoiKind::Point},
                                                            {"Soma", RoiKind::Polygon}};
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(rois[i].name, expected[i].first);
        EXPECT_EQ(rois[i].kind, expected[i].second) << i;
    }
    EXPECT_EQ(rois[0].number, 1);
    EXPECT_EQ(rois[1].number, 10);
    EXPECT_EQ(rois[4].number, 0);
    EXPECT_EQ(rois[4].points, (std::vector<cv::Point>{{5, 5}, {30, 6}, {12, 33}}));
    EXPECT_EQ(rois[2].points, (std::vector<cv::Point>{{32, 20}, {32, 28}}));

    // The entry as a reader without this program sees it: a group whose attributes are
    // a [3, 2] int32 matrix of the points, the int32 shape code, and the name.
    ASSERT_EQ(reader.objectKind(reader.fileId(), Rois + QStringLiteral("/Soma")), ObjectKind::Group);
    const hid_t soma = reader.openGroup(reader.fileId(), Rois + QStringLiteral("/Soma"));
    EXPECT_EQ(reader.attributeDimensions(soma, "Coordinates"), (std::vector<hsize_t>{3, 2}));
    EXPECT_TRUE(isStoredAsInt32(soma, "Coordinates"));
    EXPECT_EQ(reader.readAttribute(soma, "Coordinates"), QVariant(QVariantList{5, 5, 30, 6, 12, 33}));
    EXPECT_TRUE(isStoredAsInt32(soma, "Shape"));
    EXPECT_EQ(reader.readAttribute(soma, "Shape"), QVariant(3));
    EXPECT_EQ(reader.readAttribute(soma, "Username"), QVariant(QStringLiteral("Soma")));
    reader.closeGroup(soma);
    const hid_t circle = reader.openGroup(reader.fileId(), Rois + QStringLiteral("/ROI11"));
    EXPECT_EQ(reader.readAttribute(circle, "Shape"), QVariant(2));
    reader.closeGroup(circle);
}

TEST(RoiStore, RefusedRoisWriteNothing)
{
    TempDir dir;
    const QString path = stackFile(dir);
    HDF5Writer_V6 writer;
    ASSERT_GE(writer.open(path), 0);
    QString error, name;
    QStringList names;

    // Outside the image, alone or in a batch with a good one: nothing, not even the ROIs group.
    EXPECT_FALSE(RoiStore::add(writer, Stack, shape(RoiKind::Rectangle, {{1, 2}, {64, 20}}), Width, Height,
                               name, error));
    EXPECT_TRUE(error.contains(QStringLiteral("outside the image of <b>64 x 40</b> pixels")))
        << error.toStdString();
    EXPECT_FALSE(RoiStore::add(writer, Stack,
                               {shape(RoiKind::Point, {{3, 3}}), shape(RoiKind::Circle, {{5, 5}, {11, 5}})},
                               Width, Height, names, error));
    EXPECT_TRUE(error.contains(QStringLiteral("<b>Circle</b>"))) << error.toStdString();
    EXPECT_FALSE(writer.exists(writer.fileId(), Rois));
    EXPECT_TRUE(names.isEmpty());

    // A name in use, twice in one batch, or holding a path separator.
    ASSERT_TRUE(RoiStore::add(writer, Stack, shape(RoiKind::Point, {{3, 3}}, QStringLiteral("A")), Width,
                              Height, name, error));
    EXPECT_FALSE(RoiStore::add(writer, Stack, shape(RoiKind::Point, {{4, 4}}, QStringLiteral("A")), Width,
                               Height, name, error));
    EXPECT_TRUE(error.contains(QStringLiteral("An ROI named <b>A</b> already exists")))
        << error.toStdString();
    EXPECT_FALSE(RoiStore::add(writer, Stack,
                               {shape(RoiKind::Point, {{4, 4}}, QStringLiteral("B")),
                                shape(RoiKind::Point, {{5, 5}}, QStringLiteral("B"))},
                               Width, Height, names, error));
    EXPECT_TRUE(error.contains(QStringLiteral("<b>B</b> is given to two ROIs"))) << error.toStdString();
    EXPECT_FALSE(RoiStore::add(writer, Stack, shape(RoiKind::Point, {{4, 4}}, QStringLiteral("a/b")), Width,
                               Height, name, error));
    EXPECT_TRUE(error.contains(QStringLiteral("<b>a/b</b> holds <b>/</b>"))) << error.toStdString();
    std::vector<RoiShape> rois;
    ASSERT_TRUE(RoiStore::list(writer, Stack, rois, error));
    ASSERT_EQ(rois.size(), 1u);
    EXPECT_EQ(rois[0].points, (std::vector<cv::Point>{{3, 3}}));

    // Not a stack: a 1-D dataset, a missing path.
    int width = 0, height = 0;
    EXPECT_FALSE(RoiStore::imageSize(writer, Sensor + QStringLiteral("/Signal"), width, height, error));
    EXPECT_TRUE(error.contains(QStringLiteral("is not an image stack"))) << error.toStdString();
    EXPECT_FALSE(RoiStore::list(writer, Sensor + QStringLiteral("/Missing"), rois, error));
    EXPECT_TRUE(error.contains(QStringLiteral("There is no image stack"))) << error.toStdString();
}

TEST(RoiStore, RemovingTheLastRoiRemovesTheGroup)
{
    TempDir dir;
    const QString path = stackFile(dir);
    HDF5Writer_V6 writer;
    ASSERT_GE(writer.open(path), 0);
    QString error;
    QStringList names;
    ASSERT_TRUE(RoiStore::add(writer, Stack,
                              {shape(RoiKind::Point, {{1, 1}}), shape(RoiKind::Point, {{2, 2}}),
                               shape(RoiKind::Point, {{3, 3}}, QStringLiteral("Bg"))},
                              Width, Height, names, error));
    ASSERT_TRUE(RoiStore::remove(writer, Stack, QStringLiteral("ROI1"), error)) << error.toStdString();
    EXPECT_FALSE(RoiStore::remove(writer, Stack, QStringLiteral("ROI1"), error));
    EXPECT_EQ(error,
              QStringLiteral("There is no ROI <b>ROI1</b> on <b>%1</b>; its ROIs are Bg, ROI2.").arg(Stack));

    std::vector<RoiShape> rois;
    ASSERT_TRUE(RoiStore::list(writer, Stack, rois, error));
    ASSERT_EQ(rois.size(), 2u);
    EXPECT_EQ(rois[0].name, QStringLiteral("ROI2"));
    EXPECT_EQ(rois[0].points, (std::vector<cv::Point>{{2, 2}}));

    ASSERT_TRUE(RoiStore::remove(writer, Stack, QStringLiteral("ROI2"), error));
    ASSERT_TRUE(RoiStore::remove(writer, Stack, QStringLiteral("Bg"), error));
    EXPECT_FALSE(writer.exists(writer.fileId(), Rois));
    rois.clear();
    EXPECT_TRUE(RoiStore::list(writer, Stack, rois, error));
    EXPECT_TRUE(rois.empty());
}
