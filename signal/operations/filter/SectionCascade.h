#pragma once

#include <array>
#include <cstddef>

namespace zarvi {

/// Runs a cascade of direct-form-II second-order sections over a strided run of samples
/// in place. Used by Butterworth on the worker thread that owns the filter.
///
/// Where the processor has AVX2, the sections run as a skewed pipeline: each
/// vector lane holds one section, lane k works on the sample two steps behind lane
/// k - 1, and one step advances every section by one sample. The skew of two steps
/// lets the next step start before the previous one has finished, so the time per
/// sample is one section's own recursion, not the whole cascade. The pipeline does the
/// products and sums of the plain cascade in the same order, unfused, so both give the
/// same bits.
class SectionCascade
{
public:
    static constexpr std::size_t MaxSections = 10;

    /// The coefficients of one section as it runs: the output b0 w + b1 w1 + b2 w2 is
    /// rewritten with w = x - a1 w1 - a2 w2 as b0 x + c1 w1 + c2 w2, so the next
    /// section waits for one product and one sum after x instead of the whole recursion.
    struct Coefficients
    {
        double b0 = 1.0;
        double c1 = 0.0;
        double c2 = 0.0;
        double a1 = 0.0;
        double a2 = 0.0;
    };

    /// The two delayed values of one section.
    struct State
    {
        double w1 = 0.0;
        double w2 = 0.0;
    };

    using CoefficientArray = std::array<Coefficients, MaxSections>;
    using StateArray = std::array<State, MaxSections>;

    /// Filters `count` samples starting at `first`, `stride` apart (1 forward, -1
    /// backward), through the first `sections` sections, continuing from `state`.
    /// Picks the vector pipeline where the processor supports it.
    static void run(const CoefficientArray& coefficients, StateArray& state, std::size_t sections,
                    double* first, std::size_t count, std::ptrdiff_t stride);

    /// The same with one sample through every section at a time, in plain scalar code:
    /// the reference the pipeline is checked against, and the path for short runs.
    static void runPlain(const CoefficientArray& coefficients, StateArray& state, std::size_t sections,
                         double* first, std::size_t count, std::ptrdiff_t stride);
};

} // namespace zarvi
