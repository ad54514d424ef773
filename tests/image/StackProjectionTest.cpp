#include "image/operations/stackprojection/StackProjection.h"

#include <gtest/gtest.h>

#include <vector>

namespace zarvi {
namespace {

using Method = StackProjection::Method;

/// The projection of frames of 1 x n pixels, pixel j of frame k being frames[k][j].
std::vector<double> project(Method method, const std::vector<std::vector<float>>& frames)
{
    StackProjection projection(method);
    for (const std::vector<float>& values : frames)
        projection.add(
            cv::Mat(1, static_cast<int>(values.size()), CV_32F, const_cast<float*>(values.data())));
    cv::Mat result;
    projection.result().convertTo(result, CV_64F);
    return {result.begin<double>(), result.end<double>()};
}

TEST(StackProjection, ASingleFrameProjectsToItself)
{
    const std::vector<std::vector<float>> frame{{0, 7, 65535}};
    for (Method method : {Method::Maximum, Method::Minimum, Method::Mean, Method::Sum})
        EXPECT_EQ(project(method, frame), (std::vector<double>{0, 7, 65535}));
    EXPECT_EQ(project(Method::StandardDeviation, frame), (std::vector<double>{0, 0, 0}));
}

TEST(StackProjection, ExtremesAndSumArePixelWise)
{
    // Each pixel takes its extremes in different frames.
    const std::vector<std::vector<float>> frames{{5, 1, 3}, {2, 9, 3}, {8, 4, 3}};
    EXPECT_EQ(project(Method::Maximum, frames), (std::vector<double>{8, 9, 3}));
    EXPECT_EQ(project(Method::Minimum, frames), (std::vector<double>{2, 1, 3}));
    EXPECT_EQ(project(Method::Sum, frames), (std::vector<double>{15, 14, 9}));
}

TEST(StackProjection, RunningMean)
{
    EXPECT_EQ(project(Method::Mean, {{10}, {20}}), std::vector<double>{15});
    // 1, 2, 4: A = 1, then (1 + 2) / 2 = 1.5, then (2 * 1.5 + 4) / 3 = 7 / 3 (held in float).
    EXPECT_EQ(project(Method::Mean, {{1}, {2}, {4}}), std::vector<double>{static_cast<float>(7.0 / 3.0)});
}

TEST(StackProjection, StandardDeviationIsThePopulationDeviation)
{
    // Eight frames. Pixel 0 alternates 1 and 3: mean 2, every squared deviation 1,
    // sqrt(8 / 8) = 1. Pixel 1 alternates 0 and 4: sqrt(32 / 8) = 2, where the sample
    // form would give sqrt(32 / 7) = 2.14. Pixel 2 runs 2, 4, 4, 4, 5, 5, 7, 9: mean 5,
    // squared deviations 9 + 1 + 1 + 1 + 0 + 0 + 4 + 16 = 32, sqrt(32 / 8) = 2.
    const std::vector<double> deviation =
        project(Method::StandardDeviation,
                {{1, 0, 2}, {3, 4, 4}, {1, 0, 4}, {3, 4, 4}, {1, 0, 5}, {3, 4, 5}, {1, 0, 7}, {3, 4, 9}});
    ASSERT_EQ(deviation.size(), 3u);
    EXPECT_NEAR(deviation[0], 1.0, 1e-12);
    EXPECT_NEAR(deviation[1], 2.0, 1e-12);
    EXPECT_NEAR(deviation[2], 2.0, 1e-12);
}

TEST(StackProjection, StandardDeviationOfABrightPixelKeepsItsSmallVariation)
{
    // 2000 frames alternating 65000 and 65002: deviation exactly 1, although the sum of
    // x^2 (8.45e12) dwarfs the variation.
    std::vector<std::vector<float>> frames;
    for (int k = 0; k < 2000; ++k)
        frames.push_back({k % 2 == 0 ? 65000.0f : 65002.0f});
    EXPECT_EQ(project(Method::StandardDeviation, frames)[0], 1.0);
}

} // namespace
} // namespace zarvi
