#pragma once

#include <span>

namespace zarvi {

/// The sample rate the perievent analysis derives from a time vector:
/// n / (t[n-1] - t[0]) with n the number of samples, and 0 for an empty vector or
/// a vector that spans no time. Pure function, any thread.
///
/// The numerator is the sample count n, not the n - 1 intervals that the signal
/// operations use (sampleRateOf). The chunk length, the column of every statistic
/// time frame and the baseline columns of the normalisation are all derived from
/// this rate, so results saved by earlier runs stay reproducible only with it.
double perieventSampleRate(std::span<const double> time);

} // namespace zarvi
