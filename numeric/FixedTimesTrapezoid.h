#pragma once

#include <armadillo>

#include <span>

namespace zarvi {

/// The trapezoid rule over one set of times for many runs of values, as the perievent
/// statistics take it over each trial's frame: the steps between the times are worked out
/// once instead of once per run. Each integral is bit for bit Statistics::trapezoid() of
/// the same times and values. Keeps a scratch column; one object per thread.
class FixedTimesTrapezoid
{
public:
    explicit FixedTimesTrapezoid(std::span<const double> times);

    /// The integral of `values` (as many as the times) over the times.
    double integral(std::span<const double> values);
    /// The greatest time minus the first: what an area per second divides by.
    double span() const { return m_span; }

private:
    double m_span = 0.0;
    arma::vec m_steps;
    arma::vec m_pairSums;
};

} // namespace zarvi
