// The shared summary statistics, checked against values worked out by hand, and the
// standard score against Armadillo's mean and deviation, whose bits it must keep.
#include "numeric/Statistics.h"
#include "numeric/FixedTimesTrapezoid.h"

#include <armadillo>
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

namespace zarvi {
namespace {

using V = std::vector<double>;

TEST(Statistics, CentresOnHandValues)
{
    EXPECT_DOUBLE_EQ(Statistics::mean(V{1, 2, 3, 4}), 2.5);
    EXPECT_DOUBLE_EQ(Statistics::mean(V{-7}), -7.0);
    // Odd count: the middle one; even count: halfway between the two middle ones.
    EXPECT_DOUBLE_EQ(Statistics::median(V{4, 1, 3}), 3.0);
    EXPECT_DOUBLE_EQ(Statistics::median(V{4, 1, 3, 2}), 2.5);
    EXPECT_DOUBLE_EQ(Statistics::median(V{10, -10}), 0.0);
    EXPECT_DOUBLE_EQ(Statistics::median(V{5}), 5.0);

    // Empty input and NaN leave the centre undefined rather than guessing one.
    EXPECT_TRUE(std::isnan(Statistics::mean(V{})));
    EXPECT_TRUE(std::isnan(Statistics::median(V{})));
    EXPECT_TRUE(std::isnan(Statistics::mean(V{1, NAN, 3})));
    EXPECT_TRUE(std::isnan(Statistics::median(V{1, NAN, 3})));
    EXPECT_TRUE(std::isnan(Statistics::medianAbsoluteDeviation(V{1, NAN, 3})));

    // The median copies: the input keeps its order.
    const V unsorted{3, 1, 2};
    Statistics::median(unsorted);
    EXPECT_EQ(unsorted, (V{3, 1, 2}));
}

TEST(Statistics, SpreadsOnHandValues)
{
    // 1, 2, 3, 4: squared deviations 2.25 + 0.25 + 0.25 + 2.25 = 5 over n - 1 = 3.
    EXPECT_DOUBLE_EQ(Statistics::standardDeviation(V{1, 2, 3, 4}), std::sqrt(5.0 / 3.0));
    EXPECT_EQ(Statistics::standardDeviation(V{2, 2, 2}), 0.0);
    EXPECT_EQ(Statistics::standardDeviation(V{2}), 0.0);
    EXPECT_EQ(Statistics::standardDeviation(V{}), 0.0);

    // Median 3, absolute deviations 2 1 0 1 97: MAD 1, with no consistency factor.
    EXPECT_DOUBLE_EQ(Statistics::medianAbsoluteDeviation(V{1, 2, 3, 4, 100}), 1.0);
    // Median 3, deviations 2 1 1 7: MAD 1.5.
    EXPECT_DOUBLE_EQ(Statistics::medianAbsoluteDeviation(V{1, 2, 4, 10}), 1.5);
    EXPECT_EQ(Statistics::medianAbsoluteDeviation(V{5, 5, 5, 5}), 0.0);
}

TEST(Statistics, ZScores)
{
    const Statistics::Scale standard = Statistics::standardScore(V{1, 2, 3, 4});
    EXPECT_DOUBLE_EQ(standard.centre, 2.5);
    EXPECT_DOUBLE_EQ(standard.score(1.0), -1.5 / std::sqrt(5.0 / 3.0));
    EXPECT_DOUBLE_EQ(standard.score(4.0), 1.5 / std::sqrt(5.0 / 3.0));

    const Statistics::Scale modified = Statistics::modifiedScore(V{1, 2, 3, 4, 100});
    EXPECT_EQ(modified.score(1.0), -2.0);
    EXPECT_EQ(modified.score(100.0), 97.0);

    // Without spread the scale is 0, and scores are left to turn non-finite.
    const Statistics::Scale flat = Statistics::standardScore(V{2, 2});
    EXPECT_EQ(flat.scale, 0.0);
    EXPECT_TRUE(std::isnan(flat.score(2.0)));
    EXPECT_TRUE(std::isinf(flat.score(3.0)));
}

TEST(Statistics, StandardScoreHasArmadillosMeanAndDeviationBitForBit)
{
    // Long sums of values far from zero, where any other order of the same operations
    // rounds differently; odd and even lengths; non-finite values take Armadillo's way.
    V values;
    for (int i = 0; i < 100001; ++i)
        values.push_back(1e6 + std::sin(0.37 * i) * std::pow(10.0, i % 7 - 3) + 1e-3 * (i % 13));
    V withInfinity{1.0, 2.0, INFINITY, 4.0};
    for (const V* set : {&values, &withInfinity}) {
        for (const std::size_t n : {set->size(), set->size() - 1, std::size_t{2}, std::size_t{3}}) {
            const arma::vec reference(set->data(), n);
            const Statistics::Scale scale =
                Statistics::standardScore(std::span<const double>(set->data(), n));
            EXPECT_EQ(std::bit_cast<std::uint64_t>(scale.centre),
                      std::bit_cast<std::uint64_t>(static_cast<double>(arma::mean(reference))));
            if (std::isnan(scale.scale))
                EXPECT_TRUE(std::isnan(static_cast<double>(arma::stddev(reference)))) << n;
            else
                EXPECT_EQ(std::bit_cast<std::uint64_t>(scale.scale),
                          std::bit_cast<std::uint64_t>(static_cast<double>(arma::stddev(reference))))
                    << n;
        }
    }
}

TEST(Statistics, ScoresOfManyValuesAreThoseOfOneAtATime)
{
    // Odd and even lengths, in place or not, with the values where rounding and the
    // special cases show: tiny, huge, signed zeros, infinities and NaN.
    V values{1.0 / 3.0, -0.0, 0.0, 1e-310, -1e308, 1e308, INFINITY, -INFINITY, NAN, 2.5, 7.0 / 9.0};
    for (int i = 0; i < 40; ++i)
        values.push_back(std::sin(1.7 * i) * std::pow(10.0, i % 9 - 4));
    for (const Statistics::Scale scale : {Statistics::Scale{0.1, 3.0}, Statistics::Scale{-2.5, 1e-300},
                                          Statistics::Scale{1.0, 0.0}, Statistics::Scale{NAN, 1.0}}) {
        for (const std::size_t n : {values.size(), values.size() - 1, std::size_t{1}, std::size_t{0}}) {
            const std::span<const double> part(values.data(), n);
            V scored(n), inPlace(part.begin(), part.end());
            scale.scoreAll(part, scored.data());
            scale.scoreAll(inPlace, inPlace.data());
            for (std::size_t i = 0; i < n; ++i) {
                const double expected = (values[i] - scale.centre) / scale.scale;
                ASSERT_EQ(std::memcmp(&scored[i], &expected, sizeof expected), 0) << i << " of " << n;
                ASSERT_EQ(std::memcmp(&inPlace[i], &expected, sizeof expected), 0) << i << " of " << n;
            }
        }
    }
}

TEST(Statistics, TrapezoidIntegral)
{
    // Trapezoids 1 * (0 + 2) / 2 + 2 * (2 + 2) / 2 = 5.
    EXPECT_DOUBLE_EQ(Statistics::trapezoid(V{0, 1, 3}, V{0, 2, 2}), 5.0);
    // A line is integrated exactly: y = 2t + 1 over [-1, 2] gives t^2 + t = 6 - 0 = 6.
    EXPECT_DOUBLE_EQ(Statistics::trapezoid(V{-1, 0, 0.5, 2}, V{-1, 1, 2, 5}), 6.0);
    EXPECT_EQ(Statistics::trapezoid(V{1}, V{4}), 0.0);
    EXPECT_EQ(Statistics::trapezoid(V{}, V{}), 0.0);
}

TEST(FixedTimesTrapezoid, EachRunIntegratesAsTheTrapezoidRuleAlone)
{
    // By hand: (1 + 3) / 2 * 1 + (3 + 2) / 2 * 2 = 7.
    FixedTimesTrapezoid small(V{0.0, 1.0, 3.0});
    EXPECT_EQ(small.integral(V{1.0, 3.0, 2.0}), 7.0);
    EXPECT_EQ(small.integral(V{1.0, 3.0}), 0.0); // not as many values as times
    // The span an area per second divides by ends at the greatest time, not the last.
    EXPECT_EQ(FixedTimesTrapezoid(V{2.0, 5.0, 4.0}).span(), 3.0);

    // Long uneven runs, one object for all of them: the same bits as each alone.
    for (const std::size_t n : {std::size_t{2}, std::size_t{33}, std::size_t{8001}}) {
        V times(n), values(n);
        for (std::size_t i = 0; i < n; ++i)
            times[i] = 0.001 * static_cast<double>(i) + 1e-4 * std::sin(static_cast<double>(i));
        FixedTimesTrapezoid trapezoid(times);
        for (int run = 0; run < 5; ++run) {
            for (std::size_t i = 0; i < n; ++i)
                values[i] = std::cos(0.37 * static_cast<double>(i * (run + 1))) * (1.0 + run);
            const double expected = Statistics::trapezoid(times, values);
            const double integral = trapezoid.integral(values);
            EXPECT_EQ(std::memcmp(&integral, &expected, sizeof expected), 0) << n << " run " << run;
        }
    }
}

} // namespace
} // namespace zarvi
