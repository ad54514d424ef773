#include "image/operations/motioncorrection/PlainRegistration.h"

#include <opencv2/core.hpp>

namespace zarvi {

FrameShift registerPlain(const cv::Mat& preparedFrame, const cv::Mat& preparedReference)
{
    cv::Mat frameSpectrum, referenceSpectrum, crossPower, correlation;
    cv::dft(preparedFrame, frameSpectrum, cv::DFT_COMPLEX_OUTPUT);
    cv::dft(preparedReference, referenceSpectrum, cv::DFT_COMPLEX_OUTPUT);
    cv::mulSpectrums(frameSpectrum, referenceSpectrum, crossPower, 0, true);
    cv::dft(crossPower, correlation, cv::DFT_INVERSE | cv::DFT_SCALE | cv::DFT_COMPLEX_OUTPUT);
    cv::Mat parts[2], magnitude;
    cv::split(correlation, parts);
    cv::magnitude(parts[0], parts[1], magnitude);

    const int rows = crossPower.rows;
    const int cols = crossPower.cols;
    const cv::Point peak = firstMaximum(magnitude);
    const int x = unwrapPeak(peak.x, cols);
    const int y = unwrapPeak(peak.y, rows);

    std::vector<std::complex<double>> rowKernel, columnKernel;
    refinementKernel(refinementPhases(rows), rows, upsampledOffset(y) - motionRegionCentre, rowKernel);
    refinementKernel(refinementPhases(cols), cols, upsampledOffset(x) - motionRegionCentre, columnKernel);
    constexpr int n = motionRegionSize;
    // Partial inverse DFT: grid(a, b) = sum over k of rowKernel(k, a) sum over l of
    // C(k, l) columnKernel(l, b).
    std::vector<std::complex<double>> grid(n * n);
    std::vector<std::complex<double>> rowSums(n);
    for (int k = 0; k < rows; ++k) {
        std::fill(rowSums.begin(), rowSums.end(), std::complex<double>());
        const auto* spectrumRow = crossPower.ptr<cv::Vec2f>(k);
        for (int l = 0; l < cols; ++l) {
            const std::complex<double> value(spectrumRow[l][0], spectrumRow[l][1]);
            for (int b = 0; b < n; ++b)
                rowSums[b] += value * columnKernel[static_cast<std::size_t>(l) * n + b];
        }
        for (int a = 0; a < n; ++a)
            for (int b = 0; b < n; ++b)
                grid[a * n + b] += rowKernel[static_cast<std::size_t>(k) * n + a] * rowSums[b];
    }
    const double scale = 1.0 / (static_cast<double>(rows) * cols * motionUpsampling * motionUpsampling);
    cv::Mat refined(n, n, CV_32F);
    for (int a = 0; a < n; ++a)
        for (int b = 0; b < n; ++b)
            refined.at<float>(a, b) = static_cast<float>(std::abs(grid[a * n + b] * scale));
    return refinedShift(x, y, firstMaximum(refined));
}

FrameShift correctPlain(const cv::Mat& frame, const cv::Mat& referenceFrame, int bitCount, cv::Mat& corrected)
{
    cv::Mat preparedFrame, preparedReference;
    prepareForRegistration(frame, registrationScale(bitCount), preparedFrame);
    prepareForRegistration(referenceFrame, registrationScale(bitCount), preparedReference);
    const FrameShift shift = registerPlain(preparedFrame, preparedReference);
    shiftFrame(frame, shift, corrected);
    return shift;
}

} // namespace zarvi
