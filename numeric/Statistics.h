#pragma once

#include <span>

namespace zarvi {

/// Summary statistics of a run of samples, written once for the signal and analysis
/// kernels. The values are read where they lie; only the median copies them, since it
/// has to reorder them. Plain functions, any thread.
class Statistics
{
public:
    /// A z-score's origin and unit: x scores (x - centre) / scale.
    struct Scale
    {
        double centre = 0.0;
        double scale = 1.0;

        double score(double x) const { return (x - centre) / scale; }
        /// score() of each value of `values` into `out` (as many; it may be `values`
        /// itself), two at a time: the same subtractions and divisions, so the same bits.
        void scoreAll(std::span<const double> values, double* out) const;
    };

    /// NaN when empty or when a value is NaN.
    static double mean(std::span<const double> values);
    /// The middle value, the mean of the two middle values for an even count; NaN when
    /// empty or when a value is NaN, which has no place in the order.
    static double median(std::span<const double> values);
    /// With the n - 1 denominator; 0 for fewer than two values.
    static double standardDeviation(std::span<const double> values);
    /// The median of |x - median|, raw: no consistency factor, so that a modified
    /// z-score counts in MADs. NaN like the median.
    static double medianAbsoluteDeviation(std::span<const double> values);

    /// Standard z-score: centre the mean, scale the standard deviation.
    static Scale standardScore(std::span<const double> reference);
    /// Modified z-score: centre the median, scale the MAD.
    static Scale modifiedScore(std::span<const double> reference);

    /// The trapezoid-rule integral of `values` over `times` (as many); 0 for fewer than
    /// two values.
    static double trapezoid(std::span<const double> times, std::span<const double> values);
};

} // namespace zarvi
