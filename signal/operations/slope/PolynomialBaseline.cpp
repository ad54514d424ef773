#include "signal/operations/slope/PolynomialBaseline.h"

#include "definitions/SignalOperationDefinitions.h"

#include <armadillo>

#include <algorithm>
#include <vector>

namespace zarvi {

namespace {

constexpr std::size_t BlockSize = std::size_t{1} << 16;

/// Legendre polynomials P_0 .. P_order at u, by their three-term recurrence.
void legendre(double u, std::vector<double>& p)
{
    p[0] = 1.0;
    if (p.size() > 1)
        p[1] = u;
    for (std::size_t k = 1; k + 1 < p.size(); ++k) {
        const double kd = static_cast<double>(k);
        p[k + 1] = ((2.0 * kd + 1.0) * u * p[k] - kd * p[k - 1]) / (kd + 1.0);
    }
}

} // namespace

QString PolynomialBaseline::orderProblem(int order, std::size_t samples)
{
    using Defs = SignalOperationDefinitions;
    if (order > MaxOrder)
        return Defs::slopeOrderTooHighMessage().arg(order).arg(MaxOrder);
    if (order < 0 || static_cast<std::size_t>(order) >= samples)
        return Defs::badSlopeOrderMessage().arg(order);
    return {};
}

VectorResult PolynomialBaseline::compute(std::span<const double> values, std::span<const double> time,
                                         int order, Feedback* feedback)
{
    using Defs = SignalOperationDefinitions;
    const std::size_t n = values.size();
    if (time.size() != n)
        return {{}, KernelOutcome::failed(Defs::valuesTimeMismatchMessage())};
    if (const QString problem = orderProblem(order, n); !problem.isEmpty())
        return {{}, KernelOutcome::failed(problem)};

    const auto [lowest, highest] = std::minmax_element(time.begin(), time.end());
    const double centre = (*highest + *lowest) / 2.0;
    const double halfSpan = (*highest - *lowest) / 2.0;
    const double scale = halfSpan > 0.0 ? 1.0 / halfSpan : 0.0;
    const auto terms = static_cast<std::size_t>(order) + 1;

    // Normal equations accumulated in one pass, so no n x terms matrix is ever stored.
    arma::mat gram(terms, terms, arma::fill::zeros);
    arma::vec moments(terms, arma::fill::zeros);
    std::vector<double> p(terms);
    ProgressTracker progress(feedback, 2 * n);
    for (std::size_t i = 0; i < n; ++i) {
        if (i % BlockSize == 0) {
            if (progress.isCanceled())
                return {{}, KernelOutcome::cancelled()};
            progress.update(i);
        }
        legendre((time[i] - centre) * scale, p);
        for (std::size_t r = 0; r < terms; ++r) {
            moments.at(r) += p[r] * values[i];
            for (std::size_t c = r; c < terms; ++c)
                gram.at(r, c) += p[r] * p[c];
        }
    }
    gram = arma::symmatu(gram);
    arma::vec coefficients;
    if (!arma::solve(coefficients, gram, moments, arma::solve_opts::no_approx))
        return {{}, KernelOutcome::failed(Defs::badSlopeOrderMessage().arg(order))};

    std::vector<double> baseline(n);
    for (std::size_t i = 0; i < n; ++i) {
        if (i % BlockSize == 0) {
            if (progress.isCanceled())
                return {{}, KernelOutcome::cancelled()};
            progress.update(n + i);
        }
        legendre((time[i] - centre) * scale, p);
        double sum = 0.0;
        for (std::size_t k = 0; k < terms; ++k)
            sum += coefficients.at(k) * p[k];
        baseline[i] = sum;
    }
    progress.update(2 * n);
    return {std::move(baseline), KernelOutcome::completed()};
}

} // namespace zarvi
