#include "analysis/operations/perievents/PerieventChunkPreview.h"

#include "analysis/operations/perievents/PerieventParameters.h"
#include "datafile/HDF5Manager_V6.h"
#include "definitions/AnalysisOperationDefinitions.h"
#include "events/SignalExcerpt.h"
#include "framework/OperationRegistry.h"

#include <algorithm>
#include <limits>

namespace zarvi {

namespace {

using D = AnalysisOperationDefinitions;

/// Extra seconds read on each side, so that a window edge never falls on the excerpt's end.
constexpr double MarginSeconds = 1.0;

struct Span
{
    double from = std::numeric_limits<double>::infinity();
    double to = -std::numeric_limits<double>::infinity();

    void cover(double time, double start, double end)
    {
        from = std::min(from, time + start);
        to = std::max(to, time + end);
    }
};

} // namespace

PerieventChunkPreview::Result PerieventChunkPreview::compute(HDF5Manager_V6& file,
                                                             const QVariantMap& parameters,
                                                             const QString& valuesPath, std::size_t event)
{
    Result result;
    QVariantMap normalized;
    QStringList errors;
    PerieventRequest request;
    if (!OperationRegistry::instance().normalize(parameters, normalized, errors) ||
        !(errors = PerieventParameters::parse(ParameterValues(normalized), request)).isEmpty()) {
        result.message = errors.value(0);
        return result;
    }
    EventArray events;
    result.message = PerieventParameters::loadEvents(file, request, events);
    if (!result.message.isEmpty())
        return result;
    if (event >= events.size()) {
        result.message = D::previewLabel();
        return result;
    }

    // The one event, with its own baseline event, over just the samples it needs.
    PerieventAnalysisConfig& config = request.config;
    config.selection = {};
    const std::size_t picked[] = {event};
    const EventArray single = events.subset(picked);
    Span span;
    const bool onset = config.sides != PerieventAnalysisConfig::Sides::Offset;
    const bool offset = config.sides != PerieventAnalysisConfig::Sides::Onset && single.hasOffsets();
    if (onset)
        span.cover(single.onsets()[0], config.onset.windowStart, config.onset.windowEnd);
    if (offset)
        span.cover(single.offsets()[0], config.offset.windowStart, config.offset.windowEnd);
    // The whole signal must hold the window, as the run checks; the excerpt read below
    // is shorter and says nothing of that.
    const std::optional<SignalExcerpt::Extent> whole = SignalExcerpt::extent(file, valuesPath);
    if (!whole) {
        result.message = file.lastError();
        return result;
    }
    const double duration = whole->lastTime - whole->firstTime;
    for (const auto& [taken, side] : {std::pair{onset, &config.onset}, std::pair{offset, &config.offset}}) {
        const QString tooLong =
            taken ? PerieventAnalysis::windowTooLongMessage(duration, side->windowStart, side->windowEnd)
                  : QString();
        if (!tooLong.isEmpty()) {
            result.message = tooLong;
            return result;
        }
    }
    PerieventNormalization& normalization = config.normalization;
    if (normalization.enabled && normalization.events && event < normalization.events->size()) {
        normalization.events = normalization.events->subset(picked);
        const EventArray& baseline = *normalization.events;
        if (onset)
            span.cover(baseline.onsets()[0], normalization.start, normalization.end);
        if (offset && baseline.hasOffsets())
            span.cover(baseline.offsets()[0], normalization.start, normalization.end);
    }

    Signal excerpt;
    if (!SignalExcerpt::read(file, valuesPath, span.from - MarginSeconds, span.to + MarginSeconds, excerpt)) {
        result.message = file.lastError();
        return result;
    }
    // Cut off by an end of the signal, the excerpt cannot hold the chunk: the run drops such an event.
    const double excerptDuration = excerpt.time.empty() ? 0.0 : excerpt.time.back() - excerpt.time.front();
    if (excerptDuration < span.to - span.from) {
        result.message = D::previewLabel();
        return result;
    }
    const PerieventAnalysisResult analysis =
        PerieventAnalysis::run(excerpt.time, excerpt.values, single, config, nullptr);
    if (!analysis.succeeded()) {
        result.message = analysis.messages.value(0);
        return result;
    }
    const PerieventSideResult& side = analysis.sides.front();
    if (side.matrix.n_rows == 0) {
        result.message = D::previewLabel();
        return result;
    }
    result.time = side.time;
    const arma::rowvec row = side.matrix.row(0);
    result.values.assign(row.begin(), row.end());
    for (const TimeFrame& frame : (side.offset ? config.offset : config.onset).timeFrames)
        result.frames.emplace_back(frame.start, frame.end);
    return result;
}

} // namespace zarvi
