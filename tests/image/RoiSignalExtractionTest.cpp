#include "image/operations/roisignals/RoiSignalExtraction.h"

#include <gtest/gtest.h>

namespace zarvi {
namespace {

TEST(RoiSignalExtraction, EachRoiGetsTheMeanOfItsFilledPixelsInEveryFrame)
{
    // Frame k holds x + 10 y + k at pixel (x, y).
    const cv::Size size(12, 9);
    const RoiShape rectangle{RoiKind::Rectangle, {{1, 1}, {3, 2}}, 1, QStringLiteral("ROI1")};
    const RoiShape triangle{RoiKind::Polygon, {{5, 3}, {9, 3}, {5, 7}}, 2, QStringLiteral("ROI2")};
    RoiSignalExtraction extraction({triangle, rectangle}, size, 3);
    for (int k = 0; k < 3; ++k) {
        cv::Mat frame(size, CV_32F);
        for (int y = 0; y < size.height; ++y)
            for (int x = 0; x < size.width; ++x)
                frame.at<float>(y, x) = static_cast<float>(x + 10 * y + k);
        extraction.add(frame);
    }
    ASSERT_EQ(extraction.roiCount(), 2u);
    // The rectangle: x 1..3 (mean 2), y 1..2 (mean 1.5): 2 + 15 + k.
    // The triangle: the 15 pixels with dx + dy <= 4 from (5, 3); by symmetry dx and dy both
    // average 20 / 15, so the mean is (5 + 4/3) + 10 (3 + 4/3) + k.
    const double triangleMean = 5.0 + 4.0 / 3.0 + 10.0 * (3.0 + 4.0 / 3.0);
    for (std::size_t k = 0; k < 3; ++k) {
        EXPECT_NEAR(extraction.values(1)[k], 17.0 + static_cast<double>(k), 1e-9);
        EXPECT_NEAR(extraction.values(0)[k], triangleMean + static_cast<double>(k), 1e-9);
    }
}

} // namespace
} // namespace zarvi
