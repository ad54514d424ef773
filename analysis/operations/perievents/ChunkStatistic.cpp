#include "analysis/operations/perievents/ChunkStatistic.h"

#include "analysis/operations/perievents/LaneReduction.h"
#include "definitions/AnalysisOperationDefinitions.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zarvi {

namespace {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

bool hasNaN(std::span<const double> values)
{
    return std::any_of(values.begin(), values.end(), [](double v) { return std::isnan(v); });
}

/// The largest (or, with `Less` reversed, smallest) scaled value; NaN if any value is NaN.
template <typename Less> double extreme(std::span<const double> values, const RowScale& scale, Less less)
{
    if (hasNaN(values))
        return NaN;
    double best = scaled(values[0], scale);
    for (std::size_t j = 1; j < values.size(); ++j) {
        const double v = scaled(values[j], scale);
        best = less(best, v) ? v : best;
    }
    return best;
}

} // namespace

std::optional<ChunkStatistic::Kind> ChunkStatistic::fromName(const QString& name)
{
    using D = AnalysisOperationDefinitions;
    if (name == D::AUC)
        return Kind::AUC;
    if (name == D::Mean)
        return Kind::Mean;
    if (name == D::Median)
        return Kind::Median;
    if (name == D::Maximum)
        return Kind::Maximum;
    if (name == D::Minimum)
        return Kind::Minimum;
    if (name == D::Frequency)
        return Kind::Frequency;
    if (name == D::Count)
        return Kind::Count;
    return std::nullopt;
}

QString ChunkStatistic::nameOf(Kind kind)
{
    using D = AnalysisOperationDefinitions;
    switch (kind) {
    case Kind::AUC:
        return D::AUC;
    case Kind::Mean:
        return D::Mean;
    case Kind::Median:
        return D::Median;
    case Kind::Maximum:
        return D::Maximum;
    case Kind::Minimum:
        return D::Minimum;
    case Kind::Frequency:
        return D::Frequency;
    case Kind::Count:
        return D::Count;
    }
    return {};
}

void ChunkStatistic::setTimes(std::span<const double> times)
{
    const std::size_t n = times.size();
    m_weights.assign(n, 0.0);
    if (n == 0)
        return;
    m_firstTime = times.front();
    m_lastTime = times.back();
    m_greatestTime = laneMax(times.data(), n);
    if (n < 2)
        return;
    m_weights[0] = (times[1] - times[0]) * 0.5;
    for (std::size_t j = 1; j + 1 < n; ++j)
        m_weights[j] = (times[j + 1] - times[j - 1]) * 0.5;
    m_weights[n - 1] = (times[n - 1] - times[n - 2]) * 0.5;
}

double ChunkStatistic::computeAt(Kind kind, std::span<const double> values, std::span<const double> times)
{
    setTimes(times);
    return compute(kind, values);
}

double ChunkStatistic::compute(Kind kind, std::span<const double> values, const RowScale& scale)
{
    if (values.empty())
        return NaN;
    const double* v = values.data();
    switch (kind) {
    case Kind::AUC: {
        const double* w = m_weights.data();
        return laneSum(values.size(), [v, w, scale](std::size_t j) { return w[j] * scaled(v[j], scale); }) /
               (m_greatestTime - m_firstTime);
    }
    case Kind::Mean:
        return laneSum(values.size(), [v, scale](std::size_t j) { return scaled(v[j], scale); }) /
               static_cast<double>(values.size());
    case Kind::Median:
        return median(values, scale);
    case Kind::Maximum:
        return extreme(values, scale, [](double a, double b) { return a < b; });
    case Kind::Minimum:
        return extreme(values, scale, [](double a, double b) { return b < a; });
    case Kind::Frequency:
        // The mean of the consecutive differences telescopes to span / (n - 1).
        return m_weights.size() < 2 ? 0.0
                                    : static_cast<double>(m_weights.size() - 1) / (m_lastTime - m_firstTime);
    case Kind::Count:
        return static_cast<double>(values.size());
    }
    return NaN;
}

double ChunkStatistic::median(std::span<const double> values, const RowScale& scale)
{
    if (hasNaN(values))
        return NaN;
    m_scratch.resize(values.size());
    for (std::size_t j = 0; j < values.size(); ++j)
        m_scratch[j] = scaled(values[j], scale);
    const std::size_t half = m_scratch.size() / 2;
    const auto middle = m_scratch.begin() + static_cast<std::ptrdiff_t>(half);
    std::nth_element(m_scratch.begin(), middle, m_scratch.end());
    const double upper = *middle;
    if (m_scratch.size() % 2 == 1)
        return upper;
    // nth_element leaves the lower half before `middle`; its largest is the other middle value.
    const double lower = *std::max_element(m_scratch.begin(), middle);
    return (lower + upper) / 2.0;
}

} // namespace zarvi
