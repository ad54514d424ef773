#include "analysis/operations/perievents/ChunkStatistic.h"

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

double mean(std::span<const double> values)
{
    double sum = 0.0;
    for (const double v : values)
        sum += v;
    return sum / static_cast<double>(values.size());
}

double areaPerSecond(std::span<const double> values, std::span<const double> times)
{
    double area = 0.0;
    double latest = times[0];
    for (std::size_t j = 1; j < values.size(); ++j) {
        area += (times[j] - times[j - 1]) * (values[j] + values[j - 1]) * 0.5;
        latest = std::max(latest, times[j]);
    }
    return area / (latest - times[0]);
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

double ChunkStatistic::compute(Kind kind, std::span<const double> values, std::span<const double> times)
{
    if (values.empty())
        return NaN;
    switch (kind) {
    case Kind::AUC:
        return areaPerSecond(values, times);
    case Kind::Mean:
        return mean(values);
    case Kind::Median:
        return median(values);
    case Kind::Maximum:
        return hasNaN(values) ? NaN : *std::max_element(values.begin(), values.end());
    case Kind::Minimum:
        return hasNaN(values) ? NaN : *std::min_element(values.begin(), values.end());
    case Kind::Frequency:
        // The mean of the consecutive differences telescopes to span / (n - 1).
        return times.size() < 2 ? 0.0
                                : static_cast<double>(times.size() - 1) / (times.back() - times.front());
    case Kind::Count:
        return static_cast<double>(values.size());
    }
    return NaN;
}

double ChunkStatistic::median(std::span<const double> values)
{
    if (hasNaN(values))
        return NaN;
    m_scratch.assign(values.begin(), values.end());
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
