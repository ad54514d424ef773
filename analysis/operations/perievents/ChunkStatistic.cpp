#include "analysis/operations/perievents/ChunkStatistic.h"

#include "definitions/AnalysisOperationDefinitions.h"
#include "numeric/FixedTimesTrapezoid.h"
#include "numeric/Statistics.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace zarvi {

namespace {

using D = AnalysisOperationDefinitions;
using Kind = ChunkStatistic::Kind;

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

const std::array<std::pair<Kind, const QString*>, 7> Names{{{Kind::AUC, &D::AUC},
                                                            {Kind::Mean, &D::Mean},
                                                            {Kind::Median, &D::Median},
                                                            {Kind::Maximum, &D::Maximum},
                                                            {Kind::Minimum, &D::Minimum},
                                                            {Kind::Frequency, &D::Frequency},
                                                            {Kind::Count, &D::Count}}};

bool hasNaN(std::span<const double> values)
{
    return std::any_of(values.begin(), values.end(), [](double v) { return std::isnan(v); });
}

} // namespace

std::optional<ChunkStatistic::Kind> ChunkStatistic::fromName(const QString& name)
{
    for (const auto& [kind, text] : Names)
        if (*text == name)
            return kind;
    return std::nullopt;
}

QString ChunkStatistic::nameOf(Kind kind)
{
    for (const auto& [known, text] : Names)
        if (known == kind)
            return *text;
    return {};
}

double ChunkStatistic::compute(Kind kind, std::span<const double> values, std::span<const double> times,
                               FixedTimesTrapezoid* trapezoid)
{
    if (values.empty())
        return NaN;
    switch (kind) {
    case Kind::AUC:
        // Per trial, the steps between the times and their span come from `trapezoid`,
        // worked out once for the frame.
        if (trapezoid)
            return trapezoid->integral(values) / trapezoid->span();
        return Statistics::trapezoid(times, values) /
               (*std::max_element(times.begin(), times.end()) - times.front());
    case Kind::Mean:
        return Statistics::mean(values);
    case Kind::Median:
        return Statistics::median(values);
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

} // namespace zarvi
