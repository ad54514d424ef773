#pragma once

#include "analysis/operations/perievents/ChunkStatistic.h"
#include "analysis/operations/perievents/PerieventCutter.h"
#include "events/EventArray.h"
#include "events/EventSelector.h"
#include "numeric/Statistics.h"

#include <QString>
#include <QStringList>

#include <armadillo>

#include <optional>
#include <span>
#include <vector>

namespace zarvi {

class Feedback;

/// Window and statistic table of one side (onset or offset) of the analysis.
struct PerieventSideConfig
{
    /// Perievent window in signed seconds relative to the event; start is the lower bound.
    double windowStart = 0.0;
    double windowEnd = 0.0;
    std::vector<TimeFrame> timeFrames;
    /// One name per time frame.
    QStringList timeFrameNames;
};

/// Baseline alignment of the chunks: every value x of a row becomes
/// (x - centre) / scale, both taken from the row's baseline.
struct PerieventNormalization
{
    enum class Method
    {
        /// centre = mean, scale = 1: plain subtraction.
        Mean,
        /// Statistics::standardScore: mean and standard deviation (n - 1).
        StandardZScore,
        /// Statistics::modifiedScore: median and raw MAD, in units of the MAD itself.
        ModifiedZScore
    };

    bool enabled = false;
    /// Baseline window in seconds relative to the event; 0 - 0 means no alignment.
    double start = 0.0;
    double end = 0.0;
    Method method = Method::Mean;
    /// When set, the baseline of row k is the k-th chunk of these events cut with the
    /// baseline window, instead of the baseline columns of the analysed chunk
    /// ("Current Event"). The array must hold as many events as the analysed one, with
    /// offsets if and only if it has them; the selection of the analysed events then
    /// picks the same rows here, so trial k keeps its own baseline event.
    std::optional<EventArray> events;
    QString eventPath;
    QString eventName;
};

/// Optional linear resampling of the signal before cutting.
struct PerieventResampling
{
    bool enabled = false;
    double frequency = 0.0;
};

struct PerieventAnalysisConfig
{
    enum class Sides
    {
        Onset,
        Offset,
        Both
    };
    /// Path and name of the analysed event array, for the messages.
    QString eventPath;
    QString eventName;
    Sides sides = Sides::Onset;
    PerieventSideConfig onset;
    PerieventSideConfig offset;
    std::vector<ChunkStatistic::Kind> statistics;
    EventSelection selection;
    PerieventNormalization normalization;
    PerieventResampling resampling;
    /// False when the caller writes the rows itself from each side's rowStarts and
    /// rowScales (the operation's run, straight into the file): the matrices then stay empty.
    bool buildMatrix = true;
    /// False when the caller takes each side's statistics itself (the operation's run, from
    /// the rows it writes, see NormalisedBands): the statistics then stay empty.
    bool summarise = true;
};

/// The analysis of one side.
struct PerieventSideResult
{
    bool offset = false;
    /// Rows = kept events, columns = samples of the window (column-major); empty unless
    /// the configuration asks for it.
    arma::mat matrix;
    /// How row k of the matrix is cut: rowLength samples of the cut signal (see
    /// PerieventAnalysisResult::cutSignal) from rowStarts[k], each x giving rowScales[k].score(x).
    std::vector<std::size_t> rowStarts;
    std::vector<Statistics::Scale> rowScales;
    std::size_t rowLength = 0;
    /// Time of each column relative to the event, from the window start.
    std::vector<double> time;
    /// Names of the kept events, one per row.
    QStringList eventNames;
    QStringList timeFrameNames;
    /// Parallel to the configured statistics: rows = kept events, columns = time frames.
    std::vector<arma::mat> statistics;
};

struct PerieventAnalysisResult
{
    /// The onset side first, then the offset side, as configured.
    std::vector<PerieventSideResult> sides;
    /// The resampled values when the signal was resampled before cutting; empty when the
    /// rows are cut from the values given to run().
    std::vector<double> resampledValues;
    /// Samples per second of the cut signal.
    double sampleRate = 0.0;
    /// "z-score" when a z-score normalisation was applied; empty keeps the signal's unit.
    QString unit;
    /// The message that stopped the run; empty on success.
    QStringList messages;
    bool canceled = false;

    bool succeeded() const { return messages.isEmpty() && !canceled; }
};

/// The perievent kernel: cuts a signal into equal chunks around each event, stacks
/// them into a trial-by-time matrix, aligns each chunk to a baseline and summarises
/// it inside statistic time frames. A baseline with a single value has a standard
/// deviation of 0, and a constant one a MAD of 0: the row then divides by zero and
/// turns non-finite, which is left visible rather than clamped. Runs on the
/// operation's worker thread; touches no shared state. Failures come back as
/// messages, never as exceptions.
class PerieventAnalysis
{
public:
    /// `time` (seconds, increasing) and `values` are the signal; `events` the analysed
    /// event array. The sample rate is PerieventCutter::sampleRate() of the (resampled) time.
    static PerieventAnalysisResult run(std::span<const double> time, std::span<const double> values,
                                       const EventArray& events, const PerieventAnalysisConfig& config,
                                       Feedback* feedback);

    /// The same, reusing the memory of `result` (its matrices keep their storage when
    /// the sizes repeat, e.g. one animal after another of an experiment).
    static void run(std::span<const double> time, std::span<const double> values, const EventArray& events,
                    const PerieventAnalysisConfig& config, Feedback* feedback,
                    PerieventAnalysisResult& result);

    /// Why a signal whose times span `duration` seconds (last minus first) cannot hold
    /// the window [windowStart, windowEnd]; empty when it can. The run refuses with it,
    /// and the view and its preview say the same words with the same duration.
    static QString windowTooLongMessage(double duration, double windowStart, double windowEnd);
};

} // namespace zarvi
