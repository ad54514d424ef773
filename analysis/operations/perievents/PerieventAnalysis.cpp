#include "analysis/operations/perievents/PerieventAnalysis.h"

#include "analysis/operations/perievents/ChunkMatrixWriter.h"
#include "analysis/operations/perievents/PerieventCutter.h"
#include "analysis/operations/perievents/PerieventSampleRate.h"
#include "datafile/Feedback.h"
#include "definitions/AnalysisOperationDefinitions.h"
#include "signal/operations/interpolation/LinearResampler.h"

#include <QLocale>

#include <exception>

namespace zarvi {

namespace {

using D = AnalysisOperationDefinitions;

struct Signal
{
    std::span<const double> time;
    std::span<const double> values;
    double sampleRate = 0.0;
};

/// What a run has settled before cutting: the picked events and their baseline events.
struct Events
{
    EventArray analysed;
    std::optional<EventArray> baseline;
};

QString shortest(double seconds)
{
    return QString::number(seconds, 'g', QLocale::FloatingPointShortest);
}

bool alignsToBaseline(const PerieventNormalization& normalization)
{
    return normalization.enabled && !(normalization.start == 0.0 && normalization.end == 0.0);
}

QString pickEvents(const EventArray& events, const PerieventAnalysisConfig& config, Events& picked)
{
    const bool needsOffsets = config.sides != PerieventAnalysisConfig::Sides::Onset;
    if (events.isEmpty() || !events.isValid() || (needsOffsets && !events.hasOffsets()))
        return D::cannotLoadEventMessage().arg(config.eventPath, config.eventName);

    const PerieventNormalization& normalization = config.normalization;
    if (normalization.enabled && normalization.events) {
        const EventArray& baseline = *normalization.events;
        if (baseline.isEmpty() || !baseline.isValid())
            return D::cannotLoadEventMessage().arg(normalization.eventPath, normalization.eventName);
        if (baseline.size() != events.size())
            return D::normalizationCountMessage().arg(normalization.eventName, config.eventName);
        if (baseline.hasOffsets() != events.hasOffsets())
            return D::normalizationOnOffMessage().arg(normalization.eventName, config.eventName);
    }

    const EventSelector::Result selected = EventSelector::select(events, config.selection);
    if (!selected.error.isEmpty())
        return selected.error;
    picked.analysed = events.subset(selected.indices);
    if (normalization.enabled && normalization.events)
        picked.baseline = normalization.events->subset(selected.indices);
    return {};
}

std::span<const double> eventTimes(const EventArray& events, bool offset)
{
    return offset ? std::span<const double>(events.offsets()) : std::span<const double>(events.onsets());
}

/// The scale of every planned row; `scales` stays empty when the rows keep their values.
QString rowScales(const Signal& signal, const ChunkPlan& plan, const PerieventSideConfig& side, bool offset,
                  const Events& events, const PerieventNormalization& normalization, Feedback* feedback,
                  std::vector<RowScale>& scales, bool& canceled)
{
    scales.clear();
    if (!alignsToBaseline(normalization))
        return {};

    // Each row's baseline is a run of consecutive signal samples: a span of the
    // analysed chunk, or the chunk of the matching baseline event.
    std::vector<std::size_t> baselineStarts;
    std::size_t baselineLength = 0;
    if (!events.baseline) {
        const auto columns =
            PerieventNormalizer::baselineColumns(normalization.start, normalization.end, side.windowStart,
                                                 signal.sampleRate, plan.rows(), plan.length);
        if (!columns)
            return D::SubmatBoundsError;
        for (const std::size_t start : plan.sourceStarts)
            baselineStarts.push_back(start + columns->first);
        baselineLength = columns->last - columns->first + 1;
    } else {
        const std::optional<ChunkPlan> baseline =
            PerieventCutter::plan(signal.time, signal.values, eventTimes(*events.baseline, offset),
                                  normalization.start, normalization.end, signal.sampleRate, feedback);
        if (!baseline) {
            canceled = true;
            return {};
        }
        if (baseline->rows() == 0 || baseline->length == 0 || plan.rows() == 0 || plan.length == 0)
            return {};
        // Row k of the baseline chunks serves row k of the analysed chunks.
        if (baseline->rows() < plan.rows())
            return D::SubmatBoundsError;
        baselineStarts = baseline->sourceStarts;
        baselineLength = baseline->length;
    }

    PerieventNormalizer normalizer;
    scales.resize(plan.rows());
    for (std::size_t row = 0; row < plan.rows(); ++row) {
        const std::optional<RowScale> scale = normalizer.scaleOf(
            signal.values.subspan(baselineStarts[row], baselineLength), normalization.method);
        if (!scale)
            return D::MedianNaNError;
        scales[row] = *scale;
    }
    return {};
}

QString analyseSide(const Signal& signal, const PerieventSideConfig& side, bool offset, const Events& events,
                    const PerieventAnalysisConfig& config, Feedback* feedback, int from, int to,
                    PerieventSideResult& result, bool& canceled)
{
    result.offset = offset;
    const std::optional<ChunkPlan> plan =
        PerieventCutter::plan(signal.time, signal.values, eventTimes(events.analysed, offset),
                              side.windowStart, side.windowEnd, signal.sampleRate, feedback);
    if (!plan) {
        canceled = true;
        return {};
    }

    std::vector<RowScale> scales;
    const QString error =
        rowScales(signal, *plan, side, offset, events, config.normalization, feedback, scales, canceled);
    if (!error.isEmpty() || canceled)
        return error;

    ProgressTracker progress(feedback, plan->rows(), from, to);
    if (!ChunkMatrixWriter::write(signal.values, *plan, scales, result.matrix, &progress) ||
        !PerieventStatistics::compute(signal.values, *plan, scales, side.timeFrames, side.windowStart,
                                      signal.sampleRate, config.statistics, result.statistics, feedback)) {
        canceled = true;
        return {};
    }
    result.time = PerieventCutter::timeAxis(side.windowStart, signal.sampleRate, plan->length);
    result.eventNames.clear();
    for (const std::size_t event : plan->events)
        result.eventNames.append(events.analysed.names()[static_cast<qsizetype>(event)]);
    result.timeFrameNames = side.timeFrameNames;
    return {};
}

QString analyse(std::span<const double> time, std::span<const double> values, const EventArray& events,
                const PerieventAnalysisConfig& config, Feedback* feedback, PerieventAnalysisResult& result)
{
    if (time.size() != values.size())
        return D::noDatasetsMessage();
    Events picked;
    QString error = pickEvents(events, config, picked);
    if (!error.isEmpty())
        return error;

    LinearResampler::Result resampled;
    if (config.resampling.enabled) {
        resampled = LinearResampler::resample(time, values, config.resampling.frequency);
        time = resampled.time;
        values = resampled.values;
    }

    std::vector<std::pair<const PerieventSideConfig*, bool>> sides;
    if (config.sides != PerieventAnalysisConfig::Sides::Offset)
        sides.emplace_back(&config.onset, false);
    if (config.sides != PerieventAnalysisConfig::Sides::Onset)
        sides.emplace_back(&config.offset, true);

    const double duration = time.empty() ? 0.0 : time.back() - time.front();
    for (const auto& [side, offset] : sides) {
        if (duration < side->windowEnd - side->windowStart)
            return D::signalTooShortMessage().arg(shortest(duration), shortest(side->windowStart),
                                                  shortest(side->windowEnd));
    }

    const Signal signal{time, values, perieventSampleRate(time)};
    result.sides.resize(sides.size());
    const int count = static_cast<int>(sides.size());
    for (int s = 0; s < count; ++s) {
        bool canceled = false;
        error = analyseSide(signal, *sides[s].first, sides[s].second, picked, config, feedback,
                            100 * s / count, 100 * (s + 1) / count, result.sides[s], canceled);
        if (canceled) {
            result.canceled = true;
            return {};
        }
        if (!error.isEmpty())
            return error;
    }
    if (alignsToBaseline(config.normalization) &&
        config.normalization.method != PerieventNormalizer::Method::Mean)
        result.unit = D::ZScoreUnit;
    return {};
}

} // namespace

PerieventAnalysisResult PerieventAnalysis::run(std::span<const double> time, std::span<const double> values,
                                               const EventArray& events,
                                               const PerieventAnalysisConfig& config, Feedback* feedback)
{
    PerieventAnalysisResult result;
    run(time, values, events, config, feedback, result);
    return result;
}

void PerieventAnalysis::run(std::span<const double> time, std::span<const double> values,
                            const EventArray& events, const PerieventAnalysisConfig& config,
                            Feedback* feedback, PerieventAnalysisResult& result)
{
    if (feedback)
        feedback->setLabel(D::perieventProgressLabel());
    result.unit.clear();
    result.messages.clear();
    result.canceled = false;
    try {
        const QString error = analyse(time, values, events, config, feedback, result);
        if (!error.isEmpty())
            result.messages.append(error);
    } catch (const std::exception& failure) {
        // Only allocation can throw here (a window and event count too large for memory).
        result.messages.append(QString::fromLocal8Bit(failure.what()));
    }
    if (!result.succeeded())
        result.sides.clear();
}

std::optional<PerieventResampling::Method> PerieventAnalysis::resampleMethodFromName(const QString& name)
{
    if (name == D::LinearMethod)
        return PerieventResampling::Method::Linear;
    return std::nullopt;
}

} // namespace zarvi
