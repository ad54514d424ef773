#pragma once

#include <armadillo>

#include <vector>

namespace zarvi {

/// The per-column average of a trial-by-time matrix with its standard error: what
/// the trace view draws as the mean ± SEM across trials. Plain function, any thread.
class TrialAverage
{
public:
    std::vector<double> mean;
    /// Standard deviation with the n - 1 denominator over sqrt(n); 0 for a single trial.
    std::vector<double> sem;

    static TrialAverage of(const arma::mat& trials);
};

} // namespace zarvi
