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
    return {mean(reference), standardDeviation(reference)};
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
