#include "analysis/operations/perievents/PerieventSampleRate.h"

namespace zarvi {

double perieventSampleRate(std::span<const double> time)
{
    if (time.empty())
        return 0.0;
    const double span = time.back() - time.front();
    // A single sample (or a time vector that does not advance) has no rate; 0 keeps
    // every derived index finite instead of dividing by a zero span.
    return span > 0.0 ? static_cast<double>(time.size()) / span : 0.0;
}

} // namespace zarvi
