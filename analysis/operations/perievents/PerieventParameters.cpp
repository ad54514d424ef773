#include "analysis/operations/perievents/PerieventParameters.h"

#include "definitions/AnalysisOperationDefinitions.h"
#include "definitions/ZarviMainDefinitions.h"
#include "events/EventArrayFile.h"

#include <cmath>

namespace zarvi {

namespace {

using D = AnalysisOperationDefinitions;
using Z = ZarviMainDefinitions;

/// The parameter map with the messages of what it lacks. The registry has already
/// checked kinds, choices and the required keys of a run; what is left are the rules
/// that tie keys together.
struct Reader
{
    const ParameterValues& values;
    QStringList& errors;

    void missing(const QString& key) { errors << Z::parameterMissingMessage().arg(key); }
    void invalid(const QString& key) { errors << Z::parameterInvalidMessage().arg(key); }

    /// [start, end]; false (with the message) when missing or not two finite numbers.
    bool pair(const QString& key, double& start, double& end)
    {
        if (!values.has(key)) {
            missing(key);
            return false;
        }
        const std::vector<double> numbers = values.numbers(key);
        if (numbers.size() != 2 || !std::isfinite(numbers[0]) || !std::isfinite(numbers[1])) {
            invalid(key);
            return false;
        }
        start = numbers[0];
        end = numbers[1];
        return true;
    }
};

void readSide(Reader& reader, const QString& windowKey, const QString& framesKey, const QString& namesKey,
              PerieventSideConfig& side)
{
    reader.pair(windowKey, side.windowStart, side.windowEnd);
    const std::vector<double> bounds = reader.values.numbers(framesKey);
    if (bounds.size() % 2 != 0) {
        reader.invalid(framesKey);
        return;
    }
    side.timeFrames.clear();
    for (std::size_t i = 0; i < bounds.size(); i += 2)
        side.timeFrames.push_back({bounds[i], bounds[i + 1]});
    side.timeFrameNames = reader.values.texts(namesKey);
    if (!side.timeFrames.empty() && side.timeFrameNames.isEmpty())
        reader.missing(namesKey);
    else if (static_cast<std::size_t>(side.timeFrameNames.size()) != side.timeFrames.size())
        reader.invalid(namesKey);
}

void readSides(Reader& reader, PerieventRequest& request)
{
    PerieventAnalysisConfig& config = request.config;
    const bool offset = reader.values.flag(D::Offset);
    const bool onset = reader.values.has(D::Onset) ? reader.values.flag(D::Onset) : !offset;
    if (!onset && !offset) {
        reader.invalid(D::Onset);
        return;
    }
    if (reader.values.flag(D::PlainEvents)) {
        if (onset && offset) {
            reader.invalid(D::PlainEvents);
            return;
        }
        // The chosen column becomes a plain array of events, analysed like onsets.
        request.columns = offset ? PerieventRequest::Columns::Offsets : PerieventRequest::Columns::Onsets;
        config.sides = PerieventAnalysisConfig::Sides::Onset;
        readSide(reader, D::PerieventTimeFrame, D::StatisticTimeFrames, D::TimeFramesNames, config.onset);
        return;
    }
    config.sides = onset && offset ? PerieventAnalysisConfig::Sides::Both
                   : onset         ? PerieventAnalysisConfig::Sides::Onset
                                   : PerieventAnalysisConfig::Sides::Offset;
    // The unprefixed keys describe the side taken, the onset side when both are.
    readSide(reader, D::PerieventTimeFrame, D::StatisticTimeFrames, D::TimeFramesNames,
             onset ? config.onset : config.offset);
    if (onset && offset)
        readSide(reader, D::OffsetPerieventTimeFrame, D::OffsetStatisticTimeFrames, D::OffsetTimeFramesNames,
                 config.offset);
}

void readStatistics(Reader& reader, PerieventAnalysisConfig& config)
{
    QStringList names = reader.values.texts(D::Statistics);
    const QString single = reader.values.text(D::Statistic);
    if (!single.isEmpty())
        names << single;
    names.removeDuplicates(); // one dataset per statistic
    config.statistics.clear();
    for (const QString& name : names) {
        const std::optional<ChunkStatistic::Kind> kind = ChunkStatistic::fromName(name);
        if (!kind) {
            reader.invalid(single == name ? D::Statistic : D::Statistics);
            return;
        }
        config.statistics.push_back(*kind);
    }
}

void readNormalization(Reader& reader, PerieventAnalysisConfig& config)
{
    PerieventNormalization& normalization = config.normalization;
    normalization = {};
    if (!reader.values.has(D::NormalizeWindow))
        return;
    normalization.enabled = reader.pair(D::NormalizeWindow, normalization.start, normalization.end);
    using Method = PerieventNormalization::Method;
    const QString method = reader.values.text(D::NormalizeMethod);
    if (method == D::StandardZScore)
        normalization.method = Method::StandardZScore;
    else if (method == D::ModifiedZScore)
        normalization.method = Method::ModifiedZScore;
    else if (!method.isEmpty() && method != D::Mean)
        reader.invalid(D::NormalizeMethod);
    const QString event = reader.values.text(D::NormalizeEvent);
    if (!event.isEmpty() && event != D::CurrentEvent) {
        normalization.eventName = event;
        normalization.eventPath = reader.values.text(D::NormalizeEventPath);
        if (normalization.eventPath.isEmpty())
            reader.missing(D::NormalizeEventPath);
    }
}

void readSelection(Reader& reader, PerieventRequest& request)
{
    EventSelection& selection = request.config.selection;
    selection = {};
    if (!reader.values.flag(D::SelectEvents))
        return;
    if (reader.values.has(D::TimePeriod)) {
        selection.mode = EventSelection::Mode::ByTimePeriod;
        request.timePeriodArray = reader.values.text(D::TimePeriod);
        for (const QString& key : {D::TimePeriodPath, D::TimePeriodName})
            if (!reader.values.has(key))
                reader.missing(key);
        request.timePeriodPath = reader.values.text(D::TimePeriodPath);
        selection.periodName = reader.values.text(D::TimePeriodName);
        return;
    }
    selection.mode = EventSelection::Mode::ByNumber;
    double first = 0.0, last = 0.0;
    if (!reader.pair(D::EventRange, first, last))
        return;
    if (first != std::floor(first) || last != std::floor(last) || std::abs(first) > 1e9 ||
        std::abs(last) > 1e9) {
        reader.invalid(D::EventRange);
        return;
    }
    selection.first = static_cast<int>(first);
    selection.last = static_cast<int>(last);
}

void readResampling(Reader& reader, PerieventAnalysisConfig& config)
{
    PerieventResampling& resampling = config.resampling;
    resampling = {};
    if (!reader.values.flag(D::Resample))
        return;
    resampling.enabled = true;
    if (!reader.values.has(D::ResampleFrequency)) {
        reader.missing(D::ResampleFrequency);
    } else {
        resampling.frequency = reader.values.number(D::ResampleFrequency);
        if (!(resampling.frequency > 0.0) || !std::isfinite(resampling.frequency))
            reader.invalid(D::ResampleFrequency);
    }
    // Linear is the only method, and the default.
    const QString method = reader.values.text(D::ResampleMethod);
    if (!method.isEmpty() && method != D::LinearMethod)
        reader.invalid(D::ResampleMethod);
}

/// The times of one column as plain events, keeping the names.
EventArray plainEvents(const EventArray& events, PerieventRequest::Columns columns)
{
    const bool offsets = columns == PerieventRequest::Columns::Offsets && events.hasOffsets();
    return EventArray(offsets ? events.offsets() : events.onsets(), {}, events.names());
}

} // namespace

QStringList PerieventParameters::parse(const ParameterValues& parameters, PerieventRequest& request)
{
    QStringList errors;
    Reader reader{parameters, errors};
    request = PerieventRequest{};
    PerieventAnalysisConfig& config = request.config;
    for (const QString& key : {D::EventPath, D::Event})
        if (!parameters.has(key))
            reader.missing(key);
    config.eventPath = parameters.text(D::EventPath);
    config.eventName = parameters.text(D::Event);
    readSides(reader, request);
    readStatistics(reader, config);
    readNormalization(reader, config);
    readSelection(reader, request);
    readResampling(reader, config);
    return errors;
}

QString PerieventParameters::loadEvents(HDF5Manager_V6& file, PerieventRequest& request, EventArray& events)
{
    PerieventAnalysisConfig& config = request.config;
    std::optional<EventArray> stored = EventArrayFile::readEvents(file, config.eventPath, config.eventName);
    const bool needsOffsets = request.columns == PerieventRequest::Columns::Offsets;
    if (!stored || stored->isEmpty() || (needsOffsets && !stored->hasOffsets()))
        return D::cannotLoadEventMessage().arg(config.eventPath, config.eventName);
    events = request.columns == PerieventRequest::Columns::AsStored ? std::move(*stored)
                                                                    : plainEvents(*stored, request.columns);

    PerieventNormalization& normalization = config.normalization;
    normalization.events.reset();
    if (normalization.enabled && !normalization.eventName.isEmpty()) {
        std::optional<EventArray> baseline =
            EventArrayFile::readEvents(file, normalization.eventPath, normalization.eventName);
        if (!baseline || baseline->isEmpty())
            return D::cannotLoadEventMessage().arg(normalization.eventPath, normalization.eventName);
        // Baseline events pair with plain events the same way: by the same column.
        if (request.columns != PerieventRequest::Columns::AsStored)
            baseline = plainEvents(*baseline, request.columns);
        normalization.events = std::move(baseline);
    }

    if (config.selection.mode == EventSelection::Mode::ByTimePeriod) {
        std::optional<TimePeriodArray> periods =
            EventArrayFile::readTimePeriods(file, request.timePeriodPath, request.timePeriodArray);
        if (!periods)
            return D::cannotLoadEventMessage().arg(request.timePeriodPath, request.timePeriodArray);
        config.selection.periods = std::move(*periods);
    }
    return {};
}

} // namespace zarvi
