#pragma once

#include "datafile/Feedback.h"
#include "signal/operations/VectorResult.h"

#include <span>

namespace zarvi {

/// Baseline of a signal by asymmetrically reweighted penalised least squares
/// (arPLS): a smooth curve under the signal that follows its lower envelope and
/// ignores peaks. Solves a banded system per iteration in O(n), never a dense one.
/// Runs on the operation's worker thread.
class ArplsBaseline
{
public:
    /// Reweighting rounds at most, for signals that never meet the convergence ratio.
    static constexpr int MaxIterations = 100;

    /// Minimises sum w_i (y_i - z_i)^2 + lambda sum (second difference of z)^2, then
    /// reweights with w = 1 / (1 + exp(2 (d - (2 s - m)) / s)) from the mean m and the
    /// standard deviation s of the negative residuals d = y - z, until the relative
    /// change of the weights falls below `ratio`. Checks for cancel once per round.
    static VectorResult compute(std::span<const double> values, double lambda, double ratio,
                                Feedback* feedback);
};

} // namespace zarvi
