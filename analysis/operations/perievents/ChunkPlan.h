#pragma once

#include <climits>
#include <cstddef>
#include <optional>
#include <vector>

namespace zarvi {

/// Where the perievent chunks lie in the signal: the window in samples around the
/// event's sample and, for every kept row, the first signal sample of its chunk and
/// the event it belongs to. Rows are in event order; events whose chunk does not fit
/// in the recording have no row. Plain data.
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

/// The (int) conversion, truncating toward zero, that all chunk index arithmetic uses;
/// nullopt for NaN or a value outside the range of int, where the cast is undefined.
inline std::optional<int> truncatedIndex(double value)
{
    if (!(value > static_cast<double>(INT_MIN) - 1.0 && value < static_cast<double>(INT_MAX) + 1.0))
        return std::nullopt;
    return static_cast<int>(value);
}

} // namespace zarvi
