#include "signal/operations/slope/ArplsBaseline.h"

#include "definitions/SignalOperationDefinitions.h"

#include <cmath>
#include <utility>
#include <vector>

namespace zarvi {

namespace {

/// Solves (diag(w) + lambda D'D) z = w .* y, D the second-difference operator, by an
/// LDL' factorisation of the symmetric pentadiagonal matrix. Returns false when a
/// pivot is not positive, which only weights that have all but vanished can cause.
class PentadiagonalSolver
{
public:
    explicit PentadiagonalSolver(std::size_t n) : m_d(n), m_p(n), m_q(n) {}

    bool solve(std::span<const double> y, std::span<const double> w, double lambda, std::vector<double>& z)
    {
        const std::size_t n = y.size();
        // Entries of D'D: diagonal 1 5 6 ... 6 5 1, first off-diagonal -2 -4 ... -4 -2,
        // second off-diagonal all 1.
        const auto diagonal = [n](std::size_t i) {
            return (i == 0 || i == n - 1) ? 1.0 : (i == 1 || i == n - 2) ? 5.0 : 6.0;
        };
        const auto firstOff = [n](std::size_t i) { return (i == 0 || i == n - 2) ? -2.0 : -4.0; };

        for (std::size_t i = 0; i < n; ++i) {
            double d = w[i] + lambda * diagonal(i);
            if (i >= 1)
                d -= m_p[i - 1] * m_p[i - 1] * m_d[i - 1];
            if (i >= 2)
                d -= m_q[i - 2] * m_q[i - 2] * m_d[i - 2];
            if (!(d > 0.0) || !std::isfinite(d))
                return false;
            m_d[i] = d;
            if (i + 1 < n) {
                double b = lambda * firstOff(i);
                if (i >= 1)
                    b -= m_q[i - 1] * m_p[i - 1] * m_d[i - 1];
                m_p[i] = b / d;
            }
            if (i + 2 < n)
                m_q[i] = lambda / d;
        }
        z.resize(n);
        for (std::size_t i = 0; i < n; ++i) {
            double u = w[i] * y[i];
            if (i >= 1)
                u -= m_p[i - 1] * z[i - 1];
            if (i >= 2)
                u -= m_q[i - 2] * z[i - 2];
            z[i] = u;
        }
        for (std::size_t i = 0; i < n; ++i)
            z[i] /= m_d[i];
        for (std::size_t i = n; i-- > 0;) {
            if (i + 1 < n)
                z[i] -= m_p[i] * z[i + 1];
            if (i + 2 < n)
                z[i] -= m_q[i] * z[i + 2];
        }
        return true;
    }

private:
    std::vector<double> m_d; ///< pivots
    std::vector<double> m_p; ///< first sub-diagonal of L
    std::vector<double> m_q; ///< second sub-diagonal of L
};

/// Mean and population standard deviation of the negative residuals y - z; a zero
/// spread when there are none.
std::pair<double, double> negativeResidualSpread(std::span<const double> y, std::span<const double> z)
{
    double sum = 0.0;
    std::size_t count = 0;
    for (std::size_t i = 0; i < y.size(); ++i) {
        const double d = y[i] - z[i];
        if (d < 0.0) {
            sum += d;
            ++count;
        }
    }
    if (count == 0)
        return {0.0, 0.0};
    const double mean = sum / static_cast<double>(count);
    double squares = 0.0;
    for (std::size_t i = 0; i < y.size(); ++i) {
        const double d = y[i] - z[i];
        if (d < 0.0)
            squares += (d - mean) * (d - mean);
    }
    return {mean, std::sqrt(squares / static_cast<double>(count))};
}

} // namespace

VectorResult ArplsBaseline::compute(std::span<const double> values, double lambda, double ratio,
                                    Feedback* feedback)
{
    if (!(lambda > 0.0) || !(ratio > 0.0))
        return {{}, KernelOutcome::failed(SignalOperationDefinitions::badArplsParametersMessage())};
    const std::size_t n = values.size();
    // Below three samples there is no second difference to penalise.
    if (n < 3)
        return {std::vector<double>(values.begin(), values.end()), KernelOutcome::completed()};

    PentadiagonalSolver solver(n);
    std::vector<double> weights(n, 1.0);
    std::vector<double> newWeights(n);
    std::vector<double> baseline;
    std::vector<double> candidate;
    ProgressTracker progress(feedback, MaxIterations);
    for (int iteration = 0; iteration < MaxIterations; ++iteration) {
        if (progress.isCanceled())
            return {{}, KernelOutcome::cancelled()};
        if (!solver.solve(values, weights, lambda, candidate))
            break;
        baseline.swap(candidate);

        const auto [m, s] = negativeResidualSpread(values, baseline);
        if (!(s > 0.0))
            break;

        double change = 0.0;
        double norm = 0.0;
        for (std::size_t i = 0; i < n; ++i) {
            const double d = values[i] - baseline[i];
            newWeights[i] = 1.0 / (1.0 + std::exp(2.0 * (d - (2.0 * s - m)) / s));
            change += (weights[i] - newWeights[i]) * (weights[i] - newWeights[i]);
            norm += weights[i] * weights[i];
        }
        progress.update(static_cast<std::size_t>(iteration + 1));
        if (std::sqrt(change) / std::sqrt(norm) < ratio)
            break;
        weights.swap(newWeights);
    }
    if (baseline.empty())
        return {{}, KernelOutcome::failed(SignalOperationDefinitions::badArplsParametersMessage())};
    progress.update(MaxIterations);
    return {std::move(baseline), KernelOutcome::completed()};
}

} // namespace zarvi
