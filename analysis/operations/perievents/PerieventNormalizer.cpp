#include "analysis/operations/perievents/PerieventNormalizer.h"

#include "analysis/operations/perievents/ChunkPlan.h"
#include "analysis/operations/perievents/LaneReduction.h"
#include "definitions/AnalysisOperationDefinitions.h"

#include <algorithm>
#include <cmath>

namespace zarvi {

std::optional<PerieventNormalizer::Method> PerieventNormalizer::methodFromName(const QString& name)
{
    using D = AnalysisOperationDefinitions;
    if (name == D::Mean)
        return Method::Mean;
    if (name == D::StandardZScore)
        return Method::StandardZScore;
    if (name == D::ModifiedZScore)
        return Method::ModifiedZScore;
    return std::nullopt;
}

std::optional<PerieventNormalizer::Columns>
PerieventNormalizer::baselineColumns(double baselineStart, double baselineEnd, double t0, double sampleRate,
                                     std::size_t rows, std::size_t columns)
{
    // Truncation toward zero after adding one half (not rounding: -0.7 gives column 0).
    const std::optional<int> first = truncatedIndex((baselineStart - t0) * sampleRate + 0.5);
    const std::optional<int> last = truncatedIndex((baselineEnd - t0) * sampleRate + 0.5);
    if (!first || !last || rows == 0 || columns == 0 || *last < *first || *first < 0 ||
        static_cast<std::size_t>(*last) >= columns)
        return std::nullopt;
    return Columns{static_cast<std::size_t>(*first), static_cast<std::size_t>(*last)};
}

std::optional<RowScale> PerieventNormalizer::scaleOf(std::span<const double> baseline, Method method)
{
    if (baseline.empty())
        return std::nullopt;
    const auto n = static_cast<double>(baseline.size());
    double centre = 0.0;
    double scale = 1.0;
    switch (method) {
    case Method::Mean:
    case Method::StandardZScore: {
        const double* v = baseline.data();
        centre = laneSum(baseline.size(), [v](std::size_t j) { return v[j]; }) / n;
        if (method == Method::Mean)
            break;
        const double c = centre;
        const double squares =
            laneSum(baseline.size(), [v, c](std::size_t j) { return (v[j] - c) * (v[j] - c); });
        scale = baseline.size() > 1 ? std::sqrt(squares / (n - 1.0)) : 0.0;
        break;
    }
    case Method::ModifiedZScore: {
        if (std::any_of(baseline.begin(), baseline.end(), [](double v) { return std::isnan(v); }))
            return std::nullopt;
        centre = m_statistic.compute(ChunkStatistic::Kind::Median, baseline);
        m_deviations.resize(baseline.size());
        for (std::size_t j = 0; j < baseline.size(); ++j)
            m_deviations[j] = std::abs(baseline[j] - centre);
        scale = m_statistic.compute(ChunkStatistic::Kind::Median, m_deviations);
        break;
    }
    }
    return RowScale::of(centre, scale);
}

} // namespace zarvi
