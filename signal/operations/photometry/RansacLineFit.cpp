#include "signal/operations/photometry/RansacLineFit.h"

#include "definitions/SignalOperationDefinitions.h"
#include "numeric/Statistics.h"
#include "signal/operations/photometry/InlierGrid.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <future>
#include <optional>
#include <utility>

namespace zarvi {

namespace {

using Defs = SignalOperationDefinitions;

/// From this many samples the fit spreads its work over both cores.
constexpr std::size_t BothCoresFrom = std::size_t{1} << 18;
/// Models drawn ahead and counted together; enough that starting the second core's share
/// costs little beside the counts.
constexpr std::size_t Batch = 64;

struct Model
{
    double a = 0.0;
    double b = 0.0;
    double c = 0.0;
};

/// Draws an index in [0, n - 1] from the top 15 bits of rand(), the 0..32767 range
/// the fit was designed with. A draw of 32767 gives exactly n - 1.
std::size_t drawIndex(std::size_t n)
{
    const int draw = (std::rand() >> 16) & 0x7FFF;
    return static_cast<std::size_t>(draw / 32767.0 * static_cast<double>(n - 1));
}

/// Counts the points with |a x + b y + c| < threshold. The fixed-width inner loop
/// with one accumulator per lane lets the compiler vectorise it at -O2.
std::size_t countBlock(const double* __restrict x, const double* __restrict y, std::size_t n, double a,
                       double b, double c, double threshold)
{
    constexpr std::size_t Lanes = 8;
    std::array<double, Lanes> lanes{};
    std::size_t i = 0;
    for (; i + Lanes <= n; i += Lanes) {
        for (std::size_t k = 0; k < Lanes; ++k)
            lanes[k] += std::fabs(a * x[i + k] + b * y[i + k] + c) < threshold ? 1.0 : 0.0;
    }
    double total = 0.0;
    for (const double lane : lanes)
        total += lane;
    std::size_t count = static_cast<std::size_t>(total);
    for (; i < n; ++i)
        count += std::fabs(a * x[i] + b * y[i] + c) < threshold ? 1 : 0;
    return count;
}

/// The inlier count of a model, block by block. A model only matters when it reaches
/// `needed` (the best count so far), so the count stops, below `needed`, as soon as the
/// points left could no longer bring it there: the chosen model and the iteration count
/// are exactly those of a full count, and most losing models are dropped after a
/// fraction of the samples.
std::size_t countInliers(const double* x, const double* y, std::size_t n, double a, double b, double c,
                         double threshold, std::size_t needed)
{
    constexpr std::size_t Block = 8192;
    std::size_t count = 0;
    for (std::size_t start = 0; start < n; start += Block) {
        const std::size_t end = std::min(n, start + Block);
        count += countBlock(x + start, y + start, end - start, a, b, c, threshold);
        if (count + (n - end) < needed)
            break;
    }
    return count;
}

long long requiredIterations(std::size_t bestCount, std::size_t n)
{
    if (bestCount == 0)
        return RansacLineFit::MinIterations;
    const double w = static_cast<double>(bestCount) / static_cast<double>(n);
    const double needed = std::log(0.001) / std::log(1.0 - w * w);
    // A tiny inlier fraction asks for more iterations than a counter holds; cancel ends those.
    const double capped = std::min(needed, 1e18);
    return std::max(RansacLineFit::MinIterations, static_cast<long long>(capped));
}

RansacLineFit::Result withOutcome(KernelOutcome outcome)
{
    RansacLineFit::Result result;
    result.outcome = std::move(outcome);
    return result;
}

} // namespace

RansacLineFit::Result RansacLineFit::fit(std::span<const double> x, std::span<const double> y,
                                         double residualThreshold, Feedback* feedback)
{
    if (feedback)
        feedback->setLabel(Defs::calculatingRegressionLineLabel());
    const std::size_t n = x.size();
    if (y.size() != n)
        return withOutcome(KernelOutcome::failed(Defs::signalLengthMismatchMessage().arg(n).arg(y.size())));
    if (n < 2)
        return withOutcome(KernelOutcome::failed(Defs::lineFitTooFewSamplesMessage()));
    // The two deviations, and below the grid's two halves, use both cores on long signals.
    const bool onBothCores = n >= BothCoresFrom;
    std::future<double> xDeviation = std::async(onBothCores ? std::launch::async : std::launch::deferred,
                                                [x] { return Statistics::standardDeviation(x); });
    const double sy = Statistics::standardDeviation(y);
    const double sx = xDeviation.get();
    if (!(sx > 0.0) || !(sy > 0.0))
        return withOutcome(KernelOutcome::failed(Defs::lineFitConstantSignalMessage()));
    const double maxSlope = sy / sx;

    // Long signals are counted from a grid of their samples, which gives the same counts.
    const InlierGrid grid(x, y);
    const auto inliersOf = [&](const Model& model, std::size_t needed) {
        return grid.usable() ? grid.count(model.a, model.b, model.c, residualThreshold, needed)
                             : countInliers(x.data(), y.data(), n, model.a, model.b, model.c,
                                            residualThreshold, needed);
    };

    // The next model from two drawn samples, or the outcome that ends the fit.
    ProgressTracker progress(feedback, 100);
    const auto draw = [&](Model& model) -> std::optional<KernelOutcome> {
        for (long long attempt = 1;; ++attempt) {
            const std::size_t i1 = drawIndex(n);
            const std::size_t i2 = drawIndex(n);
            const double x1 = x[i1], y1 = y[i1], x2 = x[i2], y2 = y[i2];
            model.a = y1 - y2;
            model.b = x2 - x1;
            model.c = -(x2 - x1) * y1 - x1 * (y1 - y2);
            const bool tooClose = std::fabs(x1 - x2) < 0.5 * sx && std::fabs(y1 - y2) < 0.5 * sy;
            const double slope = -model.a / model.b;
            if (!tooClose && slope >= 0.0 && slope <= maxSlope)
                return std::nullopt;
            if (attempt >= MaxDrawsPerModel)
                return KernelOutcome::failed(Defs::lineFitNoPairMessage());
            if (attempt % 4096 == 0 && progress.isCanceled())
                return KernelOutcome::cancelled();
        }
    };

    Result result;
    std::size_t bestCount = 0;
    long long required = MinIterations;
    std::array<Model, Batch> batch;
    std::array<std::size_t, Batch> counts{};
    while (result.iterations < required) {
        if (progress.isCanceled())
            return withOutcome(KernelOutcome::cancelled());
        // The first MinIterations models are counted whatever the counts, so those can be
        // drawn ahead in batches and counted on both cores against the best count before
        // the batch. A count below that is never used; one at or above it is exact, so the
        // models kept are those of counting one after another. Later models depend on the
        // counts before them and are drawn one at a time. Batches start small, as a count
        // stops early only once some best count is known.
        const long long certain = std::min({MinIterations - result.iterations, static_cast<long long>(Batch),
                                            std::max(1LL, result.iterations)});
        const std::size_t size = onBothCores && certain >= 2 ? static_cast<std::size_t>(certain) : 1;
        for (std::size_t k = 0; k < size; ++k) {
            if (std::optional<KernelOutcome> end = draw(batch[k]))
                return withOutcome(std::move(*end));
        }
        const std::size_t needed = bestCount;
        const auto countFrom = [&](std::size_t first) {
            for (std::size_t k = first; k < size; k += 2)
                counts[k] = inliersOf(batch[k], needed);
        };
        std::future<void> odd =
            std::async(size > 1 ? std::launch::async : std::launch::deferred, countFrom, 1);
        countFrom(0);
        odd.get();
        for (std::size_t k = 0; k < size; ++k) {
            if (counts[k] >= bestCount) {
                bestCount = counts[k];
                result.a = batch[k].a;
                result.b = batch[k].b;
                result.c = batch[k].c;
            }
            ++result.iterations;
            required = requiredIterations(bestCount, n);
        }
        progress.update(static_cast<std::size_t>(100.0 * result.iterations / required));
    }

    result.slope = -result.a / result.b;
    result.intercept = -result.c / result.b;
    result.inlierCount = bestCount;
    return result;
}

void RansacLineFit::markInliers(Result& result, std::span<const double> x, std::span<const double> y,
                                double residualThreshold)
{
    const std::size_t n = std::min(x.size(), y.size());
    result.inliers.resize(n);
    for (std::size_t i = 0; i < n; ++i)
        result.inliers[i] =
            std::fabs(result.a * x[i] + result.b * y[i] + result.c) < residualThreshold ? 1 : 0;
}

double RansacLineFit::proposedThreshold(std::span<const double> x, std::span<const double> y)
{
    return 0.5 * Statistics::standardDeviation(x) * Statistics::standardDeviation(y);
}

} // namespace zarvi
