#include "MotionTestImages.h"

#include "image/operations/motioncorrection/FrameRegistration.h"
#include "image/operations/motioncorrection/PlainRegistration.h"

#include <gtest/gtest.h>

#include <opencv2/imgproc.hpp>

namespace zarvi {
namespace {

bool sameShift(FrameShift a, FrameShift b)
{
    return a.x == b.x && a.y == b.y;
}

/// The fast path, set up as a run sets it up.
FrameShift correctFast(const cv::Mat& frame, const cv::Mat& reference, int bitCount, cv::Mat& corrected)
{
    FrameRegistration registration(std::make_shared<const MotionReference>(reference, bitCount));
    return registration.correct(frame, corrected);
}

TEST(MotionCorrection, TheScaleBringsEveryDepthToSixteenBits)
{
    EXPECT_DOUBLE_EQ(registrationScale(16), 1.0);
    EXPECT_DOUBLE_EQ(registrationScale(8), 257.0); // 65535 / 255
    EXPECT_DOUBLE_EQ(registrationScale(12), 65535.0 / 4095.0);
}

TEST(MotionCorrection, PeaksInTheUpperHalfAreNegativeDisplacements)
{
    EXPECT_EQ(unwrapPeak(0, 512), 0);
    EXPECT_EQ(unwrapPeak(255, 512), 255);
    EXPECT_EQ(unwrapPeak(256, 512), -256); // index >= size / 2
    EXPECT_EQ(unwrapPeak(509, 512), -3);
    EXPECT_EQ(unwrapPeak(2, 7), 2);
    EXPECT_EQ(unwrapPeak(3, 7), -4); // 7 / 2 is 3
    // The partial DFT's frequencies: 0, 1, ..., then negative from the middle on.
    EXPECT_EQ(signedFrequency(1, 4), 1);
    EXPECT_EQ(signedFrequency(2, 4), -2);
    EXPECT_EQ(signedFrequency(2, 5), 2);
    EXPECT_EQ(signedFrequency(3, 5), -2);
}

TEST(MotionCorrection, TheFirstOfEqualMaximaInRowMajorOrderWins)
{
    cv::Mat values(3, 4, CV_32F, cv::Scalar(1));
    values.at<float>(2, 0) = 5;
    values.at<float>(1, 3) = 5;
    EXPECT_EQ(firstMaximum(values), cv::Point(3, 1));
}

TEST(MotionCorrection, AFrameEqualToTheReferenceHasNoShiftAndStaysAsItIs)
{
    cv::Mat frame(64, 64, CV_32F);
    cv::RNG(3).fill(frame, cv::RNG::UNIFORM, 0, 4096);
    frame = test::asStored(frame);
    cv::Mat plain, fast;
    for (const FrameShift shift :
         {correctPlain(frame, frame, 12, plain), correctFast(frame, frame, 12, fast)}) {
        EXPECT_EQ(shift.x, 0.0f);
        EXPECT_EQ(shift.y, 0.0f);
    }
    EXPECT_EQ(cv::norm(plain, frame, cv::NORM_INF), 0.0);
    EXPECT_EQ(cv::norm(fast, frame, cv::NORM_INF), 0.0);
}

TEST(MotionCorrection, WholePixelMovesAreFoundAndUndoneWithTheUncoveredStripZero)
{
    // Moved right and down, a peak in the lower half; moved left and up, a peak in the
    // upper half of the correlation, which gives negative shifts.
    const cv::Mat reference = test::cellScene(128, 36);
    for (const cv::Point move : {cv::Point(5, 3), cv::Point(-3, -7), cv::Point(0, 6)}) {
        SCOPED_TRACE(testing::Message() << "moved by " << move);
        const cv::Mat frame = test::translated(reference, move.x, move.y);
        cv::Mat corrected;
        const FrameShift shift = correctFast(frame, reference, 16, corrected);
        EXPECT_EQ(shift.x, static_cast<float>(move.x));
        EXPECT_EQ(shift.y, static_cast<float>(move.y));
        cv::Mat plain;
        EXPECT_TRUE(sameShift(correctPlain(frame, reference, 16, plain), shift));
        // Pixel (x, y) of the corrected frame comes from (x + dx, y + dy) of the frame:
        // the reference's pixel where that lies inside the frame, 0 where it does not.
        for (int y = 0; y < 128; ++y)
            for (int x = 0; x < 128; ++x) {
                const bool covered =
                    x + move.x >= 0 && x + move.x < 128 && y + move.y >= 0 && y + move.y < 128;
                ASSERT_EQ(corrected.at<float>(y, x), covered ? reference.at<float>(y, x) : 0.0f)
                    << "at " << x << ", " << y;
            }
    }
}

TEST(MotionCorrection, SubpixelMovesAreFoundToTheNearestSixth)
{
    const cv::Mat image = test::smoothRandomImage(160, 40);
    const cv::Mat reference = test::asStored(image);
    const cv::Point2d moves[] = {{0.52, -1.15}, {3.31, 2.85}, {-2.68, 0.18}, {-0.35, -3.5}};
    for (const cv::Point2d move : moves) {
        SCOPED_TRACE(testing::Message() << "moved by " << move);
        const cv::Mat frame = test::asStored(test::fourierShifted(image, move.x, move.y));
        cv::Mat corrected;
        const FrameShift shift = correctFast(frame, reference, 16, corrected);
        EXPECT_LE(std::abs(shift.x - move.x), 1.0 / 12.0);
        EXPECT_LE(std::abs(shift.y - move.y), 1.0 / 12.0);
        EXPECT_NEAR(shift.x * 6.0, std::round(shift.x * 6.0), 1e-5);
        EXPECT_NEAR(shift.y * 6.0, std::round(shift.y * 6.0), 1e-5);
    }
}

TEST(MotionCorrection, TheTranslationMovesPixelsExactlyAsTheAffineWarp)
{
    // Whole, sixth and arbitrary shifts, some beyond the frame, on odd and even sizes.
    cv::RNG rng(7);
    for (const cv::Size size : {cv::Size(64, 64), cv::Size(37, 21), cv::Size(2, 3)}) {
        cv::Mat frame(size, CV_32F);
        rng.fill(frame, cv::RNG::UNIFORM, 0, 65535);
        for (int k = 0; k < 200; ++k) {
            const float range = 1.2f * static_cast<float>(std::max(size.width, size.height));
            FrameShift shift{static_cast<float>(rng.uniform(-range, range)),
                             static_cast<float>(rng.uniform(-range, range))};
            if (k % 3 == 0)
                shift = {std::round(shift.x * 6.0f) / 6.0f, std::round(shift.y * 6.0f) / 6.0f};
            else if (k % 3 == 1)
                shift = {std::round(shift.x), std::round(shift.y)};
            cv::Mat warped, translated;
            shiftFrame(frame, shift, warped);
            translateFrame(frame, shift, translated);
            ASSERT_EQ(cv::countNonZero(warped != translated), 0)
                << size << " shifted by " << shift.x << ", " << shift.y;
        }
    }
}

TEST(MotionCorrection, TheFastPathFindsTheShiftsOfThePlainOneBitForBit)
{
    // Odd and even sizes (the packed spectrum differs), 8 and 16 bits, moving detail and
    // pure noise (whose correlation has no clear peak).
    struct Case
    {
        int size;
        int bitCount;
    };
    for (const Case c : {Case{96, 16}, Case{97, 8}, Case{64, 12}}) {
        SCOPED_TRACE(testing::Message() << c.size << " pixels, " << c.bitCount << " bits");
        const int top = (1 << c.bitCount) - 1;
        cv::Mat image = test::smoothRandomImage(c.size, 20, c.size);
        image = image * (top / 4000.0);
        const cv::Mat reference = test::asStored(image);
        cv::RNG rng(c.size);
        const auto reg = std::make_shared<const MotionReference>(reference, c.bitCount);
        FrameRegistration registration(reg);
        for (int k = 0; k < 12; ++k) {
            cv::Mat frame;
            if (k % 3 == 2) {
                frame.create(c.size, c.size, CV_32F);
                rng.fill(frame, cv::RNG::UNIFORM, 0, top);
                frame = test::asStored(frame);
            } else {
                frame = test::asStored(
                    test::fourierShifted(image, rng.uniform(-4.0, 4.0), rng.uniform(-4.0, 4.0)));
            }
            cv::Mat plain, fast;
            const FrameShift expected = correctPlain(frame, reference, c.bitCount, plain);
            const FrameShift found = registration.correct(frame, fast);
            EXPECT_TRUE(sameShift(found, expected)) << "frame " << k << ": " << found.x << ", " << found.y
                                                    << " vs " << expected.x << ", " << expected.y;
            EXPECT_EQ(cv::norm(fast, plain, cv::NORM_INF), 0.0);
        }
    }
}

} // namespace
} // namespace zarvi
