#include "roi/RoiGeometry.h"

#include <opencv2/core.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

using namespace zarvi;

namespace {

RoiShape shape(RoiKind kind, std::vector<cv::Point> points)
{
    RoiShape roi;
    roi.kind = kind;
    roi.points = std::move(points);
    return roi;
}

cv::Mat maskOf(const RoiShape& roi, int width, int height)
{
    // Starts as anything but zeros, so that clearing it is part of what is tested.
    cv::Mat mask(height, width, CV_8UC1, cv::Scalar(7));
    fillRoiMask(roi, mask);
    return mask;
}

/// Every pixel is 255 where `inside` says so and 0 elsewhere.
template <typename Inside> void expectMask(const cv::Mat& mask, Inside inside)
{
    ASSERT_EQ(mask.type(), CV_8UC1);
    for (int y = 0; y < mask.rows; ++y)
        for (int x = 0; x < mask.cols; ++x)
            ASSERT_EQ(mask.at<uchar>(y, x), inside(x, y) ? 255 : 0) << "pixel (" << x << ", " << y << ")";
}

} // namespace

TEST(RoiGeometry, RectangleCoversItsCornersInclusively)
{
    // Corners given bottom-right first: x 2..7 and y 3..5, 6 x 3 = 18 pixels.
    const RoiShape rectangle = shape(RoiKind::Rectangle, {{7, 5}, {2, 3}});
    const cv::Mat mask = maskOf(rectangle, 12, 10);
    expectMask(mask, [](int x, int y) { return x >= 2 && x <= 7 && y >= 3 && y <= 5; });
    EXPECT_EQ(cv::countNonZero(mask), 18);
    EXPECT_EQ(roiBounds(rectangle), cv::Rect(2, 3, 6, 3));
    // Between pixel centres: 5 x 2.
    EXPECT_DOUBLE_EQ(roiArea(rectangle), 10.0);
}

TEST(RoiGeometry, SmallCirclesAreTheHandDrawnDiscs)
{
    // Radius 2 (rim at distance sqrt(5) = 2.24, rounded): the outline passes (2, 0),
    // (2, 1), (1, 1), (1, 2), ... around the centre, so the disc is the 5 x 5 square
    // without its four corners.
    const cv::Mat two = maskOf(shape(RoiKind::Circle, {{5, 5}, {6, 7}}), 11, 11);
    expectMask(two, [](int x, int y) {
        const int dx = std::abs(x - 5), dy = std::abs(y - 5);
        return dx <= 2 && dy <= 2 && !(dx == 2 && dy == 2);
    });
    EXPECT_EQ(cv::countNonZero(two), 21);
    // Radius 1 (rim at distance sqrt(2) = 1.41): the 3 x 3 square.
    const cv::Mat one = maskOf(shape(RoiKind::Circle, {{5, 5}, {6, 6}}), 11, 11);
    expectMask(one, [](int x, int y) { return std::abs(x - 5) <= 1 && std::abs(y - 5) <= 1; });
    // Radius 0: the centre alone.
    EXPECT_EQ(cv::countNonZero(maskOf(shape(RoiKind::Circle, {{5, 5}, {5, 5}}), 11, 11)), 1);
}

TEST(RoiGeometry, LargeCircleIsSymmetricWithThePlaneArea)
{
    const int r = 50;
    const RoiShape circle = shape(RoiKind::Circle, {{60, 60}, {60, 60 + r}});
    const cv::Mat mask = maskOf(circle, 121, 121);
    cv::Mat mirrored;
    for (int flip : {0, 1, -1}) {
        cv::flip(mask, mirrored, flip);
        EXPECT_EQ(cv::countNonZero(mask != mirrored), 0) << "flip " << flip;
    }
    cv::transpose(mask, mirrored);
    EXPECT_EQ(cv::countNonZero(mask != mirrored), 0) << "transposed";

    const double plane = std::numbers::pi * r * r;
    EXPECT_NEAR(roiArea(circle), plane, 0.01 * plane);
    // The mask takes in the pixels the rim passes through: between the discs of radius r - 1 and r + 1.
    const int pixels = cv::countNonZero(mask);
    EXPECT_GT(pixels, std::numbers::pi * (r - 1) * (r - 1));
    EXPECT_LT(pixels, std::numbers::pi * (r + 1) * (r + 1));
    EXPECT_EQ(roiBounds(circle), cv::Rect(10, 10, 2 * r + 1, 2 * r + 1));
    EXPECT_TRUE(isInsideImage(circle, 121, 121));
    // The rim point lies inside a 111-pixel-wide image, the circle's right edge (x = 110) does not.
    EXPECT_FALSE(isInsideImage(circle, 110, 121));
}

