#include "analysis/operations/perievents/TrialAverage.h"

#include <cmath>

namespace zarvi {

TrialAverage TrialAverage::of(const arma::mat& trials)
{
    TrialAverage average;
    const arma::uword rows = trials.n_rows;
    average.mean.assign(trials.n_cols, 0.0);
    average.sem.assign(trials.n_cols, 0.0);
    if (rows == 0)
        return average;
    for (arma::uword j = 0; j < trials.n_cols; ++j) {
        // Columns are contiguous in the column-major matrix: two passes over one run.
        const double* column = trials.colptr(j);
        double sum = 0.0;
        for (arma::uword k = 0; k < rows; ++k)
            sum += column[k];
        const double mean = sum / static_cast<double>(rows);
        double squares = 0.0;
        for (arma::uword k = 0; k < rows; ++k)
            squares += (column[k] - mean) * (column[k] - mean);
        average.mean[j] = mean;
        if (rows > 1)
            average.sem[j] =
                std::sqrt(squares / static_cast<double>(rows - 1)) / std::sqrt(static_cast<double>(rows));
    }
    return average;
}

} // namespace zarvi
