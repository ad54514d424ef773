#include "image/operations/motioncorrection/MotionCorrection.h"

#include <opencv2/imgproc.hpp>

#include <cmath>
#include <numbers>

namespace zarvi {

double registrationScale(int bitCount)
{
    return 65535.0 / (std::ldexp(1.0, bitCount) - 1.0);
}

void prepareForRegistration(const cv::Mat& frame, double scale, cv::Mat& prepared)
{
    // A float frame scaled by 1 is its own conversion: it is blurred as it is.
    const bool converted = frame.depth() != CV_32F || scale != 1.0;
    if (converted)
        frame.convertTo(prepared, CV_32F, scale, 0.0);
    // cv::GaussianBlur filters float images with the separable row and column passes.
    cv::GaussianBlur(converted ? prepared : frame, prepared, cv::Size(motionBlurSize, motionBlurSize), 0.0,
                     0.0, cv::BORDER_REFLECT_101);
    cv::Laplacian(prepared, prepared, CV_32F, 1, 1.0, 0.0, cv::BORDER_REFLECT_101);
    // In place: cv::abs would allocate a new image for every frame.
    cv::absdiff(prepared, cv::Scalar::all(0.0), prepared);
}

void shiftFrame(const cv::Mat& frame, FrameShift shift, cv::Mat& shifted)
{
    const auto right = static_cast<float>(frame.cols - 1);
    const auto bottom = static_cast<float>(frame.rows - 1);
    const cv::Point2f from[3] = {{0.0f, 0.0f}, {right, 0.0f}, {0.0f, bottom}};
    const cv::Point2f to[3] = {
        {-shift.x, -shift.y}, {right - shift.x, -shift.y}, {-shift.x, bottom - shift.y}};
    cv::warpAffine(frame, shifted, cv::getAffineTransform(from, to), frame.size(), cv::INTER_LINEAR,
                   cv::BORDER_CONSTANT, cv::Scalar(0));
}

cv::Point firstMaximum(const cv::Mat& values)
{
    cv::Point best(0, 0);
    float largest = values.at<float>(0, 0);
    for (int y = 0; y < values.rows; ++y) {
        const float* row = values.ptr<float>(y);
        for (int x = 0; x < values.cols; ++x) {
            if (row[x] > largest) {
                largest = row[x];
                best = {x, y};
            }
        }
    }
    return best;
}

int unwrapPeak(int position, int size)
{
    return position < size / 2 ? position : position - size;
}

int signedFrequency(int k, int size)
{
    return k < (size + 1) / 2 ? k : k - size;
}

std::vector<std::complex<double>> refinementPhases(int size)
{
    const auto period = static_cast<int>(motionUpsampling) * size;
    std::vector<std::complex<double>> phases(static_cast<std::size_t>(period));
    for (int t = 0; 2 * t <= period; ++t) {
        phases[t] = std::polar(1.0, 2.0 * std::numbers::pi * t / period);
        if (t > 0)
            phases[period - t] = std::conj(phases[t]);
    }
    return phases;
}

void refinementKernel(const std::vector<std::complex<double>>& phases, int size, long long first,
                      std::vector<std::complex<double>>& kernel)
{
    const auto period = static_cast<long long>(phases.size());
    kernel.resize(static_cast<std::size_t>(size) * motionRegionSize);
    for (int k = 0; k < size; ++k) {
        const long long frequency = signedFrequency(k, size);
        for (int j = 0; j < motionRegionSize; ++j) {
            long long t = (frequency * (first + j)) % period;
            if (t < 0)
                t += period;
            kernel[static_cast<std::size_t>(k) * motionRegionSize + j] = phases[static_cast<std::size_t>(t)];
        }
    }
}

long long upsampledOffset(int displacement)
{
    return std::llround(displacement * motionUpsampling);
}

FrameShift refinedShift(int x, int y, cv::Point refinementPeak)
{
    const double x0 = static_cast<double>(upsampledOffset(x)) / motionUpsampling;
    const double y0 = static_cast<double>(upsampledOffset(y)) / motionUpsampling;
    return {static_cast<float>(x0 + (refinementPeak.x - motionRegionCentre) / motionUpsampling),
            static_cast<float>(y0 + (refinementPeak.y - motionRegionCentre) / motionUpsampling)};
}

} // namespace zarvi
