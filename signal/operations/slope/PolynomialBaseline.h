#pragma once

#include "datafile/Feedback.h"
#include "signal/operations/VectorResult.h"

#include <QString>

#include <cstddef>
#include <span>

namespace zarvi {

/// Baseline of a signal as its least-squares polynomial in time. Runs on the
/// operation's worker thread.
class PolynomialBaseline
{
public:
    /// The highest order offered: a baseline needs only a few powers of time, and the
    /// fit's cost grows with the square of the order per sample and its cube to solve.
    static constexpr int MaxOrder = 20;

    /// Why a fit of degree `order` cannot run on `samples` samples; empty when it can.
    static QString orderProblem(int order, std::size_t samples);

    /// Fits a polynomial of degree `order` (the highest power of time) and evaluates it
    /// at every sample. Time is centred and scaled to [-1, 1] and the fit uses Legendre
    /// polynomials, which span the same curves as the powers of time but keep the normal
    /// equations well conditioned. Fails when the order is negative, above MaxOrder or
    /// not below the number of samples.
    static VectorResult compute(std::span<const double> values, std::span<const double> time, int order,
                                Feedback* feedback);
};

} // namespace zarvi
