#include "image/operations/motioncorrection/MotionCorrection.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
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

void translateFrame(const cv::Mat& frame, FrameShift shift, cv::Mat& shifted)
{
    if (frame.type() != CV_32FC1) {
        shiftFrame(frame, shift, shifted);
        return;
    }
    // The source position of output pixel x is x + shift, taken in 1/1024 pixel,
    // rounded to the nearest 1/32 and split into a whole offset and a table index.
    const auto tableIndex = [](float offset) {
        return (cvRound(static_cast<double>(offset) * 1024.0) + 16) >> 5;
    };
    const int columnSteps = tableIndex(shift.x);
    const int rowSteps = tableIndex(shift.y);
    const int dx = columnSteps >> 5;
    const int dy = rowSteps >> 5;
    const float a = 1.0f / 32 * static_cast<float>(columnSteps & 31);
    const float b = 1.0f / 32 * static_cast<float>(rowSteps & 31);
    const float w00 = (1.0f - b) * (1.0f - a), w01 = (1.0f - b) * a, w10 = b * (1.0f - a), w11 = b * a;

    const int width = frame.cols, height = frame.rows;
    shifted.create(frame.size(), CV_32FC1);
    const auto pixel = [&](int y, int x) {
        return x >= 0 && x < width && y >= 0 && y < height ? frame.at<float>(y, x) : 0.0f;
    };
    // Columns whose four neighbours all lie inside: x + dx in 0 .. width - 2.
    const int insideFirst = std::clamp(-dx, 0, width);
    const int insideEnd = std::clamp(width - 1 - dx, insideFirst, width);
    for (int y = 0; y < height; ++y) {
        float* out = shifted.ptr<float>(y);
        const int row = y + dy;
        const bool rowInside = row >= 0 && row < height - 1;
        // A pixel whose four neighbours all lie outside is 0; one with some inside takes
        // 0 for the others.
        const auto edgePixel = [&](int x) {
            const int column = x + dx;
            if (column >= width || column + 1 < 0 || row >= height || row + 1 < 0)
                return 0.0f;
            return pixel(row, column) * w00 + pixel(row, column + 1) * w01 + pixel(row + 1, column) * w10 +
                   pixel(row + 1, column + 1) * w11;
        };
        if (!rowInside) {
            for (int x = 0; x < width; ++x)
                out[x] = edgePixel(x);
            continue;
        }
        for (int x = 0; x < insideFirst; ++x)
            out[x] = edgePixel(x);
        const float* top = frame.ptr<float>(row);
        const float* bottom = frame.ptr<float>(row + 1);
        for (int x = insideFirst; x < insideEnd; ++x) {
            const int column = x + dx;
            out[x] =
                top[column] * w00 + top[column + 1] * w01 + bottom[column] * w10 + bottom[column + 1] * w11;
        }
        for (int x = insideEnd; x < width; ++x)
            out[x] = edgePixel(x);
    }
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
