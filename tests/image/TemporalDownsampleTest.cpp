#include "image/operations/downsample/TemporalDownsample.h"

#include <gtest/gtest.h>

#include <vector>

namespace zarvi {
namespace {

using Method = TemporalDownsample::Method;

struct Output
{
    std::vector<double> first;
    std::vector<double> second;
    std::vector<double> times;
};

/// Runs the kernel as the process does: only the wanted frames, in order, then finish().
/// Frame k is 1 x 2 with the pixels a[k] and b[k], taken at 0.1 k s.
Output downsample(Method method, int factor, const std::vector<float>& a, const std::vector<float>& b)
{
    TemporalDownsample downsample(method, factor);
    Output output;
    auto collect = [&] {
        cv::Mat frame;
        downsample.frame().convertTo(frame, CV_64F);
        output.first.push_back(frame.at<double>(0, 0));
        output.second.push_back(frame.at<double>(0, 1));
        output.times.push_back(downsample.time());
    };
    for (std::size_t k = 0; k < a.size(); ++k) {
        if (!downsample.wantsFrame(k))
            continue;
        const cv::Mat frame = (cv::Mat_<float>(1, 2) << a[k], b[k]);
        if (downsample.add(frame, 0.1 * static_cast<double>(k)))
            collect();
    }
    if (downsample.finish())
        collect();
    return output;
}

TEST(TemporalDownsample, GroupsReducePixelWiseAndTheTrailingGroupAsItIs)
{
    // Factor 3 on 7 frames: groups {0, 1, 2}, {3, 4, 5} and the trailing {6}, at the
    // times of frames 0, 3 and 6. The two pixels peak in different frames.
    const std::vector<float> a{1, 2, 4, 10, 20, 60, 7};
    const std::vector<float> b{9, 3, 5, 40, 30, 10, 8};

    const Output mean = downsample(Method::Mean, 3, a, b);
    ASSERT_EQ(mean.first.size(), 3u);
    EXPECT_DOUBLE_EQ(mean.first[0], 7.0 / 3.0);
    EXPECT_DOUBLE_EQ(mean.first[1], 30.0);
    EXPECT_DOUBLE_EQ(mean.first[2], 7.0); // the trailing group divides by its own count
    EXPECT_DOUBLE_EQ(mean.second[0], 17.0 / 3.0);
    EXPECT_DOUBLE_EQ(mean.second[1], 80.0 / 3.0);
    EXPECT_DOUBLE_EQ(mean.second[2], 8.0);
    EXPECT_DOUBLE_EQ(mean.times[1], 0.3);
    EXPECT_DOUBLE_EQ(mean.times[2], 0.6);

    const Output sum = downsample(Method::Sum, 3, a, b);
    EXPECT_EQ(sum.first, (std::vector<double>{7, 90, 7}));
    EXPECT_EQ(sum.second, (std::vector<double>{17, 80, 8}));

    const Output minimum = downsample(Method::Minimum, 3, a, b);
    EXPECT_EQ(minimum.first, (std::vector<double>{1, 10, 7}));
    EXPECT_EQ(minimum.second, (std::vector<double>{3, 10, 8}));

    const Output maximum = downsample(Method::Maximum, 3, a, b);
    EXPECT_EQ(maximum.first, (std::vector<double>{4, 60, 7}));
    EXPECT_EQ(maximum.second, (std::vector<double>{9, 40, 8}));
    EXPECT_EQ(maximum.times, mean.times);
}

TEST(TemporalDownsample, MeanOfManyBrightFramesIsExact)
{
    // 1000 frames alternating 65534 and 65535 sum to 65534500, beyond float's exact
    // integers, yet their mean is exactly 65534.5.
    std::vector<float> values;
    for (int k = 0; k < 1000; ++k)
        values.push_back(k % 2 == 0 ? 65534.0f : 65535.0f);
    const Output out = downsample(Method::Mean, 1000, values, values);
    ASSERT_EQ(out.first.size(), 1u);
    EXPECT_EQ(out.first[0], 65534.5);
}

} // namespace
} // namespace zarvi
