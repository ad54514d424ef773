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

/// Returns the models the fit counted.
long long expectSameModel(const std::vector<double>& x, const std::vector<double>& y, double threshold,
                          const char* data)
{
    std::srand(5);
    const Model expected = plainFit(x, y, threshold);
    std::srand(5);
    const RansacLineFit::Result fit = RansacLineFit::fit(x, y, threshold, nullptr);
    EXPECT_TRUE(fit.outcome.ok()) << data;
    EXPECT_EQ(fit.a, expected.a) << data << " " << threshold;
    EXPECT_EQ(fit.b, expected.b) << data << " " << threshold;
    EXPECT_EQ(fit.c, expected.c) << data << " " << threshold;
    EXPECT_EQ(fit.inlierCount, expected.inliers) << data << " " << threshold;
    EXPECT_EQ(fit.iterations, expected.iterations) << data << " " << threshold;
    return fit.iterations;
}

TEST(RansacLineFit, StoppingALosingCountEarlyChoosesTheModelOfAFullCount)
{
    // A noisy rising line with a tenth of the samples thrown far off it: many drawn models lose,
    // most of them long before the end of the samples. Long enough to be counted cell by cell.
    std::mt19937 generator(11);
    std::normal_distribution<double> noise(0.0, 0.05);
    std::uniform_real_distribution<double> offset(-3.0, 3.0);
    std::vector<double> x(50000), y(50000);
    for (std::size_t i = 0; i < x.size(); ++i) {
        x[i] = std::sin(0.001 * static_cast<double>(i)) + noise(generator);
        y[i] = 0.8 * x[i] + 0.2 + noise(generator) + (i % 10 == 3 ? offset(generator) : 0.0);
    }
    for (const double threshold : {0.02, 0.1, 0.5})
        expectSameModel(x, y, threshold, "noisy line");
    // Too short for the grid: every model counted sample by sample.
    x.resize(3000);
    y.resize(3000);
    expectSameModel(x, y, 0.1, "short");
}

TEST(RansacLineFit, CountingCellByCellGivesTheCountsOfEverySample)
{
    // Whole numbers, as an acquisition card's counts: many residuals equal the threshold
    // exactly and many samples sit on the edges of cells, where a count from whole cells
    // would first go wrong.
    std::mt19937 generator(3);
    std::uniform_int_distribution<int> step(-3, 3);
    std::vector<double> x(40000), y(40000);
    for (std::size_t i = 0; i < x.size(); ++i) {
        x[i] = static_cast<double>(static_cast<int>(i % 200) + step(generator));
        y[i] = 2.0 * x[i] + static_cast<double>(step(generator));
    }
    for (const double threshold : {32.0, 64.0})
        expectSameModel(x, y, threshold, "whole numbers");

    // Values far from zero for their spread, where rounding is largest against a cell, and
    // so far that the grid is left for a count of every sample.
    std::normal_distribution<double> noise(0.0, 1.0);
    for (const double origin : {1e6, 1e11}) {
        for (std::size_t i = 0; i < x.size(); ++i) {
            x[i] = origin + noise(generator);
            y[i] = 0.5 * origin + 0.5 * (x[i] - origin) + 0.1 * noise(generator);
        }
        expectSameModel(x, y, 0.05, "far from zero");
    }

    // Half the samples spread over a square, half near a line across it: bands at every
    // angle, most of them missing most cells.
    std::uniform_real_distribution<double> uniform(0.0, 1.0);
    for (std::size_t i = 0; i < x.size(); ++i) {
        x[i] = uniform(generator);
        y[i] = i % 2 == 0 ? uniform(generator) : 0.9 * x[i] + 0.05 + 0.01 * noise(generator);
    }
    expectSameModel(x, y, 0.01, "square and line");
}

TEST(RansacLineFit, OnBothCoresTheFitIsThatOfOneCountAfterAnother)
{
    // Long enough for the grid to be sorted in two halves and for models to be counted in
    // batches on both cores. Many inliers: every model is one of the first thousand. Few
    // inliers: the fit runs well past them, one model at a time.
    std::mt19937 generator(17);
    std::normal_distribution<double> noise(0.0, 0.02);
    std::uniform_real_distribution<double> spread(-1.0, 1.0);
    std::vector<double> x(300000), y(300000);
    for (const int inlierEvery : {1, 64}) {
        for (std::size_t i = 0; i < x.size(); ++i) {
            x[i] = spread(generator);
            y[i] = i % inlierEvery == 0 ? 0.7 * x[i] + 0.1 + noise(generator) : spread(generator);
        }
        const long long models =
            expectSameModel(x, y, 0.02, inlierEvery == 1 ? "many inliers" : "few inliers");
        if (inlierEvery == 1)
            EXPECT_EQ(models, RansacLineFit::MinIterations);
        else
            EXPECT_GT(models, RansacLineFit::MinIterations);
    }
}

} // namespace
} // namespace zarvi
