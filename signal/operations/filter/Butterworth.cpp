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
    SectionCascade::run(runCoefficients(), m_state, m_sectionCount, samples.data(), samples.size(), 1);
}

void Butterworth::processBackward(std::span<double> samples)
{
    if (samples.empty())
        return;
    SectionCascade::run(runCoefficients(), m_state, m_sectionCount, samples.data() + samples.size() - 1,
                        samples.size(), -1);
}

SectionCascade::CoefficientArray Butterworth::runCoefficients() const
{
    SectionCascade::CoefficientArray run{};
    for (std::size_t k = 0; k < m_sectionCount; ++k) {
        const Section& s = m_sections[k];
        run[k] = {s.b0, s.b1 - s.b0 * s.a1, s.b2 - s.b0 * s.a2, s.a1, s.a2};
    }
    return run;
}

void Butterworth::reset()
{
    m_state.fill(SectionCascade::State{});
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
