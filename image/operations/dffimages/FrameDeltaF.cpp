#include "image/operations/dffimages/FrameDeltaF.h"

#include "datafile/Feedback.h"
#include "datafile/ImageFrameReader.h"

#include <cmath>
#include <cstdint>

namespace zarvi {

namespace {

/// Calls f(row of the frame, row of the dark frame or null, y) for every row, with the
/// frame's pixels typed as they are stored.
template <typename Function> void forEachRow(const cv::Mat& frame, const cv::Mat& dark, Function&& f)
{
    for (int y = 0; y < frame.rows; ++y) {
        const float* darkRow = dark.empty() ? nullptr : dark.ptr<float>(y);
        if (frame.depth() == CV_16U)
            f(frame.ptr<std::uint16_t>(y), darkRow, y);
        else
            f(frame.ptr<float>(y), darkRow, y);
    }
}

/// The corrected value of one pixel: (x - d) * scale in float.
template <typename T> inline float corrected(const T* row, const float* darkRow, int x, float scale)
{
    const float value = static_cast<float>(row[x]);
    return (darkRow ? value - darkRow[x] : value) * scale;
}

/// 100 (value - f0) / f0 in float, rounded and saturated into 16 bits; 0 where f0 is 0.
inline std::uint16_t percentOf(float value, float f0)
{
    if (f0 == 0.0f)
        return 0;
    const float percent = 100.0f * ((value - f0) / f0);
    if (!(percent > 0.0f))
        return 0;
    if (percent >= 65535.0f)
        return 65535;
    return static_cast<std::uint16_t>(cvRound(percent));
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
    forEachRow(frame, m_dark, [&](const auto* row, const float* darkRow, int) {
        for (int x = 0; x < frame.cols; ++x)
            sum += corrected(row, darkRow, x, 1.0f);
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
    forEachRow(frame, m_dark, [&](const auto* row, const float* darkRow, int y) {
        auto* sum = m_sum.ptr<double>(y);
        for (int x = 0; x < frame.cols; ++x)
            sum[x] += corrected(row, darkRow, x, scale);
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
    forEachRow(frame, m_dark, [&](const auto* row, const float* darkRow, int y) {
        const auto* f0 = m_f0.ptr<float>(y);
        auto* out = percent.ptr<std::uint16_t>(y);
        for (int x = 0; x < frame.cols; ++x)
            out[x] = percentOf(corrected(row, darkRow, x, scale), f0[x]);
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
