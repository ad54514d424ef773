#pragma once

#include "datafile/Feedback.h"
#include "signal/operations/VectorResult.h"

#include <span>

namespace zarvi {

/// Baseline of a signal as its least-squares polynomial in time. Runs on the
/// operation's worker thread.
class PolynomialBaseline
{
public:
    /// Fits a polynomial of degree `order` (the highest power of time) and evaluates it
    /// at every sample. Time is centred and scaled to [-1, 1] and the fit uses Legendre
    /// polynomials, which span the same curves as the powers of time but keep the normal
    /// equations well conditioned. Fails when the order is negative or not below the
    /// number of samples.
    static VectorResult compute(std::span<const double> values, std::span<const double> time, int order,
                                Feedback* feedback);
};

} // namespace zarvi
