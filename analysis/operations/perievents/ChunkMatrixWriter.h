#pragma once

#include "analysis/operations/perievents/ChunkPlan.h"
#include "analysis/operations/perievents/RowScale.h"

#include <armadillo>

#include <span>

namespace zarvi {

class ProgressTracker;

/// Builds the trial-by-time matrix (rows = events, column-major) from the planned
/// chunks of a signal, applying each row's normalisation on the way, in one pass
/// over the output. Runs on the caller's (worker) thread.
///
/// Rows of a column-major matrix are strided, so a chunk cannot be copied as one
/// block. The matrix is instead written one 64-byte cache line at a time, each line
/// gathered from the 8 to 15 chunks whose rows it holds and stored past the cache;
/// the few values around unaligned line boundaries are stored one by one. This
/// keeps the output traffic at one write of the matrix, with no transposed copy.
class ChunkMatrixWriter
{
public:
    /// Sets `out` to plan.rows() x plan.length (reusing its memory when the size is
    /// unchanged) with out(k, j) = scaled(values[plan.sourceStarts[k] + j], scales[k]);
    /// empty `scales` means the values are copied unchanged. Reports through `progress`
    /// (may be null) per band of rows and returns false when cancelled.
    static bool write(std::span<const double> values, const ChunkPlan& plan, std::span<const RowScale> scales,
                      arma::mat& out, ProgressTracker* progress);
};

} // namespace zarvi
