// The rows a run writes, cut band by band on a second core with their statistics: the
// same bits as the matrix and statistics the kernel builds in one piece.
#include "analysis/operations/perievents/NormalisedBands.h"
#include "analysis/operations/perievents/PerieventAnalysis.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <thread>

namespace zarvi {
namespace {

using K = ChunkStatistic::Kind;

TEST(NormalisedBands, AreTheMatrixAndItsStatisticsBandByBand)
{
    const std::size_t n = 200000;
    std::vector<double> t(n), x(n);
    for (std::size_t i = 0; i < n; ++i) {
        t[i] = static_cast<double>(i) / 1000.0;
        x[i] = std::sin(0.37 * static_cast<double>(i)) * static_cast<double>(1 + i % 11) + 1e-3 * i;
    }
    std::vector<double> onsets;
    for (int k = 0; k < 300; ++k)
        onsets.push_back(1.0 + 0.6 * k);
    PerieventAnalysisConfig config;
    config.eventName = "Lever";
    config.onset.windowStart = -0.6;
    config.onset.windowEnd = 0.2;
    config.onset.timeFrames = {{-0.6, 0.0}, {0.0, 0.2}, {-0.1, 0.1}};
    config.onset.timeFrameNames = {"Before", "After", "Around"};
    config.statistics = {K::AUC, K::Mean, K::Maximum};
    config.normalization = {true,         -0.6, 0.0, PerieventNormalization::Method::StandardZScore,
                            std::nullopt, {},   {}};
    const PerieventAnalysisResult whole = PerieventAnalysis::run(t, x, EventArray(onsets), config, nullptr);
    ASSERT_TRUE(whole.succeeded());
    const arma::mat& matrix = whole.sides[0].matrix;
    ASSERT_EQ(matrix.n_rows, 300u);

    config.buildMatrix = false;
    config.summarise = false;
    PerieventAnalysisResult rows = PerieventAnalysis::run(t, x, EventArray(onsets), config, nullptr);
    ASSERT_TRUE(rows.succeeded());
    PerieventSideResult& side = rows.sides[0];
    // Seven rows a band leave a short last band, and the buffers go round many times.
    const std::size_t bandRows = 7;
    {
        NormalisedBands bands(x, side, config.onset, rows.sampleRate, config.statistics, bandRows,
                              side.statistics);
        for (std::size_t first = 0; first < side.rowStarts.size(); first += bandRows) {
            const double* band = bands.next();
            ASSERT_NE(band, nullptr);
            // Gives the second core time to run ahead into a band still being read.
            std::this_thread::sleep_for(std::chrono::microseconds(200));
            const std::size_t count = std::min(bandRows, side.rowStarts.size() - first);
            for (std::size_t k = 0; k < count; ++k)
                for (std::size_t j = 0; j < side.rowLength; ++j)
                    ASSERT_EQ(band[k * side.rowLength + j], matrix(first + k, j))
                        << "row " << first + k << " column " << j;
        }
        EXPECT_TRUE(bands.finished());
    }
    ASSERT_EQ(side.statistics.size(), 3u);
    for (std::size_t s = 0; s < 3; ++s)
        EXPECT_TRUE(arma::approx_equal(side.statistics[s], whole.sides[0].statistics[s], "absdiff", 0.0))
            << "statistic " << s;

    // Stopped after a band: nothing more comes, and leaving waits for the second core.
    NormalisedBands stopped(x, side, config.onset, rows.sampleRate, config.statistics, bandRows,
                            side.statistics);
    EXPECT_NE(stopped.next(), nullptr);
    stopped.stop();
    EXPECT_EQ(stopped.next(), nullptr);
    EXPECT_FALSE(stopped.finished());
}

} // namespace
} // namespace zarvi