TEST(RoiGeometry, LoopInsideAPolygonLeavesAHole)
{
    // Around the square 0..20, along a bridge at y = 10 to the square 5..15, once around
    // it in the same turning sense, and back. Filling by crossings (even-odd) leaves the
    // inner square's interior, 6..14 in x and y, empty: 21 * 21 - 9 * 9 = 360 pixels;
    // a winding-number fill would have left no hole.
    const RoiShape loop = shape(RoiKind::Polygon, {{0, 0},
                                                   {20, 0},
                                                   {20, 20},
                                                   {0, 20},
                                                   {0, 10},
                                                   {5, 10},
                                                   {5, 5},
                                                   {15, 5},
                                                   {15, 15},
                                                   {5, 15},
                                                   {5, 10},
                                                   {0, 10}});
    const cv::Mat mask = maskOf(loop, 24, 24);
    expectMask(mask, [](int x, int y) {
        const bool outer = x <= 20 && y <= 20;
        const bool hole = x >= 6 && x <= 14 && y >= 6 && y <= 14;
        return outer && !hole;
    });
    EXPECT_EQ(cv::countNonZero(mask), 360);
}

TEST(RoiGeometry, PointsLinesAndIncompleteShapes)
{
    const RoiShape point = shape(RoiKind::Point, {{3, 4}});
    EXPECT_EQ(roiBounds(point), cv::Rect(3, 4, 1, 1));
    EXPECT_EQ(roiArea(point), 0.0);
    const cv::Mat pointMask = maskOf(point, 8, 8);
    expectMask(pointMask, [](int x, int y) { return x == 3 && y == 4; });

    const RoiShape line = shape(RoiKind::Line, {{1, 1}, {1, 5}});
    EXPECT_EQ(roiBounds(line), cv::Rect(1, 1, 1, 5));
    EXPECT_EQ(roiArea(line), 0.0);
    expectMask(maskOf(line, 8, 8), [](int x, int y) { return x == 1 && y >= 1 && y <= 5; });

    // A rectangle of three points, a polygon of two: no outline, nothing inside.
    for (const RoiShape& broken :
         {shape(RoiKind::Rectangle, {{1, 1}, {2, 2}, {3, 3}}), shape(RoiKind::Polygon, {{1, 1}, {4, 4}})}) {
        EXPECT_TRUE(roiOutline(broken).empty());
        EXPECT_TRUE(roiBounds(broken).empty());
        EXPECT_FALSE(isInsideImage(broken, 8, 8));
        EXPECT_EQ(cv::countNonZero(maskOf(broken, 8, 8)), 0);
    }
}

TEST(RoiGeometry, InsideImageAndValidation)
{
    const RoiShape corners = shape(RoiKind::Rectangle, {{0, 0}, {9, 9}});
    EXPECT_TRUE(isInsideImage(corners, 10, 10));
    EXPECT_FALSE(isInsideImage(corners, 9, 10));
    EXPECT_FALSE(isInsideImage(shape(RoiKind::Point, {{-1, 3}}), 10, 10));

    QString error;
    EXPECT_TRUE(validateRoi(corners, 10, 10, error)) << error.toStdString();
    RoiShape outside = shape(RoiKind::Rectangle, {{2, 3}, {10, 4}});
    outside.name = QStringLiteral("Soma");
    EXPECT_FALSE(validateRoi(outside, 10, 10, error));
    EXPECT_TRUE(error.contains(QStringLiteral("<b>Soma</b>"))) << error.toStdString();
    EXPECT_TRUE(error.contains(QStringLiteral("<b>(10, 3)</b>"))) << error.toStdString();

    EXPECT_FALSE(validateRoi(shape(RoiKind::Circle, {{1, 1}}), 10, 10, error));
    EXPECT_EQ(error, QStringLiteral("The <b>Circle</b> needs <b>2</b> points; it has <b>1</b>."));
    EXPECT_FALSE(validateRoi(shape(RoiKind::Freehand, {{1, 1}, {2, 2}}), 10, 10, error));
    EXPECT_EQ(error, QStringLiteral("The <b>Freehand</b> needs at least <b>3</b> points; it has <b>2</b>."));
    EXPECT_FALSE(validateRoi(shape(RoiKind::Point, {}), 10, 10, error));
    EXPECT_EQ(error, QStringLiteral("The <b>Point</b> needs <b>1</b> point; it has <b>0</b>."));
}
