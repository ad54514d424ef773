#include "image/operations/removebackground/BackgroundRemoval.h"

#include <QVariantMap>

#include <gtest/gtest.h>

namespace zarvi {
namespace {

const cv::Size frameSize(6, 5);

bool accepts(const QVariant& coordinates)
{
    RoiShape region;
    return BackgroundRemoval::readRegion(coordinates, frameSize, region);
}

TEST(BackgroundRemoval, OneAreaShapeInsideTheFrameIsARegion)
{
    RoiShape region;
    ASSERT_TRUE(BackgroundRemoval::readRegion(
        QStringLiteral(R"({"Shape": "Rectangle", "Points": [[0, 0], [5, 4]]})"), frameSize, region));
    EXPECT_EQ(region.kind, RoiKind::Rectangle);
    EXPECT_EQ(region.points, (std::vector<cv::Point>{{0, 0}, {5, 4}}));
    // As a parameter file gives it: an object, and a list holding one.
    const QVariantMap circle{
        {QStringLiteral("Shape"), QStringLiteral("Circle")},
        {QStringLiteral("Points"), QVariantList{QVariantList{2, 2}, QVariantList{3, 2}}}};
    EXPECT_TRUE(accepts(circle));
    EXPECT_TRUE(accepts(QVariantList{circle}));
}

TEST(BackgroundRemoval, MissingUnreadableEmptyOrOutsideRegionsAreRefused)
{
    for (
        const char* json :
        {"", "not json", "[]", "{}", R"({"Shape": "Square", "Points": [[0, 0], [2, 2]]})",
         // Two regions, a point, a line, and shapes that enclose no area.
         R"([{"Shape": "Rectangle", "Points": [[0, 0], [2, 2]]}, {"Shape": "Rectangle", "Points": [[3, 3], [4, 4]]}])",
         R"({"Shape": "Point", "Points": [[2, 2]]})", R"({"Shape": "Line", "Points": [[0, 1], [4, 1]]})",
         R"({"Shape": "Rectangle", "Points": [[2, 0], [2, 4]]})",
         R"({"Shape": "Polygon", "Points": [[0, 0], [1, 1], [2, 2]]})",
         // Reaching one pixel past the frame, and a circle whose rim leaves it.
         R"({"Shape": "Rectangle", "Points": [[0, 0], [6, 4]]})",
         R"({"Shape": "Rectangle", "Points": [[-1, 0], [2, 2]]})",
         R"({"Shape": "Circle", "Points": [[1, 2], [3, 2]]})"})
        EXPECT_FALSE(accepts(QString::fromUtf8(json))) << json;
    EXPECT_FALSE(accepts(QVariant()));
}

TEST(BackgroundRemoval, AConstantBackgroundIsSubtractedAndDarkerPixelsGoToZero)
{
    // The top left 2 x 2 pixels hold c = 100; the others 50 (darker) or 1000.
    cv::Mat frame(frameSize, CV_32F, cv::Scalar(1000));
    frame(cv::Rect(0, 0, 2, 2)).setTo(100);
    frame.at<float>(4, 5) = 50;
    RoiShape region;
    ASSERT_TRUE(BackgroundRemoval::readRegion(
        QStringLiteral(R"({"Shape": "Rectangle", "Points": [[0, 0], [1, 1]]})"), frameSize, region));
    const BackgroundRemoval removal(region, frameSize);
    EXPECT_DOUBLE_EQ(removal.level(frame), 100.0);
    cv::Mat corrected, written;
    removal.apply(frame, corrected);
    ASSERT_EQ(corrected.type(), CV_64FC1);
    EXPECT_DOUBLE_EQ(corrected.at<double>(4, 5), -50.0);
    corrected.convertTo(written, CV_16U);
    cv::Mat expected(frameSize, CV_16U, cv::Scalar(900));
    expected(cv::Rect(0, 0, 2, 2)).setTo(0);
    expected.at<std::uint16_t>(4, 5) = 0;
    EXPECT_EQ(cv::countNonZero(written != expected), 0);
}

TEST(BackgroundRemoval, TheMeanIsTakenOverTheFilledOutline)
{
    // The triangle (0, 0), (4, 0), (0, 4), filled with its outline, holds the 15 pixels with
    // x + y <= 4: column x has 5 - x of them. With pixel values x the mean is
    // (0*5 + 1*4 + 2*3 + 3*2 + 4*1) / 15 = 20 / 15.
    cv::Mat frame(frameSize, CV_32F);
    for (int y = 0; y < frame.rows; ++y)
        for (int x = 0; x < frame.cols; ++x)
            frame.at<float>(y, x) = static_cast<float>(x);
    RoiShape region;
    ASSERT_TRUE(BackgroundRemoval::readRegion(
        QStringLiteral(R"({"Shape": "Polygon", "Points": [[0, 0], [4, 0], [0, 4]]})"), frameSize, region));
    EXPECT_NEAR(BackgroundRemoval(region, frameSize).level(frame), 20.0 / 15.0, 1e-12);
}

} // namespace
} // namespace zarvi
