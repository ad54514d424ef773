#pragma once

#include "datafile/Feedback.h"
#include "signal/operations/KernelOutcome.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace zarvi {

/// Robust, non-negative straight-line fit of the isosbestic signal x onto the
/// biosensor signal y by random sample consensus. Draws with the C library rand()
/// without reseeding, so repeated runs may differ. Runs on the operation's worker
/// thread (or the preview's); rand() makes concurrent fits share one generator.
class RansacLineFit
{
public:
    /// The fewest iterations a fit runs, and the count while no inlier has been found.
    static constexpr long long MinIterations = 1000;
    /// Consecutive inadmissible draws after which the fit gives up.
    static constexpr long long MaxDrawsPerModel = 1'000'000;

    struct Result
    {
        /// The best line a x + b y + c = 0, through two of the samples.
        double a = 0.0;
        double b = 0.0;
        double c = 0.0;
        /// The same line as y = slope x + intercept; the slope is never negative.
        double slope = 0.0;
        double intercept = 0.0;
        /// 1 where |a x + b y + c| is below the threshold; filled by markInliers() only.
        std::vector<std::uint8_t> inliers;
        std::size_t inlierCount = 0;
        long long iterations = 0;
        KernelOutcome outcome;
    };

    /// Fits y against x. A pair of samples forms a model unless the two points lie
    /// within half a standard deviation of each other in both x and y, or the slope is
    /// outside [0, sd(y) / sd(x)]. Residuals are left unnormalised by the length of
    /// (a, b): the same line through samples twice as far apart doubles them. The best
    /// model is the last one with the most inliers; the iteration count is
    /// max(1000, int(log(0.001) / log(1 - w^2))) with w the best inlier fraction,
    /// recomputed after every model. A model's count stops once the samples left cannot
    /// bring it up to the best count, which leaves the result as a full count would.
    /// Reports "Calculating regression line...".
    static Result fit(std::span<const double> x, std::span<const double> y, double residualThreshold,
                      Feedback* feedback);

    /// A starting threshold on the signals' own scale: sd(x) sd(y) / 2 (n - 1
    /// denominators). A model's residual is its distance from the line times the distance
    /// between its two samples, which scale with the signals' spreads; for standardised
    /// signals this is 0.5, the declared default.
    /// Fills result.inliers for the samples the fit was made on. Only the preview draws
    /// them, so a run does not spend a pass and a buffer of the signal's length on them.
    static void markInliers(Result& result, std::span<const double> x, std::span<const double> y,
                            double residualThreshold);

    static double proposedThreshold(std::span<const double> x, std::span<const double> y);
};

} // namespace zarvi
