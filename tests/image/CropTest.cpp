#include "image/operations/crop/FrameCrop.h"

#include <gtest/gtest.h>

namespace zarvi {
namespace {

const cv::Size frame(8, 6);

TEST(Crop, RectanglesInsideTheFrameAreTakenAsGiven)
{
    cv::Rect rectangle;
    EXPECT_EQ(cropRectangle({0, 0, 8, 6}, frame, rectangle), CropProblem::None);
    EXPECT_EQ(rectangle, cv::Rect(0, 0, 8, 6));
    EXPECT_EQ(cropRectangle({2, 1, 3, 4}, frame, rectangle), CropProblem::None);
    EXPECT_EQ(rectangle, cv::Rect(2, 1, 3, 4));
    // Touching the right and bottom edges is still inside.
    EXPECT_EQ(cropRectangle({7, 5, 1, 1}, frame, rectangle), CropProblem::None);
    EXPECT_EQ(rectangle, cv::Rect(7, 5, 1, 1));
}

TEST(Crop, CoordinatesThatDefineNoRectangleAreIncorrect)
{
    cv::Rect rectangle(9, 9, 9, 9);
    for (const std::vector<double>& coordinates : std::vector<std::vector<double>>{{},
                                                                                   {0, 0, 2},
                                                                                   {0, 0, 2, 2, 2},
                                                                                   {0.5, 0, 2, 2},
                                                                                   {0, 0, 2, 2.25},
                                                                                   {0, 0, 0, 2},
                                                                                   {0, 0, 2, -1},
                                                                                   {-3, 0, 0, 2}})
        EXPECT_EQ(cropRectangle(coordinates, frame, rectangle), CropProblem::BadCoordinates)
            << ::testing::PrintToString(coordinates);
    EXPECT_EQ(rectangle, cv::Rect(9, 9, 9, 9));
}

TEST(Crop, RectanglesReachingOutOfTheFrameAreOutside)
{
    cv::Rect rectangle;
    for (const std::vector<double>& coordinates : std::vector<std::vector<double>>{{-1, 0, 2, 2},
                                                                                   {0, -1, 2, 2},
                                                                                   {7, 0, 2, 2},
                                                                                   {0, 5, 2, 2},
                                                                                   {0, 0, 9, 6},
                                                                                   {0, 0, 8, 7},
                                                                                   {2e9, 0, 2e9, 1}})
        EXPECT_EQ(cropRectangle(coordinates, frame, rectangle), CropProblem::OutsideFrame)
            << ::testing::PrintToString(coordinates);
}

} // namespace
} // namespace zarvi
