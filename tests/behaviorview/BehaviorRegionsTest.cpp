// The arena, zones and calibration kept on a video videoLink and in the parameters of a
// "Measures" run: what is written is read back, and bad parameters are refused.
#include "common/TempDir.h"

#include "behavior/BehaviorRegions.h"
#include "datafile/HDF5Reader_V6.h"
#include "datafile/HDF5Writer_V6.h"
#include "definitions/BehaviorViewDefinitions.h"
#include "framework/ParameterValues.h"

#include <gtest/gtest.h>

using namespace zarvi;

namespace {

using BD = BehaviorViewDefinitions;

const QString videoLink = QStringLiteral("DataConverted/Camera/Video/Series1/Video1");

RoiShape shape(RoiKind kind, std::vector<cv::Point> points, const QString& name = QString(), int number = 0)
{
    return RoiShape{kind, std::move(points), number, name};
}

void expectSameShape(const RoiShape& read, const RoiShape& written)
{
    EXPECT_EQ(read.kind, written.kind);
    EXPECT_EQ(read.points, written.points);
    EXPECT_EQ(read.label(), written.label());
}

class BehaviorRegionsTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        HDF5Writer_V6 writer;
        ASSERT_GE(writer.create(file), 0);
        const hid_t group = writer.createGroupPath(writer.fileId(), videoLink);
        ASSERT_GE(group, 0);
        writer.closeGroup(group);
    }

    bool write(const BehaviorRegions& regions)
    {
        HDF5Writer_V6 writer;
        QString error;
        const bool ok =
            writer.open(file) >= 0 && BehaviorRegionStore::write(writer, videoLink, regions, error);
        EXPECT_TRUE(error.isEmpty()) << error.toStdString();
        return ok;
    }

    BehaviorRegions read()
    {
        HDF5Reader_V6 reader;
        EXPECT_GE(reader.open(file), 0);
        BehaviorRegions regions;
        QString error;
        EXPECT_TRUE(BehaviorRegionStore::read(reader, videoLink, regions, error)) << error.toStdString();
        return regions;
    }

    test::TempDir dir;
    QString file = dir.file(QStringLiteral("regions.orvel"));
};

} // namespace

TEST_F(BehaviorRegionsTest, ZonesArenaAndCalibrationAreStoredAndReadBack)
{
    BehaviorRegions regions;
    regions.arena = shape(RoiKind::Polygon, {{10, 10}, {300, 12}, {290, 200}, {15, 190}}, BD::arenaName(), 1);
    for (int k = 1; k <= 11; ++k)
        regions.zones.push_back(shape(k % 2 ? RoiKind::Rectangle : RoiKind::Circle,
                                      {{20 + k, 30}, {40 + k, 50}}, QStringLiteral("Zone%1").arg(k), k));
    regions.calibration = shape(RoiKind::Line, {{20, 220}, {220, 220}}, QString(), 1);
    regions.calibrationCentimetres = 40.0;
    ASSERT_TRUE(write(regions));

    const BehaviorRegions back = read();
    ASSERT_TRUE(back.arena.has_value());
    expectSameShape(*back.arena, *regions.arena);
    // Zone10 and Zone11 come after Zone9, in the order they were numbered.
    ASSERT_EQ(back.zones.size(), regions.zones.size());
    for (std::size_t k = 0; k < regions.zones.size(); ++k)
        expectSameShape(back.zones[k], regions.zones[k]);
    ASSERT_TRUE(back.calibration.has_value());
    EXPECT_EQ(back.calibration->points, regions.calibration->points);
    EXPECT_DOUBLE_EQ(back.calibrationCentimetres, 40.0);
    EXPECT_DOUBLE_EQ(back.pixelsPerCentimetre(), 5.0);

    // Writing fewer regions removes the others from the videoLink.
    BehaviorRegions fewer;
    fewer.zones = {regions.zones[2]};
    ASSERT_TRUE(write(fewer));
    const BehaviorRegions left = read();
    EXPECT_FALSE(left.arena.has_value());
    EXPECT_FALSE(left.calibration.has_value());
    EXPECT_EQ(left.calibrationCentimetres, 0.0);
    ASSERT_EQ(left.zones.size(), 1u);
    expectSameShape(left.zones[0], regions.zones[2]);
    ASSERT_TRUE(write(BehaviorRegions{}));
    HDF5Reader_V6 reader;
    ASSERT_GE(reader.open(file), 0);
    EXPECT_FALSE(reader.exists(reader.fileId(), videoLink + QStringLiteral("/Zones")));
}

