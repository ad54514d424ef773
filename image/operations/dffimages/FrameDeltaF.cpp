#include "image/operations/dffimages/FrameDeltaF.h"

#include "datafile/Feedback.h"
#include "datafile/ImageFrameReader.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <type_traits>

namespace zarvi {

namespace {

// The row loops below run in fixed blocks over unaliased pointers, with no branch in the
// block, which is what GCC needs to vectorise them at -O2. Each is also built for AVX2, twice
// the lanes of the SSE2 the program is compiled for, and the loader picks that version on
// processors that have it; AVX2 brings no fused multiply-add, so both give the same values.
constexpr int Block = 16;

/// The corrected value of one pixel: (x - d) * scale in float.
template <bool HasDark, typename T>
inline float corrected(T value, const float* __restrict dark, int x, float scale)
{
    float v = static_cast<float>(value);
    if constexpr (HasDark)
        v -= dark[x];
    return v * scale;
}

/// The sum of a row of corrected pixels (scale 1) in double, one accumulator per lane.
template <bool HasDark, typename T>
__attribute__((target_clones("avx2", "default"))) double rowSum(const T* __restrict row,
                                                                const float* __restrict dark, int n)
{
    std::array<double, Block> lanes{};
    int x = 0;
    for (; x + Block <= n; x += Block) {
        for (int k = 0; k < Block; ++k)
            lanes[k] += corrected<HasDark>(row[x + k], dark, x + k, 1.0f);
    }
    double total = 0.0;
    for (const double lane : lanes)
        total += lane;
    for (; x < n; ++x)
        total += corrected<HasDark>(row[x], dark, x, 1.0f);
    return total;
}

template <bool HasDark, typename T>
__attribute__((target_clones("avx2", "default"))) void
addRow(const T* __restrict row, const float* __restrict dark, double* __restrict sum, int n, float scale)
{
    int x = 0;
    for (; x + Block <= n; x += Block) {
        for (int k = 0; k < Block; ++k)
            sum[x + k] += corrected<HasDark>(row[x + k], dark, x + k, scale);
    }
    for (; x < n; ++x)
        sum[x] += corrected<HasDark>(row[x], dark, x, scale);
}

/// 100 (value - f0) / f0 in float, rounded to the nearest integer (ties to even) and
/// saturated into 16 bits; 0 where f0 is 0, and for NaN. Written without branches: after
/// the clamp to 0..65535, adding and subtracting 2^23 rounds exactly as the conversion of
/// the run's frames does.
inline std::uint16_t percentOf(float value, float f0)
{
    float percent = 100.0f * ((value - f0) / f0);
    percent = percent > 0.0f ? percent : 0.0f;
    percent = percent < 65535.0f ? percent : 65535.0f;
    percent = f0 != 0.0f ? percent : 0.0f;
    const float rounded = (percent + 0x1p23f) - 0x1p23f;
    return static_cast<std::uint16_t>(static_cast<int>(rounded));
}

template <bool HasDark, typename T>
__attribute__((target_clones("avx2", "default"))) void
percentRow(const T* __restrict row, const float* __restrict dark, const float* __restrict f0,
           std::uint16_t* __restrict out, int n, float scale)
{
    int x = 0;
    for (; x + Block <= n; x += Block) {
        for (int k = 0; k < Block; ++k)
            out[x + k] = percentOf(corrected<HasDark>(row[x + k], dark, x + k, scale), f0[x + k]);
    }
    for (; x < n; ++x)
        out[x] = percentOf(corrected<HasDark>(row[x], dark, x, scale), f0[x]);
}

/// Calls f(row, dark row, HasDark, y) for every row, with the frame's pixels typed as
/// they are stored and HasDark a std::bool_constant.
template <typename Function> void forEachRow(const cv::Mat& frame, const cv::Mat& dark, Function&& f)
{
    for (int y = 0; y < frame.rows; ++y) {
        if (dark.empty() && frame.depth() == CV_16U)
            f(frame.ptr<std::uint16_t>(y), nullptr, std::false_type{}, y);
        else if (dark.empty())
            f(frame.ptr<float>(y), nullptr, std::false_type{}, y);
        else if (frame.depth() == CV_16U)
            f(frame.ptr<std::uint16_t>(y), dark.ptr<float>(y), std::true_type{}, y);
        else
            f(frame.ptr<float>(y), dark.ptr<float>(y), std::true_type{}, y);
    }
}

} // namespace

FrameDeltaF::FrameDeltaF(cv::Mat darkFrame, bool removeTemporalVariations)
    : m_dark(std::move(darkFrame)), m_removeTemporalVariations(removeTemporalVariations)
{
}

float FrameDeltaF::scaleOf(const cv::Mat& frame) const
{
    if (!m_removeTemporalVariations)
        return 1.0f;
    double sum = 0.0;
    forEachRow(frame, m_dark, [&](const auto* row, const float* dark, auto hasDark, int) {
        sum += rowSum<decltype(hasDark)::value>(row, dark, frame.cols);
    });
    const double mean = sum / static_cast<double>(frame.total());
    const float scale = static_cast<float>(1.0 / mean);
    return std::isfinite(scale) ? scale : 0.0f;
}

void FrameDeltaF::addToBaseline(const cv::Mat& frame)
{
    if (m_sum.empty())
        m_sum = cv::Mat::zeros(frame.size(), CV_64F);
    const float scale = scaleOf(frame);
    forEachRow(frame, m_dark, [&](const auto* row, const float* dark, auto hasDark, int y) {
        addRow<decltype(hasDark)::value>(row, dark, m_sum.ptr<double>(y), frame.cols, scale);
    });
    ++m_frames;
}

void FrameDeltaF::finishBaseline()
{
    m_f0.create(m_sum.size(), CV_32F);
    const double frames = static_cast<double>(m_frames);
    for (int y = 0; y < m_sum.rows; ++y) {
        const auto* sum = m_sum.ptr<double>(y);
        auto* f0 = m_f0.ptr<float>(y);
        for (int x = 0; x < m_sum.cols; ++x)
            f0[x] = static_cast<float>(sum[x] / frames);
    }
    m_sum.release();
}

void FrameDeltaF::compute(const cv::Mat& frame, cv::Mat& percent) const
{
    percent.create(frame.size(), CV_16U);
    const float scale = scaleOf(frame);
    forEachRow(frame, m_dark, [&](const auto* row, const float* dark, auto hasDark, int y) {
        percentRow<decltype(hasDark)::value>(row, dark, m_f0.ptr<float>(y), percent.ptr<std::uint16_t>(y),
                                             frame.cols, scale);
    });
}

bool addStackToBaseline(ImageFrameReader& reader, FrameDeltaF& deltaF, Feedback* feedback, QString& error)
{
    ProgressTracker progress(feedback, reader.info().frames);
    cv::Mat frame;
    for (std::size_t k = 0; k < reader.info().frames; ++k) {
        if (progress.isCanceled())
            return false;
        // The stored 16-bit frame: the kernel converts each pixel as it reads it.
        if (!reader.readRawFrame(k, frame, error))
            return false;
        deltaF.addToBaseline(frame);
        progress.update(k + 1);
    }
    deltaF.finishBaseline();
    return true;
}

} // namespace zarvi
