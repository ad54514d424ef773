#include "signal/operations/filter/SectionCascade.h"

#include <immintrin.h>

#include <utility>

namespace zarvi {

namespace {

using Coefficients = SectionCascade::Coefficients;
using State = SectionCascade::State;

inline double stepSection(const Coefficients& s, State& state, double x)
{
    // The a2 product does not depend on the previous output, so only the a1 product
    // and one subtraction lie on each section's own recursion.
    const double w = (x - s.a2 * state.w2) - s.a1 * state.w1;
    const double y = s.b0 * x + (s.c1 * state.w1 + s.c2 * state.w2);
    state.w2 = state.w1;
    state.w1 = w;
    return y;
}

/// All sections of each sample in one loop body, so the recursions of the sections
/// overlap in the processor. Coefficients and state are copied to locals that the
/// compiler keeps apart from the sample array.
template <std::size_t S>
void runScalar(const SectionCascade::CoefficientArray& coefficients, SectionCascade::StateArray& state,
               double* first, std::size_t count, std::ptrdiff_t stride)
{
    std::array<Coefficients, S> sec;
    std::array<State, S> st;
    for (std::size_t k = 0; k < S; ++k) {
        sec[k] = coefficients[k];
        st[k] = state[k];
    }
    double* p = first;
    for (std::size_t i = 0; i < count; ++i, p += stride) {
        double x = *p;
        [&]<std::size_t... K>(std::index_sequence<K...>)
        {
            ((x = stepSection(sec[K], st[K], x)), ...);
        }
        (std::make_index_sequence<S>{});
        *p = x;
    }
    for (std::size_t k = 0; k < S; ++k)
        state[k] = st[k];
}

/// Steps by which lane k trails lane k - 1. With two, a step needs the outputs of the
/// step before the last, so two steps are in flight at once.
constexpr std::size_t Skew = 2;

/// Sections S in vectors of four lanes; lane k of the whole holds section k.
template <std::size_t S> struct Pipeline
{
    static constexpr std::size_t Registers = (S + 3) / 4;
    static constexpr std::size_t Lanes = 4 * Registers;
    /// Steps before the last section sees its first sample.
    static constexpr std::size_t Lead = Skew * (S - 1);
    using Vectors = std::array<__m256d, Registers>;
};

/// [a3, b0, b1, b2]: the lanes of b moved up by one, the top lane of a entering below.
__attribute__((target("avx2"))) inline __m256d shiftUp(__m256d a, __m256d b)
{
    return _mm256_shuffle_pd(_mm256_permute2f128_pd(a, b, 0x21), b, 0x5);
}

template <std::size_t S>
__attribute__((target("avx2"))) inline double lane(const typename Pipeline<S>::Vectors& v, std::size_t index)
{
    std::array<double, 4> lanes;
    _mm256_storeu_pd(lanes.data(), v[index / 4]);
    return lanes[index % 4];
}

/// The lane of the last section, read without a trip through memory.
template <std::size_t S>
__attribute__((target("avx2"), always_inline)) inline double lastLane(const typename Pipeline<S>::Vectors& v)
{
    constexpr std::size_t index = S - 1;
    const __m256d whole = v[index / 4];
    __m128d half;
    if constexpr (index % 4 < 2)
        half = _mm256_castpd256_pd128(whole);
    else
        half = _mm256_extractf128_pd(whole, 1);
    if constexpr (index % 2 == 1)
        half = _mm_unpackhi_pd(half, half);
    return _mm_cvtsd_f64(half);
}

/// The coefficients and delayed values of every lane.
template <std::size_t S> struct PipelineState
{
    typename Pipeline<S>::Vectors b0, c1, c2, a1, a2, w1, w2;
};

/// One step: every lane takes the output its lower neighbour made two steps ago (lane
/// 0 takes the new sample) and advances its section by one sample.
template <std::size_t S>
__attribute__((target("avx2"), always_inline)) inline void
advance(PipelineState<S>& p, typename Pipeline<S>::Vectors& y, double sample)
{
    constexpr std::size_t R = Pipeline<S>::Registers;
    typename Pipeline<S>::Vectors x;
    x[0] = shiftUp(_mm256_set1_pd(sample), y[0]);
    // Unrolled, so that the vectors stay in registers.
#pragma GCC unroll 4
    for (std::size_t r = 1; r < R; ++r)
        x[r] = shiftUp(y[r - 1], y[r]);
#pragma GCC unroll 4
    for (std::size_t r = 0; r < R; ++r) {
        // Products and sums in the order of the plain cascade, unfused, so both give
        // the same bits.
        const __m256d w = _mm256_sub_pd(_mm256_sub_pd(x[r], _mm256_mul_pd(p.a2[r], p.w2[r])),
                                        _mm256_mul_pd(p.a1[r], p.w1[r]));
        y[r] = _mm256_add_pd(_mm256_mul_pd(p.b0[r], x[r]),
                             _mm256_add_pd(_mm256_mul_pd(p.c1[r], p.w1[r]), _mm256_mul_pd(p.c2[r], p.w2[r])));
        p.w2[r] = p.w1[r];
        p.w1[r] = w;
    }
}

template <std::size_t S>
__attribute__((target("avx2"))) void runPipeline(const SectionCascade::CoefficientArray& coefficients,
                                                 SectionCascade::StateArray& state, double* first,
                                                 std::size_t count, std::ptrdiff_t stride)
{
    using P = Pipeline<S>;
    using Vectors = typename P::Vectors;
    constexpr std::size_t R = P::Registers;
    constexpr std::size_t Lead = P::Lead;
    const auto at = [first, stride](std::size_t i) -> double& {
        return first[static_cast<std::ptrdiff_t>(i) * stride];
    };

    // Fill: section k runs alone over its first Lead - Skew k samples, leaving its last
    // two outputs for the lanes above it. The last section starts in the main loop.
    std::array<double, P::Lanes> b0{}, c1{}, c2{}, a1{}, a2{}, w1{}, w2{}, before{}, last{};
    std::array<double, Lead> samples;
    for (std::size_t i = 0; i < Lead; ++i)
        samples[i] = at(i);
    for (std::size_t k = 0; k + 1 < S; ++k) {
        const std::size_t length = Lead - Skew * k;
        for (std::size_t i = 0; i < length; ++i)
            samples[i] = stepSection(coefficients[k], state[k], samples[i]);
        before[k] = samples[length - 2];
        last[k] = samples[length - 1];
    }
    for (std::size_t k = 0; k < S; ++k) {
        b0[k] = coefficients[k].b0;
        c1[k] = coefficients[k].c1;
        c2[k] = coefficients[k].c2;
        a1[k] = coefficients[k].a1;
        a2[k] = coefficients[k].a2;
        w1[k] = state[k].w1;
        w2[k] = state[k].w2;
    }
    PipelineState<S> p;
    Vectors even, odd;
    for (std::size_t r = 0; r < R; ++r) {
        p.b0[r] = _mm256_loadu_pd(&b0[4 * r]);
        p.c1[r] = _mm256_loadu_pd(&c1[4 * r]);
        p.c2[r] = _mm256_loadu_pd(&c2[4 * r]);
        p.a1[r] = _mm256_loadu_pd(&a1[4 * r]);
        p.a2[r] = _mm256_loadu_pd(&a2[4 * r]);
        p.w1[r] = _mm256_loadu_pd(&w1[4 * r]);
        p.w2[r] = _mm256_loadu_pd(&w2[4 * r]);
        even[r] = _mm256_loadu_pd(&before[4 * r]);
        odd[r] = _mm256_loadu_pd(&last[4 * r]);
    }

    std::size_t t = Lead;
    for (; t + 1 < count; t += 2) {
        advance<S>(p, even, at(t));
        at(t - Lead) = lastLane<S>(even);
        advance<S>(p, odd, at(t + 1));
        at(t + 1 - Lead) = lastLane<S>(odd);
    }
    const bool endsEven = t < count;
    if (endsEven) {
        advance<S>(p, even, at(t));
        at(t - Lead) = lastLane<S>(even);
    }
    const Vectors& lastStep = endsEven ? even : odd;
    const Vectors& stepBefore = endsEven ? odd : even;

    // Drain: section k still owes its last Skew k samples; the first two of their
    // inputs come from the last two steps, the rest from section k - 1's drain.
    for (std::size_t r = 0; r < R; ++r) {
        _mm256_storeu_pd(&w1[4 * r], p.w1[r]);
        _mm256_storeu_pd(&w2[4 * r], p.w2[r]);
    }
    for (std::size_t k = 0; k < S; ++k)
        state[k] = {w1[k], w2[k]};
    std::array<double, Lead> tail;
    for (std::size_t k = 1; k < S; ++k) {
        const std::size_t length = Skew * k;
        for (std::size_t i = length - 1; i >= 2; --i)
            tail[i] = tail[i - 2];
        tail[0] = lane<S>(stepBefore, k - 1);
        tail[1] = lane<S>(lastStep, k - 1);
        for (std::size_t i = 0; i < length; ++i)
            tail[i] = stepSection(coefficients[k], state[k], tail[i]);
    }
    for (std::size_t i = 0; i < Lead; ++i)
        at(count - Lead + i) = tail[i];
}

bool hasVectorPipeline()
{
    static const bool supported = [] {
        __builtin_cpu_init();
        return __builtin_cpu_supports("avx2");
    }();
    return supported;
}

} // namespace

void SectionCascade::run(const CoefficientArray& coefficients, StateArray& state, std::size_t sections,
                         double* first, std::size_t count, std::ptrdiff_t stride)
{
    // Short runs cost more to fill and drain than the pipeline gains.
    constexpr std::size_t MinimumRun = 256;
    if (count < MinimumRun || !hasVectorPipeline())
        runPlain(coefficients, state, sections, first, count, stride);
    else if (sections == MaxSections / 2)
        runPipeline<MaxSections / 2>(coefficients, state, first, count, stride);
    else if (sections == MaxSections)
        runPipeline<MaxSections>(coefficients, state, first, count, stride);
    else
        runPlain(coefficients, state, sections, first, count, stride);
}

void SectionCascade::runPlain(const CoefficientArray& coefficients, StateArray& state, std::size_t sections,
                              double* first, std::size_t count, std::ptrdiff_t stride)
{
    if (sections == MaxSections / 2)
        runScalar<MaxSections / 2>(coefficients, state, first, count, stride);
    else if (sections == MaxSections)
        runScalar<MaxSections>(coefficients, state, first, count, stride);
}

} // namespace zarvi
