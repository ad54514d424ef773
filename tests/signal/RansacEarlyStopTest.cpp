#include "common/SampleStatistics.h"
#include "signal/operations/photometry/RansacLineFit.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <random>
#include <vector>

namespace zarvi {
namespace {

struct Model
{
    double a = 0.0, b = 0.0, c = 0.0;
    std::size_t inliers = 0;
    long long iterations = 0;
};

/// The fit written out plainly: every model counted over every sample.
Model plainFit(const std::vector<double>& x, const std::vector<double>& y, double threshold)
{
    const std::size_t n = x.size();
    const double sx = test::sampleDeviation(x), sy = test::sampleDeviation(y);
    const auto draw = [n] {
        return static_cast<std::size_t>(((std::rand() >> 16) & 0x7FFF) / 32767.0 * (n - 1));
    };
    Model best;
    long long required = 1000;
    while (best.iterations < required) {
        double a, b, c;
        for (;;) {
            const std::size_t i = draw(), j = draw();
            a = y[i] - y[j];
            b = x[j] - x[i];
            c = -(x[j] - x[i]) * y[i] - x[i] * (y[i] - y[j]);
            const bool close = std::fabs(x[i] - x[j]) < 0.5 * sx && std::fabs(y[i] - y[j]) < 0.5 * sy;
            if (!close && -a / b >= 0.0 && -a / b <= sy / sx)
                break;
        }
        std::size_t count = 0;
        for (std::size_t k = 0; k < n; ++k)
            count += std::fabs(a * x[k] + b * y[k] + c) < threshold ? 1 : 0;
        if (count >= best.inliers) {
            best.a = a;
            best.b = b;
            best.c = c;
            best.inliers = count;
        }
        ++best.iterations;
        const double w = static_cast<double>(best.inliers) / static_cast<double>(n);
        required = best.inliers == 0
                       ? 1000
                       : std::max(1000LL, static_cast<long long>(std::log(0.001) / std::log(1.0 - w * w)));
    }
    return best;
}

TEST(RansacLineFit, StoppingALosingCountEarlyChoosesTheModelOfAFullCount)
{
    // A noisy rising line with a tenth of the samples thrown far off it: many drawn models lose,
    // most of them long before the end of the samples.
    std::mt19937 generator(11);
    std::normal_distribution<double> noise(0.0, 0.05);
    std::uniform_real_distribution<double> offset(-3.0, 3.0);
    std::vector<double> x(50000), y(50000);
    for (std::size_t i = 0; i < x.size(); ++i) {
        x[i] = std::sin(0.001 * static_cast<double>(i)) + noise(generator);
        y[i] = 0.8 * x[i] + 0.2 + noise(generator) + (i % 10 == 3 ? offset(generator) : 0.0);
    }
    for (const double threshold : {0.02, 0.1, 0.5}) {
        std::srand(5);
        const Model expected = plainFit(x, y, threshold);
        std::srand(5);
        const RansacLineFit::Result fit = RansacLineFit::fit(x, y, threshold, nullptr);
        ASSERT_TRUE(fit.outcome.ok());
        EXPECT_EQ(fit.a, expected.a) << threshold;
        EXPECT_EQ(fit.b, expected.b) << threshold;
        EXPECT_EQ(fit.c, expected.c) << threshold;
        EXPECT_EQ(fit.inlierCount, expected.inliers) << threshold;
        EXPECT_EQ(fit.iterations, expected.iterations) << threshold;
    }
}

} // namespace
} // namespace zarvi
