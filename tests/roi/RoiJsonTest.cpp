#include "roi/RoiJson.h"

#include <QVariantList>
#include <QVariantMap>

#include <gtest/gtest.h>

using namespace zarvi;

namespace {

bool operator==(const RoiShape& a, const RoiShape& b)
{
    return a.kind == b.kind && a.points == b.points && a.name == b.name;
}

} // namespace

TEST(RoiJson, ReadsAnObjectAListAndEitherAsText)
{
    const QVariantMap rectangle{
        {QStringLiteral("Name"), QStringLiteral("ROI1")},
        {QStringLiteral("Shape"), QStringLiteral("Rectangle")},
        {QStringLiteral("Points"), QVariantList{QVariantList{10, 12}, QVariantList{20.0, 30}}}};
    std::vector<RoiShape> rois;
    QString error;
    ASSERT_TRUE(roisFromJson(rectangle, rois, error)) << error.toStdString();
    ASSERT_EQ(rois.size(), 1u);
    EXPECT_EQ(rois[0].name, QStringLiteral("ROI1"));
    EXPECT_EQ(rois[0].kind, RoiKind::Rectangle);
    EXPECT_EQ(rois[0].points, (std::vector<cv::Point>{{10, 12}, {20, 30}}));

    ASSERT_TRUE(roisFromJson(QStringLiteral(R"([{"Shape": "Point", "Points": [[-3, 4]]},
        {"Name": "Cell", "Shape": "Polygon", "Points": [[0, 0], [5, 0], [2.0, 7]]}])"),
                             rois, error))
        << error.toStdString();
    ASSERT_EQ(rois.size(), 3u);
    EXPECT_TRUE(rois[1].name.isEmpty());
    EXPECT_EQ(rois[1].kind, RoiKind::Point);
    EXPECT_EQ(rois[1].points, (std::vector<cv::Point>{{-3, 4}}));
    EXPECT_EQ(rois[2].name, QStringLiteral("Cell"));
    EXPECT_EQ(rois[2].points, (std::vector<cv::Point>{{0, 0}, {5, 0}, {2, 7}}));

    ASSERT_TRUE(
        roisFromJson(QStringLiteral(R"({"Shape": "Line", "Points": [[1, 1], [1, 9]]})"), rois, error));
    EXPECT_EQ(rois.back().kind, RoiKind::Line);
}

TEST(RoiJson, RefusesWhatIsNotAnRoiAndSaysWhy)
{
    const std::vector<std::pair<QString, QString>> cases{
        {QStringLiteral("[{\"Shape\": "), QStringLiteral("not valid JSON")},
        {QStringLiteral(R"({"Shape": "Oval", "Points": [[1, 1]]})"),
         QStringLiteral(
             "the shape <b>&quot;Oval&quot;</b>; the shapes are Rectangle, Circle, Polygon, Freehand, Point, "
             "Line.")},
        {QStringLiteral(R"({"Name": "A", "Points": [[1, 1]]})"),
         QStringLiteral("ROI <b>1</b> (<b>A</b>) has no \"Shape\"")},
        {QStringLiteral(R"([{"Shape": "Point", "Points": [[1, 1]]}, {"Shape": "Point"}])"),
         QStringLiteral("ROI <b>2</b> has no \"Points\"")},
        {QStringLiteral(R"({"Shape": "Point", "Points": [[1, 1, 1]]})"),
         QStringLiteral(
             "Point <b>1</b> of ROI <b>1</b> is not a pair of whole numbers [x, y]: <b>[1,1,1]</b>.")},
        {QStringLiteral(R"({"Shape": "Line", "Points": [[1, 1], [2.5, 3]]})"),
         QStringLiteral(
             "Point <b>2</b> of ROI <b>1</b> is not a pair of whole numbers [x, y]: <b>[2.5,3]</b>.")},
        {QStringLiteral(R"({"Shape": "Line", "Points": [[1, 1], ["2", 3]]})"),
         QStringLiteral("<b>[&quot;2&quot;,3]</b>")},
        {QStringLiteral(R"({"Shape": "Line", "Points": [[1, 1], [3000000000, 3]]})"),
         QStringLiteral("not a pair of whole numbers")},
        {QStringLiteral(R"({"Shape": "Line", "Points": {"x": 1}})"),
         QStringLiteral("The \"Points\" of ROI <b>1</b> are not a list of [x, y] pairs")},
        {QStringLiteral(R"({"name": "A", "Shape": "Point", "Points": [[1, 1]]})"),
         QStringLiteral("the unknown key <b>name</b>")},
        {QStringLiteral(R"({"Name": 3, "Shape": "Point", "Points": [[1, 1]]})"),
         QStringLiteral("The \"Name\" of ROI <b>1</b> is not a text: <b>3</b>.")},
        {QStringLiteral(R"([[1, 2]])"), QStringLiteral("ROI <b>1</b> is not an object")},
    };
    for (const auto& [json, expected] : cases) {
        std::vector<RoiShape> rois(1);
        QString error;
        EXPECT_FALSE(roisFromJson(json, rois, error)) << json.toStdString();
        EXPECT_TRUE(error.contains(expected)) << json.toStdString() << " -> " << error.toStdString();
        EXPECT_EQ(rois.size(), 1u) << "nothing is added on failure: " << json.toStdString();
    }
    std::vector<RoiShape> rois;
    QString error;
    EXPECT_FALSE(roisFromJson(42, rois, error));
    EXPECT_TRUE(error.contains(QStringLiteral("or a list of them"))) << error.toStdString();
}

TEST(RoiJson, WritesTheDocumentedKeyOrderAndReadsItBack)
{
    RoiShape named;
    named.name = QStringLiteral("Say \"hi\"");
    named.kind = RoiKind::Circle;
    named.points = {{5, 5}, {5, 9}};
    RoiShape unnamed;
    unnamed.kind = RoiKind::Freehand;
    unnamed.points = {{0, 0}, {4, 0}, {2, -3}};
    const QString json = roisToJson({named, unnamed});
    EXPECT_EQ(json, QStringLiteral(R"([{"Name":"Say \"hi\"","Shape":"Circle","Points":[[5,5],[5,9]]},)"
                                   R"({"Shape":"Freehand","Points":[[0,0],[4,0],[2,-3]]}])"));
    std::vector<RoiShape> back;
    QString error;
    ASSERT_TRUE(roisFromJson(json, back, error)) << error.toStdString();
    ASSERT_EQ(back.size(), 2u);
    EXPECT_TRUE(back[0] == named);
    EXPECT_TRUE(back[1] == unnamed);
    EXPECT_EQ(roiToJson(unnamed), QStringLiteral(R"({"Shape":"Freehand","Points":[[0,0],[4,0],[2,-3]]})"));
}
