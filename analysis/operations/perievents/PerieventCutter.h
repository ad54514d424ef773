#pragma once

#include "analysis/operations/perievents/ChunkPlan.h"

#include <optional>
#include <span>
#include <vector>

namespace zarvi {

class Feedback;

/// Finds, for each event, the signal sample it is aligned to and whether a whole
/// chunk of the window fits around it. Runs on the caller's (worker) thread.
class PerieventCutter
{
public:
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
    /// its first value is not NaN. `time` is increasing, as a signal's time vector is,
    /// and as long as `values`.
    /// Polls `feedback` once per event; nullopt when cancelled.
    static std::optional<ChunkPlan> plan(std::span<const double> time, std::span<const double> values,
                                         std::span<const double> eventTimes, double windowStart,
                                         double windowEnd, double sampleRate, Feedback* feedback);

    /// Time of each chunk column relative to the event: windowStart + j / sampleRate.
    static std::vector<double> timeAxis(double windowStart, double sampleRate, std::size_t length);
};

} // namespace zarvi
