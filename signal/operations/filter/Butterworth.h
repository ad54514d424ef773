#pragma once

#include "signal/operations/filter/SectionCascade.h"

#include <array>
#include <complex>
#include <cstddef>
#include <span>
#include <vector>

namespace zarvi {

/// The kinds of Butterworth design the signal operations build.
enum class FilterKind
{
    LowPass,
    HighPass,
    BandPass,
    BandStop
};

/// An order-10 Butterworth filter for one channel, realised as a cascade of
/// direct-form-II second-order sections: 5 sections for low- and high-pass designs,
/// 10 for band-pass and band-stop (the band transform doubles the poles). Designed
/// from the analogue prototype by the bilinear transform with pre-warped edges.
/// The filter state lives in the object, so consecutive calls to process() continue
/// one signal. A value type used on the worker thread of the operation that owns it.
class Butterworth
{
public:
    static constexpr int Order = 10;
    static constexpr std::size_t MaxSections = Order;

    /// One second-order section; the leading denominator coefficient is 1.
    struct Section
    {
        double b0 = 1.0;
        double b1 = 0.0;
        double b2 = 0.0;
        double a1 = 0.0;
        double a2 = 0.0;
    };

    explicit Butterworth(FilterKind kind = FilterKind::LowPass) : m_kind(kind) {}

    /// Designs the filter. `frequency` is the cut-off of a low- or high-pass design and
    /// the centre of a band design, whose edges are centre -/+ width / 2. Returns false,
    /// and leaves a pass-through filter, when a frequency is not strictly between 0 and
    /// the Nyquist frequency or the band is empty. Clears the state.
    bool setup(double sampleRate, double frequency, double width = 0.0);
    /// The design parameters in their fixed order: order, sample rate, then the cut-off,
    /// or the centre and the width of a band design.
    std::vector<double> parameters() const;

    /// Filters the samples in place, first to last, continuing from the current state.
    void process(std::span<double> samples);
    /// Filters the samples in place from the last to the first, continuing from the
    /// current state: the same as reversing the array, processing it and reversing back.
    void processBackward(std::span<double> samples);
    /// Clears the state of every section.
    void reset();

    /// The complex response at a normalised frequency f / fs (0.5 is the Nyquist frequency).
    std::complex<double> response(double normalizedFrequency) const;

    FilterKind kind() const { return m_kind; }
    double sampleRate() const { return m_sampleRate; }
    std::span<const Section> sections() const { return {m_sections.data(), m_sectionCount}; }

    /// The delayed values of every section, as the last call left them.
    const SectionCascade::StateArray& state() const { return m_state; }

private:
    SectionCascade::CoefficientArray runCoefficients() const;
    void designLowHigh(double warpedCutoff);
    void designBand(double warpedLow, double warpedHigh);

    FilterKind m_kind;
    double m_sampleRate = 0.0;
    double m_frequency = 0.0;
    double m_width = 0.0;
    std::size_t m_sectionCount = 0;
    std::array<Section, MaxSections> m_sections{};
    SectionCascade::StateArray m_state{};
};

} // namespace zarvi
