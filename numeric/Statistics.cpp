#include "numeric/Statistics.h"

#include <armadillo>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace zarvi {

namespace {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

/// The values as an Armadillo vector over the same memory; Armadillo only reads it.
arma::vec view(std::span<const double> values)
{
    return arma::vec(const_cast<double*>(values.data()), values.size(), false, true);
}

bool hasNaN(std::span<const double> values)
{
    return std::any_of(values.begin(), values.end(), [](double v) { return std::isnan(v); });
}

/// The median of |x - centre|; NaN for a NaN centre.
double deviationMedian(std::span<const double> values, double centre)
{
    if (std::isnan(centre))
        return NaN;
    std::vector<double> deviations(values.size());
    std::transform(values.begin(), values.end(), deviations.begin(),
                   [centre](double v) { return std::abs(v - centre); });
    return Statistics::median(deviations);
}

/// The sample standard deviation of at least two values about their mean, as
/// arma::stddev computes it, operation for operation, so the bits are the same; only the
/// mean, which it would compute again, is the caller's. A variance that is not finite is
/// left to Armadillo's own, which then takes its slower, robust way.
double deviationAbout(std::span<const double> values, double mean)
{
    const double* x = values.data();
    const std::size_t n = values.size();
    double squares = 0.0;
    double sum = 0.0;
    std::size_t i = 0;
    for (std::size_t j = 1; j < n; i += 2, j += 2) {
        const double di = mean - x[i];
        const double dj = mean - x[j];
        squares += di * di + dj * dj;
        sum += di + dj;
    }
    if (i < n) {
        const double di = mean - x[i];
        squares += di * di;
        sum += di;
    }
    const double variance = (squares - sum * sum / static_cast<double>(n)) / static_cast<double>(n - 1);
    return std::isfinite(variance) ? std::sqrt(variance) : arma::stddev(view(values));
}

} // namespace

void Statistics::Scale::scoreAll(std::span<const double> values, double* out) const
{
    const double* in = values.data();
    const std::size_t n = values.size();
    std::size_t i = 0;
#if defined(__SSE2__)
    // Division is the slow step: one instruction divides two values in the time one
    // takes alone, and the compiler does not pair them by itself at our optimisation
    // level. Exact operations in the same order give what score() gives.
    const __m128d centres = _mm_set1_pd(centre);
    const __m128d scales = _mm_set1_pd(scale);
    for (; i + 2 <= n; i += 2)
        _mm_storeu_pd(out + i, _mm_div_pd(_mm_sub_pd(_mm_loadu_pd(in + i), centres), scales));
#endif
    for (; i < n; ++i)
        out[i] = score(in[i]);
}

double Statistics::mean(std::span<const double> values)
{
    return values.empty() ? NaN : arma::mean(view(values));
}

double Statistics::median(std::span<const double> values)
{
    // Armadillo refuses NaN by throwing; here it is an ordinary missing value.
    return values.empty() || hasNaN(values) ? NaN : arma::median(view(values));
}

double Statistics::standardDeviation(std::span<const double> values)
{
    return values.size() < 2 ? 0.0 : arma::stddev(view(values));
}

double Statistics::medianAbsoluteDeviation(std::span<const double> values)
{
    return deviationMedian(values, median(values));
}

Statistics::Scale Statistics::standardScore(std::span<const double> reference)
{
    // One pass for the mean, one for the deviation about it.
    const double centre = mean(reference);
    return {centre, reference.size() < 2 ? 0.0 : deviationAbout(reference, centre)};
}

Statistics::Scale Statistics::modifiedScore(std::span<const double> reference)
{
    const double centre = median(reference);
    return {centre, deviationMedian(reference, centre)};
}

double Statistics::trapezoid(std::span<const double> times, std::span<const double> values)
{
    if (values.size() < 2)
        return 0.0;
    return arma::as_scalar(arma::trapz(view(times), view(values)));
}

} // namespace zarvi
