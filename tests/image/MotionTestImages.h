#pragma once

#include <opencv2/core.hpp>

#include <cmath>
#include <numbers>

namespace zarvi::test {

/// A scene of soft round cells on a flat background of 100, kept `margin` pixels away
/// from every edge, so that moving it by less than the margin moves all of its detail
/// (what enters at the edges is background). CV_32FC1, values from 100 to about 3000.
inline cv::Mat cellScene(int size, int margin, int cells = 40, std::uint64_t seed = 7)
{
    cv::Mat scene(size, size, CV_32F, cv::Scalar(100));
    cv::RNG rng(seed);
    for (int c = 0; c < cells; ++c) {
        const double cx = rng.uniform(margin + 6.0, size - margin - 6.0);
        const double cy = rng.uniform(margin + 6.0, size - margin - 6.0);
        const double radius = rng.uniform(1.5, 3.5);
        const double brightness = rng.uniform(500.0, 1500.0);
        for (int y = static_cast<int>(cy) - 6; y <= static_cast<int>(cy) + 6; ++y)
            for (int x = static_cast<int>(cx) - 6; x <= static_cast<int>(cx) + 6; ++x)
                scene.at<float>(y, x) +=
                    static_cast<float>(brightness * std::exp(-((x - cx) * (x - cx) + (y - cy) * (y - cy)) /
                                                             (2 * radius * radius)));
    }
    return scene;
}

/// `scene` with its content moved by whole pixels, dx to the right and dy down, done by
/// index arithmetic: pixel (x, y) takes scene(x - dx, y - dy), and pixels with no source
/// take `background`.
inline cv::Mat translated(const cv::Mat& scene, int dx, int dy, float background = 100.0f)
{
    cv::Mat moved(scene.size(), CV_32F, cv::Scalar(background));
    for (int y = 0; y < scene.rows; ++y)
        for (int x = 0; x < scene.cols; ++x)
            if (x - dx >= 0 && x - dx < scene.cols && y - dy >= 0 && y - dy < scene.rows)
                moved.at<float>(y, x) = scene.at<float>(y - dy, x - dx);
    return moved;
}

/// A smooth random texture between about 1000 and 3000 inside a window that falls
/// smoothly to a flat 2000 at `margin` pixels from the edges. CV_64FC1.
inline cv::Mat smoothRandomImage(int size, int margin, std::uint64_t seed = 11)
{
    cv::Mat noise(size, size, CV_64F);
    cv::RNG rng(seed);
    rng.fill(noise, cv::RNG::NORMAL, 0.0, 1.0);
    // Smoothing by a Gaussian in the Fourier domain keeps the texture band-limited.
    cv::Mat spectrum;
    cv::dft(noise, spectrum, cv::DFT_COMPLEX_OUTPUT);
    const double sigma = 3.0;
    for (int k = 0; k < size; ++k)
        for (int l = 0; l < size; ++l) {
            const double fk = (k < (size + 1) / 2 ? k : k - size) / static_cast<double>(size);
            const double fl = (l < (size + 1) / 2 ? l : l - size) / static_cast<double>(size);
            const double gain =
                std::exp(-2.0 * std::numbers::pi * std::numbers::pi * sigma * sigma * (fk * fk + fl * fl));
            spectrum.at<cv::Vec2d>(k, l) *= gain;
        }
    cv::Mat texture;
    cv::dft(spectrum, texture, cv::DFT_INVERSE | cv::DFT_SCALE | cv::DFT_REAL_OUTPUT);
    cv::normalize(texture, texture, -1000.0, 1000.0, cv::NORM_MINMAX);
    cv::Mat image(size, size, CV_64F);
    for (int y = 0; y < size; ++y)
        for (int x = 0; x < size; ++x) {
            const double distance = std::min({x, y, size - 1 - x, size - 1 - y}) - margin;
            const double window = distance <= 0    ? 0.0
                                  : distance >= 16 ? 1.0
                                                   : 0.5 - 0.5 * std::cos(std::numbers::pi * distance / 16);
            image.at<double>(y, x) = 2000.0 + window * texture.at<double>(y, x);
        }
    return image;
}

/// `image` (CV_64FC1) moved by (dx, dy) pixels, right and down, by the Fourier shift
/// theorem: each frequency (fx, fy) multiplied by exp(-2 pi i (fx dx + fy dy)). The
/// middle frequencies of even sizes, which have no sign, are left out.
inline cv::Mat fourierShifted(const cv::Mat& image, double dx, double dy)
{
    const int rows = image.rows;
    const int cols = image.cols;
    cv::Mat spectrum;
    cv::dft(image, spectrum, cv::DFT_COMPLEX_OUTPUT);
    for (int k = 0; k < rows; ++k)
        for (int l = 0; l < cols; ++l) {
            cv::Vec2d& value = spectrum.at<cv::Vec2d>(k, l);
            if ((rows % 2 == 0 && k == rows / 2) || (cols % 2 == 0 && l == cols / 2)) {
                value = {0.0, 0.0};
                continue;
            }
            const double fy = (k < (rows + 1) / 2 ? k : k - rows) / static_cast<double>(rows);
            const double fx = (l < (cols + 1) / 2 ? l : l - cols) / static_cast<double>(cols);
            const double phase = -2.0 * std::numbers::pi * (fx * dx + fy * dy);
            const double re = value[0] * std::cos(phase) - value[1] * std::sin(phase);
            const double im = value[0] * std::sin(phase) + value[1] * std::cos(phase);
            value = {re, im};
        }
    cv::Mat moved;
    cv::dft(spectrum, moved, cv::DFT_INVERSE | cv::DFT_SCALE | cv::DFT_REAL_OUTPUT);
    return moved;
}

/// `image` rounded into unsigned 16 bits, as a stack stores it, back as CV_32FC1.
inline cv::Mat asStored(const cv::Mat& image)
{
    cv::Mat stored, frame;
    image.convertTo(stored, CV_16U);
    stored.convertTo(frame, CV_32F);
    return frame;
}

} // namespace zarvi::test
