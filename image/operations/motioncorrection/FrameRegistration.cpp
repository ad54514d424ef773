#include "image/operations/motioncorrection/FrameRegistration.h"

#include <algorithm>
#include <cmath>

namespace zarvi {

namespace {

constexpr int n = motionRegionSize;

/// The first position of the largest absolute value, in row-major order: firstMaximum()
/// of the magnitude of a real image, without a pass to take it.
cv::Point firstAbsoluteMaximum(const cv::Mat& values)
{
    cv::Point best(0, 0);
    float largest = std::abs(values.at<float>(0, 0));
    for (int y = 0; y < values.rows; ++y) {
        const float* row = values.ptr<float>(y);
        for (int x = 0; x < values.cols; ++x) {
            if (std::abs(row[x]) > largest) {
                largest = std::abs(row[x]);
                best = {x, y};
            }
        }
    }
    return best;
}

/// For every row k of the packed spectrum, the sums over the frequencies l = 1 ... last of
/// C(k, l) times the column kernel of l, for every grid column. Most of a frame's
/// refinement is spent here; the accumulators of the grid columns are independent, so
/// they are summed side by side, in the same order whatever the instruction set, with
/// the wider vectors where the processor has them.
#if defined(__GNUC__) && defined(__x86_64__)
__attribute__((target_clones("avx2", "default")))
#endif
void sumHalfSpectrum(const cv::Mat& packed, int last, const double* kernelReal,
                     const double* kernelImaginary, std::complex<double>* sums)
{
    for (int k = 0; k < packed.rows; ++k) {
        const float* row = packed.ptr<float>(k);
        double real[n] = {};
        double imaginary[n] = {};
        for (int l = 1; l <= last; ++l) {
            const double a = row[2 * l - 1];
            const double b = row[2 * l];
            const double* re = kernelReal + static_cast<std::size_t>(l) * n;
            const double* im = kernelImaginary + static_cast<std::size_t>(l) * n;
            for (int j = 0; j < n; ++j) {
                real[j] += a * re[j] - b * im[j];
                imaginary[j] += a * im[j] + b * re[j];
            }
        }
        for (int j = 0; j < n; ++j)
            sums[static_cast<std::size_t>(k) * n + j] = {real[j], imaginary[j]};
    }
}

} // namespace

FrameRegistration::FrameRegistration(std::shared_ptr<const MotionReference> reference)
    : m_reference(std::move(reference)), m_grid(n * n), m_refined(n, n, CV_32F)
{
}

FrameShift FrameRegistration::measure(const cv::Mat& frame)
{
    const MotionReference& reference = *m_reference;
    prepareForRegistration(frame, reference.scale(), m_prepared);
    cv::dft(m_prepared, m_spectrum);
    cv::mulSpectrums(m_spectrum, reference.spectrum(), m_product, 0, true);
    // The spectrum of a real image's correlation is conjugate-symmetric: its inverse is real.
    cv::dft(m_product, m_correlation, cv::DFT_INVERSE | cv::DFT_SCALE | cv::DFT_REAL_OUTPUT);
    const cv::Point peak = firstAbsoluteMaximum(m_correlation);
    const int x = unwrapPeak(peak.x, m_product.cols);
    const int y = unwrapPeak(peak.y, m_product.rows);
    return refinedShift(x, y, refine(x, y));
}

FrameShift FrameRegistration::correct(const cv::Mat& frame, cv::Mat& corrected)
{
    const FrameShift shift = measure(frame);
    translateFrame(frame, shift, corrected);
    return shift;
}

std::complex<double> FrameRegistration::packedColumnValue(int column, int k) const
{
    // The column holds the spectrum of a real sequence along k, itself packed: entry 0,
    // then the real and imaginary parts of 1 ... ceil(rows / 2) - 1, then for an even
    // height the real middle entry; the entries above the middle are conjugates.
    const int rows = m_product.rows;
    const int mirrored = k <= rows / 2 ? k : rows - k;
    std::complex<double> value;
    if (mirrored == 0)
        value = {m_product.at<float>(0, column), 0.0};
    else if (rows % 2 == 0 && mirrored == rows / 2)
        value = {m_product.at<float>(rows - 1, column), 0.0};
    else
        value = {m_product.at<float>(2 * mirrored - 1, column), m_product.at<float>(2 * mirrored, column)};
    return mirrored == k ? value : std::conj(value);
}

cv::Point FrameRegistration::refine(int x, int y)
{
    const MotionReference& reference = *m_reference;
    const int rows = m_product.rows;
    const int cols = m_product.cols;
    refinementKernel(reference.rowPhases(), rows, upsampledOffset(y) - motionRegionCentre, m_rowKernel);
    refinementKernel(reference.columnPhases(), cols, upsampledOffset(x) - motionRegionCentre, m_columnKernel);
    // Frequencies 1 ... last are stored as pairs in every row; column l' = cols - l of
    // the other half is conj(C(rows - k, l)) with the conjugate phase, so its sum is the
    // conjugate of the half sum of row rows - k.
    const int last = (cols + 1) / 2 - 1;
    m_columnReal.resize(static_cast<std::size_t>(last + 1) * n);
    m_columnImaginary.resize(m_columnReal.size());
    for (std::size_t i = n; i < m_columnReal.size(); ++i) {
        m_columnReal[i] = m_columnKernel[i].real();
        m_columnImaginary[i] = m_columnKernel[i].imag();
    }
    m_halfSums.resize(static_cast<std::size_t>(rows) * n);
    sumHalfSpectrum(m_product, last, m_columnReal.data(), m_columnImaginary.data(), m_halfSums.data());

    std::fill(m_grid.begin(), m_grid.end(), std::complex<double>());
    const bool middleColumn = cols % 2 == 0;
    std::complex<double> rowSums[n];
    for (int k = 0; k < rows; ++k) {
        const std::complex<double> first = packedColumnValue(0, k);
        const std::complex<double> middle = middleColumn ? packedColumnValue(cols - 1, k) : 0.0;
        const std::complex<double>* half = &m_halfSums[static_cast<std::size_t>(k) * n];
        const std::complex<double>* mirror = &m_halfSums[static_cast<std::size_t>((rows - k) % rows) * n];
        const std::complex<double>* middleKernel = &m_columnKernel[static_cast<std::size_t>(cols / 2) * n];
        for (int j = 0; j < n; ++j) {
            rowSums[j] = first * m_columnKernel[j] + half[j] + std::conj(mirror[j]);
            if (middleColumn)
                rowSums[j] += middle * middleKernel[j];
        }
        const std::complex<double>* rowKernel = &m_rowKernel[static_cast<std::size_t>(k) * n];
        for (int a = 0; a < n; ++a)
            for (int b = 0; b < n; ++b)
                m_grid[a * n + b] += rowKernel[a] * rowSums[b];
    }
    const double scale = 1.0 / (static_cast<double>(rows) * cols * motionUpsampling * motionUpsampling);
    for (int a = 0; a < n; ++a)
        for (int b = 0; b < n; ++b)
            m_refined.at<float>(a, b) = static_cast<float>(std::abs(m_grid[a * n + b] * scale));
    return firstMaximum(m_refined);
}

} // namespace zarvi
