#include "behavior/operations/tracking/FrameTracking.h"

#include <gtest/gtest.h>

#include <opencv2/imgproc.hpp>

namespace zarvi {
namespace {

constexpr std::uint8_t Kept = 255;

/// The mask value of a uniform frame of `colour` (blurring a uniform frame changes nothing).
std::uint8_t maskOfUniform(cv::Scalar colour, const ThresholdSettings& settings)
{
    const cv::Mat frame(16, 16, CV_8UC3, colour);
    cv::Mat mask, work;
    EXPECT_TRUE(thresholdMask(frame, settings, mask, work));
    return mask.at<std::uint8_t>(8, 8);
}

ThresholdSettings grey(double low, double high)
{
    return {std::nullopt, std::nullopt, ThresholdRange{low, high}};
}

ThresholdSettings colour(ThresholdRange hue, ThresholdRange saturation, ThresholdRange value)
{
    return {hue, saturation, value};
}

TEST(ContourChoice, LargestIntegralAreaWinsWithTheLastOfEqualIntegralParts)
{
    const std::vector<double> equal{10.0, 10.0};
    EXPECT_EQ(chooseContour(equal), 0) << "of two areas of exactly 10 the first stays";
    const std::vector<double> sameIntegralPart{10.7, 10.4};
    EXPECT_EQ(chooseContour(sameIntegralPart), 1) << "10.4 found after 10.7 replaces it";
    const std::vector<double> zeros{0.0, 0.0, 0.0};
    EXPECT_EQ(chooseContour(zeros), -1);
    EXPECT_EQ(chooseContour({}), -1);
    // 5 is kept as 5, 12.9 as 12; 12.5 > 12 replaces it, and 13 > 12 replaces that.
    const std::vector<double> growing{5.0, 12.9, 12.5, 13.0};
    EXPECT_EQ(chooseContour(growing), 3);
    const std::vector<double> smallerLater{5.0, 12.9, 12.5, 12.0, 4.0};
    EXPECT_EQ(chooseContour(smallerLater), 2);
    const std::vector<double> half{0.0, 0.5};
    EXPECT_EQ(chooseContour(half), 1);
}

TEST(ContourChoice, PositionOfTheLargestContourIsItsCentroidTruncated)
{
    cv::Mat mask = cv::Mat::zeros(40, 60, CV_8UC1);
    // Pixels x 10..21, y 5..10: the outline's corners enclose 11 x 5 with centroid (15.5, 7.5).
    cv::rectangle(mask, cv::Point(10, 5), cv::Point(21, 10), cv::Scalar(Kept), cv::FILLED);
    // A 3 x 3 square elsewhere encloses 4.
    cv::rectangle(mask, cv::Point(40, 30), cv::Point(42, 32), cv::Scalar(Kept), cv::FILLED);
    std::vector<std::vector<cv::Point>> contours;
    const FramePosition found = findAnimal(mask, contours);
    ASSERT_EQ(contours.size(), 2u);
    ASSERT_GE(found.contour, 0);
    EXPECT_DOUBLE_EQ(cv::contourArea(contours[static_cast<std::size_t>(found.contour)]), 55.0);
    EXPECT_EQ(found.position, cv::Point(15, 7));
}

TEST(ContourChoice, MaskWithoutAreaGivesNoPosition)
{
    cv::Mat mask = cv::Mat::zeros(40, 60, CV_8UC1);
    std::vector<std::vector<cv::Point>> contours;
    EXPECT_EQ(findAnimal(mask, contours).position, cv::Point(-1, -1));
    // Single pixels and a line one pixel wide: contours that enclose nothing.
    mask.at<std::uint8_t>(3, 3) = Kept;
    mask.at<std::uint8_t>(20, 50) = Kept;
    cv::line(mask, cv::Point(10, 30), cv::Point(40, 30), cv::Scalar(Kept));
    const FramePosition found = findAnimal(mask, contours);
    EXPECT_EQ(contours.size(), 3u);
    EXPECT_EQ(found.contour, -1);
    EXPECT_EQ(found.position, cv::Point(-1, -1));
}

TEST(ThresholdMask, GreyBoundsAreTruncatedColourBoundsAreNot)
{
    // 20.2 % of 255 is 51.51: truncated to 51 in grey, read as 52 by the 8-bit colour test.
    EXPECT_EQ(maskOfUniform(cv::Scalar::all(51), grey(0, 20.2)), Kept);
    EXPECT_EQ(maskOfUniform(cv::Scalar::all(52), grey(0, 20.2)), 0);
    EXPECT_EQ(maskOfUniform(cv::Scalar::all(50), grey(20.2, 100)), 0);
    EXPECT_EQ(maskOfUniform(cv::Scalar::all(51), grey(20.2, 100)), Kept);
    // A grey pixel has hue 0 and saturation 0; its value is its level.
    const ThresholdRange anyHue{0, 180}, anySaturation{0, 100};
    EXPECT_EQ(maskOfUniform(cv::Scalar::all(52), colour(anyHue, anySaturation, {0, 20.2})), Kept);
    EXPECT_EQ(maskOfUniform(cv::Scalar::all(53), colour(anyHue, anySaturation, {0, 20.2})), 0);
    // Without a Saturation range the test stays grey.
    EXPECT_EQ(
        maskOfUniform(cv::Scalar::all(52), ThresholdSettings{anyHue, std::nullopt, ThresholdRange{0, 20.2}}),
        0);
}

TEST(ThresholdMask, ColourModeReadsTheFrameAsRgb)
{
    const ThresholdRange saturated{90, 100}, bright{90, 100};
    // Blue-green-red (0, 0, 255) is red in the video; read as RGB it is blue, hue 240° / 2 = 120.
    const cv::Scalar red(0, 0, 255), blue(255, 0, 0), green(0, 255, 0);
    EXPECT_EQ(maskOfUniform(red, colour({115, 125}, saturated, bright)), Kept);
    EXPECT_EQ(maskOfUniform(red, colour({0, 5}, saturated, bright)), 0);
    EXPECT_EQ(maskOfUniform(blue, colour({0, 5}, saturated, bright)), Kept);
    EXPECT_EQ(maskOfUniform(green, colour({55, 65}, saturated, bright)), Kept);
    // Saturation: a grey pixel has none.
    EXPECT_EQ(maskOfUniform(cv::Scalar::all(240), colour({0, 180}, saturated, bright)), 0);

    const cv::Mat deep(8, 8, CV_16UC3, cv::Scalar(0, 0, 60000));
    cv::Mat mask, work;
    EXPECT_FALSE(thresholdMask(deep, colour({0, 180}, {0, 100}, {0, 100}), mask, work));
}

TEST(ThresholdMask, FourChannelsLoseAlphaAndNoValueRangeUsesTheFrameAsItIs)
{
    cv::Mat bgr(30, 40, CV_8UC3, cv::Scalar::all(230));
    cv::circle(bgr, cv::Point(20, 15), 6, cv::Scalar::all(20), cv::FILLED);
    cv::Mat bgra;
    cv::cvtColor(bgr, bgra, cv::COLOR_BGR2BGRA);
    // An alpha that varies over the frame plays no part.
    for (int y = 0; y < bgra.rows; ++y)
        for (int x = 0; x < bgra.cols; ++x)
            bgra.at<cv::Vec4b>(y, x)[3] = static_cast<std::uint8_t>(7 * x + 3 * y);
    cv::Mat fromBgr, fromBgra, work;
    ASSERT_TRUE(thresholdMask(bgr, grey(0, 50), fromBgr, work));
    ASSERT_TRUE(thresholdMask(bgra, grey(0, 50), fromBgra, work));
    EXPECT_EQ(cv::countNonZero(fromBgr != fromBgra), 0);
    EXPECT_GT(cv::countNonZero(fromBgr), 0);

    cv::Mat frame = cv::Mat::zeros(4, 4, CV_8UC3);
    frame.at<cv::Vec3b>(1, 2) = cv::Vec3b(0, 0, 5);
    frame.at<cv::Vec3b>(3, 0) = cv::Vec3b(9, 0, 0);
    cv::Mat mask;
    ASSERT_TRUE(thresholdMask(frame, ThresholdSettings{}, mask, work));
    ASSERT_EQ(mask.type(), CV_8UC1);
    EXPECT_EQ(cv::countNonZero(mask), 2);
    EXPECT_EQ(mask.at<std::uint8_t>(1, 2), Kept);
    EXPECT_EQ(mask.at<std::uint8_t>(3, 0), Kept);
}

TEST(ThresholdMask, FullFramesGetExactlyTheWholeFrameBlur)
{
    // A video-sized frame (the blur is then worked in bands) of noise over shapes: every
    // grey level is met, so a blur one off anywhere shows at some bound.
    cv::Mat frame(480, 640, CV_8UC3);
    cv::randu(frame, cv::Scalar::all(0), cv::Scalar::all(256));
    cv::circle(frame, cv::Point(320, 240), 90, cv::Scalar(10, 200, 40), cv::FILLED);
    cv::rectangle(frame, cv::Point(0, 0), cv::Point(639, 30), cv::Scalar::all(250), cv::FILLED);
    cv::Mat levels, blurred, hsv, blurredHsv;
    cv::cvtColor(frame, levels, cv::COLOR_BGR2GRAY);
    cv::GaussianBlur(levels, blurred, cv::Size(), 3, 3, cv::BORDER_REFLECT_101);
    cv::Mat mask, work, expected;
    for (int level = 0; level < 256; ++level) {
        // The percent whose bound truncates to `level`.
        const double percent = (level + 0.5) * 100 / 255;
        ASSERT_TRUE(thresholdMask(frame, grey(0, percent), mask, work));
        cv::inRange(blurred, 0, level, expected);
        ASSERT_EQ(cv::countNonZero(mask != expected), 0) << "level " << level;
    }

    cv::cvtColor(frame, hsv, cv::COLOR_RGB2HSV);
    cv::GaussianBlur(hsv, blurredHsv, cv::Size(), 3, 3, cv::BORDER_REFLECT_101);
    for (int hue = 0; hue <= 170; hue += 10) {
        const ThresholdSettings settings = colour({double(hue), hue + 10.0}, {20, 80}, {10, 90});
        ASSERT_TRUE(thresholdMask(frame, settings, mask, work));
        cv::inRange(blurredHsv, cv::Scalar(hue, 20 * 255 / 100.0, 10 * 255 / 100.0),
                    cv::Scalar(hue + 10, 80 * 255 / 100.0, 90 * 255 / 100.0), expected);
        ASSERT_EQ(cv::countNonZero(mask != expected), 0) << "hue " << hue;
    }

    cv::Mat deep(480, 640, CV_16UC1);
    cv::randu(deep, cv::Scalar(0), cv::Scalar(300));
    cv::GaussianBlur(deep, blurred, cv::Size(), 3, 3, cv::BORDER_REFLECT_101);
    for (int level : {120, 140, 150, 160, 180}) {
        ASSERT_TRUE(thresholdMask(deep, grey(0, (level + 0.5) * 100 / 255), mask, work));
        cv::inRange(blurred, 0, level, expected);
        ASSERT_EQ(cv::countNonZero(mask != expected), 0) << "16-bit level " << level;
    }
}

TEST(ThresholdMask, SparseScenesGetExactlyTheWholeFrameBlur)
{
    // Dark discs on a light noisy floor, one at the frame's edge; then the same light on dark.
    cv::Mat floor(480, 640, CV_8UC1);
    cv::randu(floor, cv::Scalar(120), cv::Scalar(256));
    cv::Mat dark = floor.clone(), spots(480, 640, CV_8UC1);
    cv::randu(spots, cv::Scalar(0), cv::Scalar(60));
    cv::Mat discs = cv::Mat::zeros(480, 640, CV_8UC1);
    cv::circle(discs, cv::Point(200, 300), 20, cv::Scalar(255), cv::FILLED);
    cv::circle(discs, cv::Point(5, 470), 12, cv::Scalar(255), cv::FILLED);
    spots.copyTo(dark, discs);
    cv::Mat light = 255 - dark;
    cv::Mat blurredDark, blurredLight, mask, work, expected;
    cv::GaussianBlur(dark, blurredDark, cv::Size(), 3, 3, cv::BORDER_REFLECT_101);
    cv::GaussianBlur(light, blurredLight, cv::Size(), 3, 3, cv::BORDER_REFLECT_101);
    for (int level = 0; level < 256; ++level) {
        const double percent = (level + 0.5) * 100 / 255;
        ASSERT_TRUE(thresholdMask(dark, grey(0, percent), mask, work));
        cv::inRange(blurredDark, 0, level, expected);
        ASSERT_EQ(cv::countNonZero(mask != expected), 0) << "dark up to " << level;
        ASSERT_TRUE(thresholdMask(light, grey(percent, 100), mask, work));
        cv::inRange(blurredLight, level, 255, expected);
        ASSERT_EQ(cv::countNonZero(mask != expected), 0) << "light from " << level;
    }
}

TEST(AnimalSize, LongerSideOfTheSmallestRotatedRectangle)
{
    EXPECT_EQ(estimateAnimalSize({{0, 0}, {30, 0}, {30, 10}, {0, 10}}), 30);
    // Sides √(20² + 20²) = 28.28 and √(10² + 10²) = 14.14.
    EXPECT_EQ(estimateAnimalSize({{0, 20}, {20, 0}, {30, 10}, {10, 30}}), 28);
    EXPECT_EQ(estimateAnimalSize({{4, 4}}), 1);
}

} // namespace
} // namespace zarvi
