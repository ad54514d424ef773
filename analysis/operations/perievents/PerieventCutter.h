#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace zarvi {

class Feedback;

/// Where the perievent chunks lie in the signal: the window in samples around the
/// event's sample and, for every kept row, the first signal sample of its chunk and
/// the event it belongs to. Rows are in event order. Plain data.
struct ChunkPlan
{
    int startOffset = 0;
    int endOffset = 0;
    /// Samples per chunk; 0 when the window holds none.
    std::size_t length = 0;
    std::vector<std::size_t> sourceStarts;
    std::vector<std::size_t> events;

    std::size_t rows() const { return sourceStarts.size(); }
};

/// A statistic time frame: start and end in signed seconds relative to the event.
struct TimeFrame
{
    double start = 0.0;
    double end = 0.0;
};

/// The index arithmetic of the perievent chunks: the sample rate, where each event's
/// chunk lies, and which columns of a chunk a time frame or a baseline covers. Saved
/// results stay reproducible only while these roundings stay as they are. Plain
/// functions, any thread.
class PerieventCutter
{
public:
    /// Columns [first, last) of a chunk.
    struct Columns
    {
        std::size_t first = 0;
        std::size_t last = 0;
    };

    /// n / (t[n-1] - t[0]) with n the number of samples (not the n - 1 intervals that
    /// the signal operations use); 0 for an empty vector or one that spans no time.
    static double sampleRate(std::span<const double> time);

    /// Samples before and after the event's sample, from the window [ws, we] in seconds:
    /// startOffset = (int) round(fs * ws), endOffset = (int)(round(fs * we) + 1), so the
    /// chunk length is endOffset - startOffset (none when that is not positive).
    ///
    /// The event's sample is the nearest sample, found with one index that only moves
    /// forward over all events: it advances while it is below N - 2 and the event lies
    /// after the next sample's time, so it stops on the last sample at or before the
    /// event; it then steps once more only if the next sample is strictly nearer. An
    /// event exactly halfway between two samples thus aligns to the earlier one, and
    /// events listed out of time order land on the sample reached so far.
    ///
    /// A row is kept only when i + startOffset >= 0, i + endOffset >= 0 and
    /// i + endOffset <= N - 1 (one sample stays in reserve after the chunk), and when
    /// its first value is not NaN. `time` is increasing and as long as `values`.
    /// Polls `feedback` once per event; nullopt when cancelled.
    static std::optional<ChunkPlan> plan(std::span<const double> time, std::span<const double> values,
                                         std::span<const double> eventTimes, double windowStart,
                                         double windowEnd, double sampleRate, Feedback* feedback);

    /// Time of each chunk column relative to the event: windowStart + j / sampleRate.
    static std::vector<double> timeAxis(double windowStart, double sampleRate, std::size_t length);

    /// The columns of a chunk (window starting at windowStart, `length` columns) that a
    /// time frame [a, b] covers: len = (int) round((b - a) * fs), first = max(0, (int)
    /// round((a - windowStart) * fs)), last = min(first + len, length). Empty when
    /// nothing is left.
    static Columns frameColumns(const TimeFrame& frame, double windowStart, double sampleRate,
                                std::size_t length);
    /// Times handed to the statistic with the columns of a frame: (j - first) / fs + a.
    static std::vector<double> frameTimes(const TimeFrame& frame, const Columns& columns, double sampleRate);

    /// The baseline columns [(int)((bs - t0) * fs + 0.5), (int)((be - t0) * fs + 0.5)]
    /// (both included) of chunks whose time axis starts at t0; nullopt when the matrix
    /// has no row or column, the range is reversed, or either end is not a column.
    static std::optional<Columns> baselineColumns(double baselineStart, double baselineEnd, double t0,
                                                  double sampleRate, std::size_t rows, std::size_t columns);
};

} // namespace zarvi
