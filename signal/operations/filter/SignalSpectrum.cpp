#include "signal/operations/filter/SignalSpectrum.h"

#include "definitions/SignalOperationDefinitions.h"

#include <opencv2/core.hpp>

#include <algorithm>
#include <cmath>

namespace zarvi {

namespace {

/// The largest length not above `limit` that the DFT factors into small primes.
int fastLength(int limit)
{
    int length = limit;
    while (length > 2 && cv::getOptimalDFTSize(length) != length)
        --length;
    return length;
}

} // namespace

SignalSpectrum::Result SignalSpectrum::compute(std::span<const double> values, double sampleRate,
                                               std::size_t maxSamples)
{
    Result result;
    const std::size_t available = std::min(values.size(), maxSamples);
    if (available < 2 || !(sampleRate > 0.0)) {
        result.outcome = KernelOutcome::failed(SignalOperationDefinitions::emptySignalMessage());
        return result;
    }
    const int n = fastLength(static_cast<int>(std::min<std::size_t>(available, 1u << 30)));
    // A header over the caller's samples; the DFT writes into its own buffer.
    const cv::Mat segment(1, n, CV_64F, const_cast<double*>(values.data()));
    cv::Mat spectrum;
    cv::dft(segment, spectrum, cv::DFT_COMPLEX_OUTPUT);

    const double floor = static_cast<double>(1e-5f);
    const int bins = n / 2 + 1;
    result.frequencies.resize(static_cast<std::size_t>(bins));
    result.magnitudesDb.resize(static_cast<std::size_t>(bins));
    const auto* bin = spectrum.ptr<cv::Vec2d>(0);
    for (int k = 0; k < bins; ++k) {
        // The mean and (for even N) the Nyquist bin have no mirror image to fold in.
        const bool single = k == 0 || 2 * k == n;
        const double amplitude = std::hypot(bin[k][0], bin[k][1]) * (single ? 1.0 : 2.0) / n;
        result.frequencies[static_cast<std::size_t>(k)] = k * sampleRate / n;
        result.magnitudesDb[static_cast<std::size_t>(k)] = 20.0 * std::log10(std::max(amplitude, floor));
    }
    return result;
}

} // namespace zarvi
