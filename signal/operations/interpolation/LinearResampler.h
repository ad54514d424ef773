#pragma once

#include <span>
#include <vector>

namespace zarvi {

/// Resamples a signal onto a uniform time axis by linear interpolation between the
/// neighbouring original samples. Used by the signal interpolation operation and by
/// the perievent analysis before cutting. Plain function on the caller's thread.
class LinearResampler
{
public:
    struct Result
    {
        std::vector<double> time;
        std::vector<double> values;
    };

    /// The new axis starts at time[0] and steps by 1 / frequency, t_k = time[0] + k / frequency,
    /// up to the last original time (a target within a billionth of a step beyond it
    /// still counts, so rounding does not lose the final sample). Each value is
    /// interpolated on the original interval around its time. `time` must be
    /// increasing. Empty when the input is empty, the lengths differ, the frequency
    /// is not positive, or the new axis would exceed 2^31 samples.
    static Result resample(std::span<const double> time, std::span<const double> values, double frequency);
};

} // namespace zarvi
