#include "analysis/operations/perievents/PerieventAnalysis.h"

#include "analysis/operations/perievents/FrameStatistics.h"
#include "datafile/Feedback.h"
#include "datafile/TwoHalves.h"
#include "definitions/AnalysisOperationDefinitions.h"
#include "numeric/Statistics.h"
#include "signal/operations/interpolation/LinearResampler.h"

#include <QLocale>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <exception>

namespace zarvi {

namespace {

using D = AnalysisOperationDefinitions;

/// Baseline samples in all rows from which the row scales are taken on both cores.
constexpr std::size_t BothCoresFrom = std::size_t{1} << 18;

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

/// The centre and scale of every planned row from its baseline, a run of consecutive
/// signal samples: a span of the analysed chunk, or the chunk of the matching baseline
/// event. Rows that keep their values get the identity, (x - 0) / 1 = x.
QString rowScales(const Signal& signal, const ChunkPlan& plan, const PerieventSideConfig& side, bool offset,
                  const Events& events, const PerieventNormalization& normalization, Feedback* feedback,
                  std::vector<Statistics::Scale>& scales, bool& canceled)
{
    scales.assign(plan.rows(), Statistics::Scale{});
    if (!alignsToBaseline(normalization))
        return {};
    std::vector<std::size_t> baselineStarts;
    std::size_t baselineLength = 0;
    if (!events.baseline) {
        const auto columns =
            PerieventCutter::baselineColumns(normalization.start, normalization.end, side.windowStart,
                                             signal.sampleRate, plan.rows(), plan.length);
        if (!columns)
            return D::SubmatBoundsError;
        for (const std::size_t start : plan.sourceStarts)
            baselineStarts.push_back(start + columns->first);
        baselineLength = columns->last - columns->first;
    } else {
        const std::optional<ChunkPlan> baseline =
            PerieventCutter::plan(signal.time, signal.values, eventTimes(*events.baseline, offset),
                                  normalization.start, normalization.end, signal.sampleRate, feedback);
        if (!baseline) {
            canceled = true;
            return {};
        }
        if (baseline->rows() == 0 || baseline->length == 0 || plan.rows() == 0 || plan.length == 0)
            return {}; // no baseline: the rows keep their values
        // Row k of the baseline chunks serves row k of the analysed chunks.
        if (baseline->rows() < plan.rows())
            return D::SubmatBoundsError;
        baselineStarts = baseline->sourceStarts;
        baselineLength = baseline->length;
    }

    // Each row's scale is its own: many long baselines are shared between both cores.
    using Method = PerieventNormalization::Method;
    std::atomic<bool> medianOfNaN{false};
    inTwoHalves(plan.rows(), plan.rows() * baselineLength >= BothCoresFrom,
                [&](std::size_t begin, std::size_t end) {
                    for (std::size_t row = begin; row < end; ++row) {
                        const auto baseline = signal.values.subspan(baselineStarts[row], baselineLength);
                        switch (normalization.method) {
                        case Method::Mean:
                            scales[row] = {Statistics::mean(baseline), 1.0};
                            break;
                        case Method::StandardZScore:
                            scales[row] = Statistics::standardScore(baseline);
                            break;
                        case Method::ModifiedZScore:
                            scales[row] = Statistics::modifiedScore(baseline);
                            if (std::isnan(scales[row].centre))
                                medianOfNaN = true; // the baseline holds a NaN
                            break;
                        }
                    }
                });
    return medianOfNaN ? D::MedianNaNError : QString();
}

/// Fills the trial-by-time matrix with the normalised chunks. Column by column, so that
/// the matrix is written in the order it lies in memory while each chunk is read in order.
bool fillMatrix(std::span<const double> values, const ChunkPlan& plan,
                std::span<const Statistics::Scale> scales, ProgressTracker& progress, arma::mat& matrix)
{
    matrix.set_size(plan.rows(), plan.length);
    for (std::size_t j = 0; j < plan.length; ++j) {
        if (progress.isCanceled())
            return false;
        double* column = matrix.colptr(j);
        for (std::size_t k = 0; k < plan.rows(); ++k)
            column[k] = scales[k].score(values[plan.sourceStarts[k] + j]);
        progress.update(j + 1);
    }
    return true;
}

/// One matrix per statistic in `kinds` into `out`, a row per row of `rows` and a column
/// per time frame of `side`, from the rows' values in each frame normalised as in the
/// matrix. `values` is the cut signal. False when cancelled.
bool summarise(std::span<const double> values, const PerieventSideResult& rows,
               const PerieventSideConfig& side, double sampleRate,
               std::span<const ChunkStatistic::Kind> kinds, Feedback* feedback, std::vector<arma::mat>& out)
{
    const std::size_t count = rows.rowStarts.size();
    FrameStatistics frames(side, sampleRate, rows.rowLength, kinds);
    frames.prepare(count, out);
    std::vector<double> normalised(rows.rowLength);
    for (std::size_t row = 0; row < count; ++row) {
        if (feedback && feedback->isCanceled())
            return false;
        rows.rowScales[row].scoreAll(values.subspan(rows.rowStarts[row], rows.rowLength), normalised.data());
        frames.take(normalised, row, out);
    }
    return true;
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
    std::vector<Statistics::Scale> scales;
    const QString error =
        rowScales(signal, *plan, side, offset, events, config.normalization, feedback, scales, canceled);
    if (!error.isEmpty() || canceled)
        return error;

    ProgressTracker progress(feedback, plan->length, from, to);
    if (!config.buildMatrix)
        result.matrix.reset();
    if (config.buildMatrix && !fillMatrix(signal.values, *plan, scales, progress, result.matrix)) {
        canceled = true;
        return {};
    }
    result.rowStarts = plan->sourceStarts;
    result.rowScales = std::move(scales);
    result.rowLength = plan->length;
    result.statistics.clear();
    if (config.summarise && !summarise(signal.values, result, side, signal.sampleRate, config.statistics,
                                       feedback, result.statistics)) {
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
    result.resampledValues.clear();
    if (config.resampling.enabled) {
        resampled = LinearResampler::resample(time, values, config.resampling.frequency);
        // The rows are cut from these values; a caller that writes them itself needs them.
        result.resampledValues = std::move(resampled.values);
        time = resampled.time;
        values = result.resampledValues;
    }

    std::vector<std::pair<const PerieventSideConfig*, bool>> sides;
    if (config.sides != PerieventAnalysisConfig::Sides::Offset)
        sides.emplace_back(&config.onset, false);
    if (config.sides != PerieventAnalysisConfig::Sides::Onset)
        sides.emplace_back(&config.offset, true);

    const double duration = time.empty() ? 0.0 : time.back() - time.front();
    for (const auto& [side, offset] : sides) {
        const QString tooLong =
            PerieventAnalysis::windowTooLongMessage(duration, side->windowStart, side->windowEnd);
        if (!tooLong.isEmpty())
            return tooLong;
    }

    const Signal signal{time, values, PerieventCutter::sampleRate(time)};
    result.sampleRate = signal.sampleRate;
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
        config.normalization.method != PerieventNormalization::Method::Mean)
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

QString PerieventAnalysis::windowTooLongMessage(double duration, double windowStart, double windowEnd)
{
    if (duration >= windowEnd - windowStart)
        return {};
    return D::signalTooShortMessage().arg(shortest(duration), shortest(windowStart), shortest(windowEnd));
}

} // namespace zarvi
