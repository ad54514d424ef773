#include "signal/operations/filter/Butterworth.h"

#include <cmath>
#include <numbers>
#include <utility>

namespace zarvi {

namespace {

using Complex = std::complex<double>;
constexpr std::size_t PrototypePairs = Butterworth::Order / 2;

/// Poles of the analogue low-pass prototype with unit cut-off that lie in the upper
/// half plane; their conjugates complete the set.
std::array<Complex, PrototypePairs> prototypePoles()
{
    std::array<Complex, PrototypePairs> poles;
    for (std::size_t k = 0; k < PrototypePairs; ++k) {
        const double theta = std::numbers::pi * (2.0 * k + 1.0) / (2.0 * Butterworth::Order);
        poles[k] = Complex(-std::sin(theta), std::cos(theta));
    }
    return poles;
}

/// Maps an analogue pole to the z plane; analogue frequencies are already pre-warped
/// to tan(pi f / fs), so s = (1 - 1/z) / (1 + 1/z).
Complex bilinear(Complex s)
{
    return (1.0 + s) / (1.0 - s);
}

Complex sectionResponse(const Butterworth::Section& s, Complex zInverse)
{
    const Complex z2 = zInverse * zInverse;
    return (s.b0 + s.b1 * zInverse + s.b2 * z2) / (1.0 + s.a1 * zInverse + s.a2 * z2);
}

/// A section with the pole pair z, conj(z) and the given zeros, scaled to unit gain
/// at the digital frequency `referenceOmega` (radians per sample).
Butterworth::Section makeSection(Complex pole, double n0, double n1, double n2, double referenceOmega)
{
    Butterworth::Section s{n0, n1, n2, -2.0 * pole.real(), std::norm(pole)};
    const double gain = std::abs(sectionResponse(s, std::polar(1.0, -referenceOmega)));
    s.b0 /= gain;
    s.b1 /= gain;
    s.b2 /= gain;
    return s;
}

/// The two roots of s^2 - sum * s + product = 0.
std::pair<Complex, Complex> quadraticRoots(Complex sum, double product)
{
    const Complex root = std::sqrt(sum * sum - 4.0 * product);
    return {(sum + root) * 0.5, (sum - root) * 0.5};
}

double warp(double frequency, double sampleRate)
{
    return std::tan(std::numbers::pi * frequency / sampleRate);
}

/// The coefficients one section runs with: the output b0 w + b1 w1 + b2 w2 is
/// rewritten with w = x - a1 w1 - a2 w2 as b0 x + c1 w1 + c2 w2, so the next section
/// waits for one product and one sum after x instead of for the whole recursion.
struct RunCoefficients
{
    double b0 = 1.0;
    double c1 = 0.0;
    double c2 = 0.0;
    double a1 = 0.0;
    double a2 = 0.0;
};

inline double stepSection(const RunCoefficients& s, double& w1, double& w2, double x)
{
    // The a2 product does not depend on the previous output, so only the a1 product
    // and one subtraction lie on each section's own recursion.
    const double w = (x - s.a2 * w2) - s.a1 * w1;
    const double y = s.b0 * x + (s.c1 * w1 + s.c2 * w2);
    w2 = w1;
    w1 = w;
    return y;
}

/// Runs all sections of each sample in one loop body, so the recursions of the
/// sections overlap in the processor. Coefficients and state are copied to locals
/// that the compiler keeps apart from the sample array.
template <std::size_t S, std::ptrdiff_t Stride, typename State>
void runCascade(const Butterworth::Section* sections, State* state, double* data, std::size_t count)
{
    std::array<RunCoefficients, S> sec;
    std::array<double, S> w1;
    std::array<double, S> w2;
    for (std::size_t k = 0; k < S; ++k) {
        const Butterworth::Section& s = sections[k];
        sec[k] = {s.b0, s.b1 - s.b0 * s.a1, s.b2 - s.b0 * s.a2, s.a1, s.a2};
        w1[k] = state[k].w1;
        w2[k] = state[k].w2;
    }
    double* p = data;
    for (std::size_t i = 0; i < count; ++i, p += Stride) {
        double x = *p;
        [&]<std::size_t... K>(std::index_sequence<K...>)
        {
            ((x = stepSection(sec[K], w1[K], w2[K], x)), ...);
        }
        (std::make_index_sequence<S>{});
        *p = x;
    }
    for (std::size_t k = 0; k < S; ++k) {
        state[k].w1 = w1[k];
        state[k].w2 = w2[k];
    }
}

} // namespace

bool Butterworth::setup(double sampleRate, double frequency, double width)
{
    m_sectionCount = 0;
    reset();
    m_sampleRate = sampleRate;
    m_frequency = frequency;
    m_width = width;
    const double nyquist = sampleRate / 2.0;
    const auto inside = [nyquist](double f) { return f > 0.0 && f < nyquist; };
    if (!(sampleRate > 0.0) || !std::isfinite(sampleRate))
        return false;
    if (m_kind == FilterKind::LowPass || m_kind == FilterKind::HighPass) {
        if (!inside(frequency))
            return false;
        designLowHigh(warp(frequency, sampleRate));
        return true;
    }
    const double low = frequency - width / 2.0;
    const double high = frequency + width / 2.0;
    if (!(width > 0.0) || !inside(low) || !inside(high))
        return false;
    designBand(warp(low, sampleRate), warp(high, sampleRate));
    return true;
}

void Butterworth::designLowHigh(double warpedCutoff)
{
    const bool low = m_kind == FilterKind::LowPass;
    for (const Complex p : prototypePoles()) {
        const Complex z = bilinear(low ? warpedCutoff * p : warpedCutoff / p);
        m_sections[m_sectionCount++] =
            low ? makeSection(z, 1.0, 2.0, 1.0, 0.0) : makeSection(z, 1.0, -2.0, 1.0, std::numbers::pi);
    }
}

void Butterworth::designBand(double warpedLow, double warpedHigh)
{
    const double bandwidth = warpedHigh - warpedLow;
    const double centreSquared = warpedLow * warpedHigh;
    const double centreOmega = 2.0 * std::atan(std::sqrt(centreSquared));
    const bool pass = m_kind == FilterKind::BandPass;
    for (const Complex p : prototypePoles()) {
        // Each prototype pole becomes the two roots of s^2 - sum s + w0^2 = 0.
        const Complex sum = pass ? p * bandwidth : bandwidth / p;
        const auto [s1, s2] = quadraticRoots(sum, centreSquared);
        for (const Complex s : {s1, s2}) {
            m_sections[m_sectionCount++] =
                pass ? makeSection(bilinear(s), 1.0, 0.0, -1.0, centreOmega)
                     : makeSection(bilinear(s), 1.0, -2.0 * std::cos(centreOmega), 1.0, 0.0);
        }
    }
}

std::vector<double> Butterworth::parameters() const
{
    if (m_kind == FilterKind::LowPass || m_kind == FilterKind::HighPass)
        return {static_cast<double>(Order), m_sampleRate, m_frequency};
    return {static_cast<double>(Order), m_sampleRate, m_frequency, m_width};
}

void Butterworth::process(std::span<double> samples)
{
    if (m_sectionCount == MaxSections / 2)
        runCascade<MaxSections / 2, 1>(m_sections.data(), m_state.data(), samples.data(), samples.size());
    else if (m_sectionCount == MaxSections)
        runCascade<MaxSections, 1>(m_sections.data(), m_state.data(), samples.data(), samples.size());
}

void Butterworth::processBackward(std::span<double> samples)
{
    if (samples.empty())
        return;
    double* last = samples.data() + samples.size() - 1;
    if (m_sectionCount == MaxSections / 2)
        runCascade<MaxSections / 2, -1>(m_sections.data(), m_state.data(), last, samples.size());
    else if (m_sectionCount == MaxSections)
        runCascade<MaxSections, -1>(m_sections.data(), m_state.data(), last, samples.size());
}

void Butterworth::reset()
{
    m_state.fill(State{});
}

std::complex<double> Butterworth::response(double normalizedFrequency) const
{
    const Complex zInverse = std::polar(1.0, -2.0 * std::numbers::pi * normalizedFrequency);
    Complex h(1.0, 0.0);
    for (const Section& s : sections())
        h *= sectionResponse(s, zInverse);
    return h;
}

} // namespace zarvi
