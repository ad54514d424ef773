#pragma once

#include "analysis/operations/perievents/FrameStatistics.h"

#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

namespace zarvi {

struct PerieventSideResult;

/// The rows of a side's matrix cut and normalised band by band on a second core, each
/// band's statistics taken there from the same rows, while the writing thread writes the
/// bands into the file: every value is divided once, and neither thread waits for long.
/// A few band buffers take turns. Made and read on the writing thread; whatever it is
/// given must outlive it. Destroying it stops the second core's work and waits for it.
class NormalisedBands
{
public:
    /// Starts cutting the rows of `rows` from `values` (the cut signal) in bands of
    /// `bandRows` rows, their statistics (`kinds` over the time frames of `side`) into
    /// `statistics`, which must not be read before finished() says so.
    NormalisedBands(std::span<const double> values, const PerieventSideResult& rows,
                    const PerieventSideConfig& side, double sampleRate,
                    std::span<const ChunkStatistic::Kind> kinds, std::size_t bandRows,
                    std::vector<arma::mat>& statistics);
    NormalisedBands(const NormalisedBands&) = delete;
    NormalisedBands& operator=(const NormalisedBands&) = delete;
    ~NormalisedBands();

    /// The next band's rows, row-major, once cut; the band before it is handed back to
    /// be cut into again. Null after stop().
    const double* next();
    /// True once every band has been handed out, and with it every statistic taken.
    bool finished();
    void stop();

private:
    /// The second core's loop, until every band is cut or the work is stopped.
    void cutBands();

    std::span<const double> m_values;
    const PerieventSideResult& m_rows;
    std::vector<arma::mat>& m_statistics;
    FrameStatistics m_frames;
    std::size_t m_bandRows;
    std::size_t m_bandCount;
    std::unique_ptr<double[]> m_buffers;

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::size_t m_cut = 0;    ///< bands cut, with their statistics
    std::size_t m_handed = 0; ///< bands handed out by next()
    bool m_stopped = false;

    /// Last, so that everything above exists before the work starts and outlives it: the
    /// thread is joined first when this is destroyed.
    std::jthread m_work;
};

} // namespace zarvi
