#include "signal/operations/filter/ZeroPhaseFilter.h"

#include "definitions/SignalOperationDefinitions.h"

#include <algorithm>
#include <array>
#include <span>

namespace zarvi {

namespace {

/// Samples filtered between two progress reports and cancel checks.
constexpr std::size_t BlockSize = std::size_t{1} << 16;

/// Runs one pass of the filter over a part of the extended signal, block by block,
/// first to last or last to first. False when cancelled.
bool pass(Butterworth& filter, std::span<double> part, bool backward, ProgressTracker& progress,
          std::size_t& done)
{
    for (std::size_t offset = 0; offset < part.size(); offset += BlockSize) {
        if (progress.isCanceled())
            return false;
        const std::size_t length = std::min(BlockSize, part.size() - offset);
        if (backward)
            filter.processBackward(part.subspan(part.size() - offset - length, length));
        else
            filter.process(part.subspan(offset, length));
        done += length;
        progress.update(done);
    }
    return true;
}

bool sameState(const SectionCascade::StateArray& a, const SectionCascade::StateArray& b)
{
    for (std::size_t k = 0; k < a.size(); ++k)
        if (a[k].w1 != b[k].w1 || a[k].w2 != b[k].w2)
            return false;
    return true;
}

/// Runs the filter over `count` copies of `value`, keeping only the state it leaves.
/// Once a whole chunk leaves the state exactly as it found it, every further chunk
/// would too, so only the samples short of a whole chunk are left to run: the state
/// is the one the full run would leave, bit for bit, at a fraction of the cost.
bool constantPass(Butterworth& filter, double value, std::size_t count, ProgressTracker& progress,
                  std::size_t& done)
{
    std::array<double, 1024> scratch;
    std::size_t offset = 0;
    while (offset < count) {
        if (offset % BlockSize == 0 && progress.isCanceled())
            return false;
        const SectionCascade::StateArray before = filter.state();
        const std::size_t length = std::min(scratch.size(), count - offset);
        std::fill_n(scratch.begin(), length, value);
        filter.process(std::span<double>(scratch.data(), length));
        std::size_t advanced = length;
        if (length == scratch.size() && sameState(before, filter.state())) {
            const std::size_t rest = (count - offset - length) % scratch.size();
            std::fill_n(scratch.begin(), rest, value);
            filter.process(std::span<double>(scratch.data(), rest));
            advanced = count - offset;
        }
        offset += advanced;
        done += advanced;
        progress.update(done);
    }
    return true;
}

} // namespace

KernelOutcome ZeroPhaseFilter::apply(Butterworth& filter, std::vector<double>& values, Feedback* feedback)
{
    if (feedback)
        feedback->setLabel(SignalOperationDefinitions::applyingFilterLabel());
    const std::size_t n = values.size();
    if (n == 0)
        return KernelOutcome::completed();
    const std::size_t pad = static_cast<std::size_t>(0.1 * static_cast<double>(n));

    // The extended signal is [pad copies of x0 | values | x[n-1] ... x[n-pad]]. The
    // signal is filtered where it lies and only the end pad needs memory: the forward
    // outputs over the front pad feed nothing but the backward pass over the front pad,
    // whose outputs are dropped, so the front pad only has to set the filter's state.
    std::vector<double> endPad(pad);
    std::reverse_copy(values.end() - static_cast<std::ptrdiff_t>(pad), values.end(), endPad.begin());

    ProgressTracker progress(feedback, 2 * n + 3 * pad);
    std::size_t done = 0;
    // Forward over the extended signal, then backward from its end with the state the
    // forward pass left: the same as reversing, filtering again and reversing back.
    const bool completed =
        constantPass(filter, values.front(), pad, progress, done) &&
        pass(filter, values, false, progress, done) && pass(filter, endPad, false, progress, done) &&
        pass(filter, endPad, true, progress, done) && pass(filter, values, true, progress, done);
    return completed ? KernelOutcome::completed() : KernelOutcome::cancelled();
}

} // namespace zarvi
