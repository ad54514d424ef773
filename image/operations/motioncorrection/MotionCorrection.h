#pragma once

#include <opencv2/core.hpp>

#include <complex>
#include <vector>

namespace zarvi {

/// The translation of one frame relative to the reference frame, in pixels: x along the
/// columns, y along the rows. A frame whose content lies (dx, dy) further right and down
/// than in the reference has the shift (dx, dy) and is moved back by (-dx, -dy).
struct FrameShift
{
    float x = 0.0f;
    float y = 0.0f;
};

/// Shifts are resolved to 1 / motionUpsampling of a pixel.
inline constexpr double motionUpsampling = 6.0;
/// Side of the square Gaussian kernel that smooths a frame before its edges are taken;
/// its sigma is derived from the size.
inline constexpr int motionBlurSize = 51;
/// The refinement grid has n = ceil(2 u) points a side, deliberately wider than the usual
/// 1.5 u, centred on point s = floor(n / 2).
inline constexpr int motionRegionSize = 12;
inline constexpr int motionRegionCentre = 6;
static_assert(motionRegionSize == 2 * static_cast<int>(motionUpsampling) && motionRegionCentre == 6);

/// 65535 / (2^b - 1): the factor that brings frames of b significant bits to the 16-bit
/// range, so that the registration sees every camera depth alike.
double registrationScale(int bitCount);

/// The edge-strength map a frame is registered by: the frame converted to 32-bit float
/// and multiplied by `scale`, blurred by a 51 x 51 Gaussian (sigma 0, border reflect-101),
/// then the absolute value of its Laplacian (aperture 1, scale 1, delta 0). `frame` is
/// single-channel; `prepared` must be another matrix. Any thread.
void prepareForRegistration(const cv::Mat& frame, double scale, cv::Mat& prepared);

/// Moves `frame` back by `shift`: the affine warp that maps (0, 0), (cols - 1, 0) and
/// (0, rows - 1) to the same points minus the shift, bilinear, the same size as `frame`,
/// uncovered pixels 0. `shifted` must be another matrix. Any thread.
void shiftFrame(const cv::Mat& frame, FrameShift shift, cv::Mat& shifted);

/// shiftFrame for a CV_32FC1 frame, pixel for pixel, in a third of the time: the library's
/// warp works out each pixel's source position and weights for any affine map, while a
/// translation has one whole-pixel offset and one set of weights for the whole frame.
/// They are derived as the library derives them (positions in 1/1024 pixel rounded to
/// 1/32, weights (1 - a)(1 - b), (1 - a) b, ... in float from a = i / 32), and each pixel
/// sums its four products in the same order. Other depths go to shiftFrame. A test holds
/// it to shiftFrame on whole, sixth and arbitrary shifts. Any thread.
void translateFrame(const cv::Mat& frame, FrameShift shift, cv::Mat& shifted);

/// The first position of the largest value of a CV_32FC1 image, in row-major order.
cv::Point firstMaximum(const cv::Mat& values);

/// A peak position of a circular correlation as a displacement: `position` when it lies
/// below size / 2 (integer division), else position - size.
int unwrapPeak(int position, int size);

/// The signed frequency of DFT index k on a side of `size` samples: k up to
/// ceil(size / 2) - 1, then k - size (0, 1, ..., -2, -1).
int signedFrequency(int k, int size);

/// exp(2 pi i t / (u size)) for t = 0 ... u size - 1: every phase the refinement's partial
/// DFT needs on a side of `size` samples, since its grid is spaced 1/u apart from a
/// multiple of 1/u. Entry u size - t is the conjugate of entry t.
std::vector<std::complex<double>> refinementPhases(int size);

/// The kernel of the partial inverse DFT along one side: entry (k, j), at k n + j, is the
/// phase of frequency index k (of `size`) at the grid position (first + j) / u, for j from
/// 0 to n - 1. `phases` comes from refinementPhases(size).
void refinementKernel(const std::vector<std::complex<double>>& phases, int size, long long first,
                      std::vector<std::complex<double>>& kernel);

/// The shift found from the coarse peak (whole pixels x, y) and the position (qx, qy) of
/// the refinement's maximum: x0 + (qx - s) / u with x0 = round(x u) / u, halves away from
/// zero, and the same for y.
FrameShift refinedShift(int x, int y, cv::Point refinementPeak);

/// round(d u), halves away from zero: the grid offset of the coarse displacement d.
long long upsampledOffset(int displacement);

} // namespace zarvi
