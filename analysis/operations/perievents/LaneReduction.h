#pragma once

#include <cstddef>

namespace zarvi {

// Reductions over long chunks, written as eight interleaved partial results held in
// separate variables. A plain running sum makes every addition wait for the previous
// one; eight independent chains keep the floating-point units busy at -O2 without
// reassociation flags. The summation order is fixed, so results are reproducible.

/// term(0) + term(1) + ... + term(count - 1).
template <typename Term> double laneSum(std::size_t count, Term term)
{
    double s0 = 0.0, s1 = 0.0, s2 = 0.0, s3 = 0.0, s4 = 0.0, s5 = 0.0, s6 = 0.0, s7 = 0.0;
    std::size_t j = 0;
    for (; j + 8 <= count; j += 8) {
        s0 += term(j);
        s1 += term(j + 1);
        s2 += term(j + 2);
        s3 += term(j + 3);
        s4 += term(j + 4);
        s5 += term(j + 5);
        s6 += term(j + 6);
        s7 += term(j + 7);
    }
    double tail = 0.0;
    for (; j < count; ++j)
        tail += term(j);
    return ((s0 + s1) + (s2 + s3)) + ((s4 + s5) + (s6 + s7)) + tail;
}

/// The largest of values[0 .. count - 1] (count > 0), for values without NaN.
inline double laneMax(const double* values, std::size_t count)
{
    auto larger = [](double a, double b) { return a < b ? b : a; };
    double m0 = values[0], m1 = values[0], m2 = values[0], m3 = values[0];
    std::size_t j = 0;
    for (; j + 4 <= count; j += 4) {
        m0 = larger(m0, values[j]);
        m1 = larger(m1, values[j + 1]);
        m2 = larger(m2, values[j + 2]);
        m3 = larger(m3, values[j + 3]);
    }
    for (; j < count; ++j)
        m0 = larger(m0, values[j]);
    return larger(larger(m0, m1), larger(m2, m3));
}

} // namespace zarvi