TEST(BehaviorRegionParameters, RoundTripAndRefusals)
{
    BehaviorRegions regions;
    regions.arena = shape(RoiKind::Circle, {{320, 240}, {520, 240}}, BD::arenaName(), 1);
    regions.zones = {shape(RoiKind::Rectangle, {{150, 100}, {250, 200}}, QStringLiteral("Zone1"), 1)};
    regions.calibration = shape(RoiKind::Line, {{100, 400}, {500, 400}}, QString(), 1);
    regions.calibrationCentimetres = 80.0;
    const QVariantMap parameters = BehaviorRegionStore::toParameters(regions);
    EXPECT_EQ(parameters.value(BD::ArenaCoordinates).toList(), (QVariantList{320, 240, 520, 240}));
    EXPECT_EQ(parameters.value(BD::ArenaRoiShape).toString(), QStringLiteral("Circle"));

    BehaviorRegions back;
    QString error;
    ASSERT_TRUE(BehaviorRegionStore::fromParameters(ParameterValues(parameters), back, error))
        << error.toStdString();
    expectSameShape(*back.arena, *regions.arena);
    ASSERT_EQ(back.zones.size(), 1u);
    expectSameShape(back.zones[0], regions.zones[0]);
    EXPECT_DOUBLE_EQ(back.pixelsPerCentimetre(), 5.0);

    // Unnamed zones are named by their place in the list.
    QVariantMap unnamed{{BD::Zones, QStringLiteral(R"([{"Shape": "Rectangle", "Points": [[1, 1], [5, 5]]},
                                                       {"Shape": "Circle", "Points": [[20, 20], [20, 25]]}])")}};
    ASSERT_TRUE(BehaviorRegionStore::fromParameters(ParameterValues(unnamed), back, error))
        << error.toStdString();
    ASSERT_EQ(back.zones.size(), 2u);
    EXPECT_EQ(back.zones[1].label(), QStringLiteral("Zone2"));
    EXPECT_FALSE(back.arena.has_value());

    auto refused = [&](QVariantMap bad) {
        BehaviorRegions ignored;
        QString message;
        EXPECT_FALSE(BehaviorRegionStore::fromParameters(ParameterValues(bad), ignored, message));
        return message;
    };
    QVariantMap bad = parameters;
    bad.insert(BD::ArenaCoordinates, QVariantList{320, 240, 520.5, 240});
    EXPECT_EQ(refused(bad),
              QStringLiteral("The arena coordinates are incorrect. <b>ArenaCoordinates</b> must hold "
                             "whole pixel pairs x, y."));
    bad = parameters;
    bad.insert(BD::ArenaCoordinates, QVariantList{10, 10, 50, 10, 30});
    EXPECT_TRUE(refused(bad).startsWith(QStringLiteral("The arena coordinates are incorrect.")));
    bad = parameters;
    bad.remove(BD::CalibrationLength);
    EXPECT_EQ(refused(bad), BD::badCalibrationMessage());
    bad = parameters;
    bad.insert(BD::CalibrationCoordinates, QVariantList{100, 400, 100, 400});
    EXPECT_EQ(refused(bad), BD::noCalibrationLengthMessage().arg(QStringLiteral("[100, 400, 100, 400]")));
    bad = parameters;
    bad.insert(BD::Zones, QStringLiteral(R"([{"Name": "A", "Shape": "Point", "Points": [[1, 1]]}])"));
    EXPECT_EQ(refused(bad), BD::zoneShapeMessage().arg(QStringLiteral("A"), QStringLiteral("Point")));
    bad.insert(BD::Zones, QStringLiteral(R"([{"Name": "A", "Shape": "Rectangle", "Points": [[1, 1], [4, 4]]},
                                             {"Name": "A", "Shape": "Rectangle", "Points": [[6, 6], [9, 9]]}])"));
    EXPECT_EQ(refused(bad), BD::duplicateZoneMessage().arg(QStringLiteral("A")));
}
