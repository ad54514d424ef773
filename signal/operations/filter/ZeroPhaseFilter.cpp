#include "signal/operations/filter/ZeroPhaseFilter.h"

#include "definitions/SignalOperationDefinitions.h"

#include <algorithm>
#include <span>

namespace zarvi {

namespace {
/// Samples filtered between two progress reports and cancel checks.
constexpr std::size_t BlockSize = std::size_t{1} << 16;
} // namespace

KernelOutcome ZeroPhaseFilter::apply(Butterworth& filter, std::vector<double>& values, Feedback* feedback)
{
    if (feedback)
        feedback->setLabel(SignalOperationDefinitions::applyingFilterLabel());
    const std::size_t n = values.size();
    const std::size_t pad = static_cast<std::size_t>(0.1 * static_cast<double>(n));
    const std::size_t total = n + 2 * pad;

    std::vector<double> extended(total);
    std::fill_n(extended.begin(), pad, n > 0 ? values.front() : 0.0);
    std::copy(values.begin(), values.end(), extended.begin() + pad);
    std::reverse_copy(values.end() - pad, values.end(), extended.begin() + pad + n);

    ProgressTracker progress(feedback, 2 * total);
    const std::span<double> all(extended);
    for (std::size_t start = 0; start < total; start += BlockSize) {
        if (progress.isCanceled())
            return KernelOutcome::cancelled();
        const std::size_t length = std::min(BlockSize, total - start);
        filter.process(all.subspan(start, length));
        progress.update(start + length);
    }
    // The backward pass walks the array from its end, which is the reversal, the
    // second pass and the reversal back without moving any sample.
    for (std::size_t end = total; end > 0;) {
        if (progress.isCanceled())
            return KernelOutcome::cancelled();
        const std::size_t length = std::min(BlockSize, end);
        filter.processBackward(all.subspan(end - length, length));
        end -= length;
        progress.update(2 * total - end);
    }
    std::copy_n(extended.begin() + pad, n, values.begin());
    progress.update(2 * total);
    return KernelOutcome::completed();
}

} // namespace zarvi
