#pragma once

namespace zarvi {

/// The affine map of one perievent row's normalisation: every value becomes
/// (x - centre) / scale, evaluated as (x - centre) * (1 / scale). The identity by
/// default. Plain data.
struct RowScale
{
    double centre = 0.0;
    double inverseScale = 1.0;

    static RowScale of(double centre, double scale) { return {centre, 1.0 / scale}; }
};

/// The one place where a row's normalisation is evaluated, so that the matrix and the
/// statistics computed beside it see bit-identical values. Multiplying by the
/// reciprocal stays within an ulp of the quotient and is several times faster than a
/// division per sample; a zero scale still gives NaN at the centre and infinities
/// elsewhere, as the division would.
inline double scaled(double value, const RowScale& row)
{
    return (value - row.centre) * row.inverseScale;
}

} // namespace zarvi
