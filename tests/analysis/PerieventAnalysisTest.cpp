// The perievent kernel end to end, on small signals whose chunks can be written
// down by hand. Unless said otherwise the signal is sampled at t = 0, 1, ..., 19 s,
// so its rate is 20 / 19 Hz, and a window [-2, 3] gives startOffset round(-2.105) = -2,
// endOffset round(3.158) + 1 = 4: six columns x[i - 2] .. x[i + 3] around sample i,
// kept for 2 <= i <= 15.
#include "analysis/operations/perievents/PerieventAnalysis.h"
#include "analysis/operations/perievents/NormalisedBands.h"
#include "datafile/Feedback.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <numeric>
#include <thread>
#include <vector>

namespace zarvi {
namespace {

using K = ChunkStatistic::Kind;
using Method = PerieventNormalization::Method;

std::vector<double> indexSignal(std::size_t n)
{
    std::vector<double> v(n);
    std::iota(v.begin(), v.end(), 0.0);
    return v;
}

PerieventAnalysisConfig windowConfig(double start, double end)
{
    PerieventAnalysisConfig config;
    config.eventPath = "DataBehavior/Box/Events";
    config.eventName = "Lever";
    config.onset.windowStart = start;
    config.onset.windowEnd = end;
    return config;
}

void expectRow(const arma::mat& matrix, arma::uword row, const std::vector<double>& expected)
{
    ASSERT_EQ(matrix.n_cols, expected.size());
    for (arma::uword j = 0; j < matrix.n_cols; ++j)
        EXPECT_NEAR(matrix(row, j), expected[j], 1e-12) << "row " << row << " column " << j;
}

/// Times of n samples at 1 kHz from 0.
std::vector<double> millisecondTimes(std::size_t n)
{
    std::vector<double> t(n);
    for (std::size_t i = 0; i < n; ++i)
        t[i] = static_cast<double>(i) / 1000.0;
    return t;
}

/// A sine whose amplitude changes from sample to sample, on a slow drift: every row cut
/// from it has a scale of its own.
std::vector<double> unevenSignal(std::size_t n)
{
    std::vector<double> x(n);
    for (std::size_t i = 0; i < n; ++i)
        x[i] = std::sin(0.37 * static_cast<double>(i)) * static_cast<double>(1 + i % 11) + 1e-3 * i;
    return x;
}

/// `count` onsets from 1 s, `step` seconds apart.
std::vector<double> evenOnsets(int count, double step)
{
    std::vector<double> onsets;
    for (int k = 0; k < count; ++k)
        onsets.push_back(1.0 + step * k);
    return onsets;
}

struct CancelAfter : Feedback
{
    mutable int polls = 0;
    int limit = 0;
    QString label;
    bool isCanceled() const override { return ++polls > limit; }
    void setLabel(const QString& text) override { label = text; }
};

TEST(PerieventAnalysis, CutsDropsAndAlignsToTheNearestSample)
{
    const auto t = indexSignal(20);
    const auto x = indexSignal(20);
    // 1 starts before the first sample; 16 would end on the last sample. 7.3 lies
    // nearer sample 7 than sample 8.
    const EventArray events({1.0, 2.0, 7.3, 15.0, 16.0});
    const auto result = PerieventAnalysis::run(t, x, events, windowConfig(-2, 3), nullptr);
    ASSERT_TRUE(result.succeeded());
    ASSERT_EQ(result.sides.size(), 1u);
    const auto& side = result.sides[0];
    ASSERT_EQ(side.matrix.n_rows, 3u);
    expectRow(side.matrix, 0, {0, 1, 2, 3, 4, 5});
    expectRow(side.matrix, 1, {5, 6, 7, 8, 9, 10});
    expectRow(side.matrix, 2, {13, 14, 15, 16, 17, 18});
    EXPECT_EQ(side.eventNames, QStringList({"Event2", "Event3", "Event4"}));
    ASSERT_EQ(side.time.size(), 6u);
    for (std::size_t j = 0; j < 6; ++j)
        EXPECT_NEAR(side.time[j], -2.0 + 0.95 * static_cast<double>(j), 1e-12);

    // In the middle of the recording: 7.3 goes to sample 7, 7.5 (halfway) stays on the
    // earlier sample 7, 7.6 goes to 8; 12.5 after them is also a tie and stays on 12.
    const auto ties =
        PerieventAnalysis::run(t, x, EventArray({7.3, 7.5, 7.6, 12.5}), windowConfig(-2, 3), nullptr);
    ASSERT_EQ(ties.sides[0].matrix.n_rows, 4u);
    expectRow(ties.sides[0].matrix, 0, {5, 6, 7, 8, 9, 10});
    expectRow(ties.sides[0].matrix, 1, {5, 6, 7, 8, 9, 10});
    expectRow(ties.sides[0].matrix, 2, {6, 7, 8, 9, 10, 11});
    expectRow(ties.sides[0].matrix, 3, {10, 11, 12, 13, 14, 15});

    // Two events on one sample, then one listed out of order: the index stays on
    // sample 10, so all three rows are x[8] .. x[13].
    const auto same =
        PerieventAnalysis::run(t, x, EventArray({9.6, 10.0, 4.0}), windowConfig(-2, 3), nullptr);
    ASSERT_EQ(same.sides[0].matrix.n_rows, 3u);
    for (arma::uword row = 0; row < 3; ++row)
        expectRow(same.sides[0].matrix, row, {8, 9, 10, 11, 12, 13});

    // Between the last two samples too the nearer one wins and a tie keeps the earlier.
    // Window [-3, 0]: four columns x[i - 3] .. x[i], kept up to i = 18. 18.5 ties
    // and stays on 18; 18.6 moves to 19 and drops out.
    const auto tie = PerieventAnalysis::run(t, x, EventArray({18.5, 18.6}), windowConfig(-3, 0), nullptr);
    ASSERT_EQ(tie.sides[0].matrix.n_rows, 1u);
    expectRow(tie.sides[0].matrix, 0, {15, 16, 17, 18});
    EXPECT_EQ(tie.sides[0].eventNames, QStringList({"Event1"}));

    // A NaN as first chunk value drops the row like a chunk out of range.
    auto holed = x;
    holed[3] = NAN;
    const auto dropped =
        PerieventAnalysis::run(t, holed, EventArray({5.0, 6.0}), windowConfig(-2, 3), nullptr);
    EXPECT_EQ(dropped.sides[0].eventNames, QStringList({"Event2"}));
}

TEST(PerieventAnalysis, RowsOfEveryCountAndAlignment)
{
    // t = 0 .. 1999 s, rate 2000 / 1999. Windows and their hand-derived first offset and
    // length: [-3, 9] gives -3 and round(9.0045) + 1 + 3 = 13; [0, 0] gives 0 and 1;
    // [-1, 36] gives -1 and round(36.018) + 1 + 1 = 38. Row k of events at 10 + 7k then
    // holds 10 + 7k + offset + j, for every count of rows from 1 to 40.
    const auto t = indexSignal(2000);
    const auto x = indexSignal(2000);
    struct Window
    {
        double start, end;
        int offset;
        arma::uword length;
    };
    PerieventAnalysisResult reused;
    for (const Window& window : {Window{-3, 9, -3, 13}, Window{0, 0, 0, 1}, Window{-1, 36, -1, 38}}) {
        for (std::size_t count = 1; count <= 40; ++count) {
            std::vector<double> onsets;
            for (std::size_t k = 0; k < count; ++k)
                onsets.push_back(10.0 + 7.0 * static_cast<double>(k));
            auto config = windowConfig(window.start, window.end);
            PerieventAnalysis::run(t, x, EventArray(onsets), config, nullptr, reused);
            const arma::mat& matrix = reused.sides.at(0).matrix;
            ASSERT_EQ(matrix.n_rows, count);
            ASSERT_EQ(matrix.n_cols, window.length);
            for (arma::uword k = 0; k < count; ++k) {
                for (arma::uword j = 0; j < window.length; ++j)
                    ASSERT_EQ(matrix(k, j), 10.0 + 7.0 * k + window.offset + j) << count << " rows, at " << k;
            }
            // A baseline of the first column alone: "Mean" leaves each row 0, 1, ...
            config.normalization.enabled = true;
            config.normalization.start = config.normalization.end = window.start;
            config.normalization.end += window.start == 0.0 ? 1e-9 : 0.0; // 0 - 0 would switch it off
            PerieventAnalysis::run(t, x, EventArray(onsets), config, nullptr, reused);
            for (arma::uword k = 0; k < count; ++k) {
                for (arma::uword j = 0; j < window.length; ++j)
                    ASSERT_EQ(reused.sides[0].matrix(k, j), static_cast<double>(j));
            }
        }
    }
}

TEST(PerieventAnalysis, NormalisesFromTheChunkBaseline)
{
    const auto t = indexSignal(20);
    auto x = indexSignal(20);
    // Baseline [-2, -1]: columns (int)(0 + 0.5) = 0 to (int)(1.05 + 0.5) = 1.
    auto config = windowConfig(-2, 3);
    config.normalization.enabled = true;
    config.normalization.start = -2;
    config.normalization.end = -1;
    const EventArray event({8.0});
    auto result = PerieventAnalysis::run(t, x, event, config, nullptr);
    expectRow(result.sides[0].matrix, 0, {-0.5, 0.5, 1.5, 2.5, 3.5, 4.5}); // minus mean(6, 7)
    EXPECT_TRUE(result.unit.isEmpty());

    config.normalization.method = Method::StandardZScore; // sd of {6, 7} is sqrt(0.5)
    result = PerieventAnalysis::run(t, x, event, config, nullptr);
    const double sd = std::sqrt(0.5);
    expectRow(result.sides[0].matrix, 0, {-0.5 / sd, 0.5 / sd, 1.5 / sd, 2.5 / sd, 3.5 / sd, 4.5 / sd});
    EXPECT_EQ(result.unit, "z-score");

    // Baseline [-2, 1] covers columns 0 .. (int)(3.16 + 0.5) = 3: {1, 2, 4, 10}, median 3,
    // deviations {2, 1, 1, 7}, raw MAD 1.5 (no 1.4826 factor).
    x[6] = 1, x[7] = 2, x[8] = 4, x[9] = 10, x[10] = 3, x[11] = 7;
    config.normalization.end = 1;
    config.normalization.method = Method::ModifiedZScore;
    result = PerieventAnalysis::run(t, x, event, config, nullptr);
    expectRow(result.sides[0].matrix, 0, {-4.0 / 3, -2.0 / 3, 2.0 / 3, 14.0 / 3, 0, 8.0 / 3});

    // The statistics see the normalised values: mean of columns 1 and 2 for [-1, 1].
    config.onset.timeFrames = {{-1, 1}};
    config.statistics = {K::Mean};
    result = PerieventAnalysis::run(t, x, event, config, nullptr);
    EXPECT_NEAR(result.sides[0].statistics[0](0, 0), 0.0, 1e-12);

    // A constant baseline has a MAD of 0: the row turns non-finite, unclamped.
    x[6] = x[7] = x[8] = x[9] = 5;
    result = PerieventAnalysis::run(t, x, event, config, nullptr);
    ASSERT_TRUE(result.succeeded());
    for (arma::uword j = 0; j < 6; ++j)
        EXPECT_FALSE(std::isfinite(result.sides[0].matrix(0, j)));

    x[7] = NAN;
    result = PerieventAnalysis::run(t, x, event, config, nullptr);
    EXPECT_EQ(result.messages, QStringList({"median(): detected NaN"}));
    EXPECT_TRUE(result.sides.empty());

    // 0 - 0 leaves the chunks as they are, whatever the method.
    config.normalization.start = config.normalization.end = 0;
    result = PerieventAnalysis::run(t, indexSignal(20), event, config, nullptr);
    expectRow(result.sides[0].matrix, 0, {6, 7, 8, 9, 10, 11});
    EXPECT_TRUE(result.unit.isEmpty());

    const QString bounds = "Mat::submat(): indices out of bounds or incorrectly used";
    config.normalization.start = 4; // column (int)(6.3 + 0.5) = 6 of 6
    config.normalization.end = 5;
    EXPECT_EQ(PerieventAnalysis::run(t, indexSignal(20), event, config, nullptr).messages,
              QStringList({bounds}));
    config.normalization.start = -1;
    config.normalization.end = -2;
    EXPECT_EQ(PerieventAnalysis::run(t, indexSignal(20), event, config, nullptr).messages,
              QStringList({bounds}));
    config.normalization.start = -2;
    EXPECT_EQ(PerieventAnalysis::run(t, indexSignal(20), EventArray({19.0}), config, nullptr).messages,
              QStringList({bounds}));
}

TEST(PerieventAnalysis, NormalisesFromAnotherEventArray)
{
    const auto t = indexSignal(20);
    const auto x = indexSignal(20);
    auto config = windowConfig(-2, 3);
    config.normalization.enabled = true;
    config.normalization.start = -1; // around 4 s: x[3] .. x[5], mean 4
    config.normalization.end = 1;
    config.normalization.events = EventArray({4.0, 12.0});
    config.normalization.eventName = "Tone";
    auto result = PerieventAnalysis::run(t, x, EventArray({8.0, 10.0}), config, nullptr);
    ASSERT_TRUE(result.succeeded());
    expectRow(result.sides[0].matrix, 0, {2, 3, 4, 5, 6, 7});
    expectRow(result.sides[0].matrix, 1, {-4, -3, -2, -1, 0, 1}); // minus mean(11, 12, 13)

    // Selection picks the same rows of both arrays: event 2 pairs with baseline 2.
    config.selection.mode = EventSelection::Mode::ByNumber;
    config.selection.first = config.selection.last = 2;
    result = PerieventAnalysis::run(t, x, EventArray({8.0, 10.0}), config, nullptr);
    expectRow(result.sides[0].matrix, 0, {-4, -3, -2, -1, 0, 1});
    EXPECT_EQ(result.sides[0].eventNames, QStringList({"Event2"}));
    config.selection = {};

    // No baseline chunk fits: the chunks stay as they are.
    config.normalization.events = EventArray({0.0, 0.0});
    result = PerieventAnalysis::run(t, x, EventArray({8.0, 10.0}), config, nullptr);
    expectRow(result.sides[0].matrix, 1, {8, 9, 10, 11, 12, 13});

    config.normalization.events = EventArray({4.0});
    EXPECT_EQ(
        PerieventAnalysis::run(t, x, EventArray({8.0, 10.0}), config, nullptr).messages,
        QStringList({"Events <b>Tone</b> used for normalization and events <b>Lever</b> do not have the "
                     "same number of events."}));
    config.normalization.events = EventArray({4.0, 5.0});
    EXPECT_EQ(
        PerieventAnalysis::run(t, x, EventArray({8.0, 10.0}, {9.0, 11.0}), config, nullptr).messages,
        QStringList({"Events <b>Tone</b> used for normalization and events <b>Lever</b> have not the same "
                     "OnSet OffSet."}));
}

TEST(PerieventAnalysis, StatisticsInsideTheTimeFrames)
{
    const auto t = indexSignal(20);
    auto config = windowConfig(-2, 3);
    config.onset.timeFrames = {{-1, 1}, {1, 10}, {-5, -1}, {5, 6}};
    config.onset.timeFrameNames = {"Early", "Late", "Before", "Outside"};
    config.statistics = {K::AUC, K::Mean, K::Median, K::Maximum, K::Minimum, K::Frequency, K::Count};

    // Row x[6] .. x[11] for the event at 8. Frames: columns 1-2, 3-5 (clipped), 0-3 (raised to 0), none.
    auto result = PerieventAnalysis::run(t, indexSignal(20), EventArray({8.0}), config, nullptr);
    ASSERT_TRUE(result.succeeded());
    const auto& stats = result.sides[0].statistics;
    ASSERT_EQ(stats.size(), 7u);
    EXPECT_EQ(result.sides[0].timeFrameNames, config.onset.timeFrameNames);
    EXPECT_NEAR(stats[1](0, 0), 7.5, 1e-12);  // mean of 7, 8
    EXPECT_NEAR(stats[3](0, 1), 11.0, 1e-12); // max of 9, 10, 11
    EXPECT_NEAR(stats[4](0, 1), 9.0, 1e-12);
    EXPECT_NEAR(stats[2](0, 2), 7.5, 1e-12);         // median of 6, 7, 8, 9
    EXPECT_NEAR(stats[0](0, 2), 7.5, 1e-12);         // linear over evenly spaced times
    EXPECT_NEAR(stats[5](0, 0), 20.0 / 19.0, 1e-12); // two samples 1 / fs apart
    EXPECT_EQ(stats[6](0, 1), 3.0);
    for (const auto& matrix : stats)
        EXPECT_TRUE(std::isnan(matrix(0, 3)));

    // AUC of a constant signal is that constant in every frame that holds two samples.
    const std::vector<double> constant(20, 2.5);
    result = PerieventAnalysis::run(t, constant, EventArray({8.0, 9.0}), config, nullptr);
    for (arma::uword row = 0; row < 2; ++row) {
        for (arma::uword frame = 0; frame < 3; ++frame)
            EXPECT_NEAR(result.sides[0].statistics[0](row, frame), 2.5, 1e-12);
    }
}

TEST(PerieventAnalysis, ManyLongBaselinesKeepEachRowsOwnScale)
{
    // 600 rows of 600-sample baselines, enough for the rows to be scaled on both cores:
    // each row must come out as it does when its event is analysed alone.
    const std::size_t n = 200000;
    const std::vector<double> t = millisecondTimes(n);
    std::vector<double> x = unevenSignal(n);
    const std::vector<double> onsets = evenOnsets(600, 0.3);
    for (const Method method : {Method::StandardZScore, Method::ModifiedZScore}) {
        auto config = windowConfig(-0.6, 0.2);
        config.normalization.enabled = true;
        config.normalization.start = -0.6;
        config.normalization.end = 0.0;
        config.normalization.method = method;
        const auto all = PerieventAnalysis::run(t, x, EventArray(onsets), config, nullptr);
        ASSERT_TRUE(all.succeeded());
        const arma::mat& matrix = all.sides[0].matrix;
        ASSERT_EQ(matrix.n_rows, 600u);
        for (const std::size_t k : {std::size_t{0}, std::size_t{299}, std::size_t{300}, std::size_t{599}}) {
            const auto alone = PerieventAnalysis::run(t, x, EventArray({onsets[k]}), config, nullptr);
            ASSERT_TRUE(alone.succeeded());
            EXPECT_TRUE(arma::approx_equal(matrix.row(k), alone.sides[0].matrix.row(0), "absdiff", 0.0))
                << "row " << k;
        }
    }

    // A NaN in a baseline of the upper rows stops the modified z-score.
    auto config = windowConfig(-0.6, 0.2);
    config.normalization = {true, -0.6, 0.0, Method::ModifiedZScore, std::nullopt, {}, {}};
    x[static_cast<std::size_t>(1000.0 * onsets[550]) - 10] = NAN;
    EXPECT_EQ(PerieventAnalysis::run(t, x, EventArray(onsets), config, nullptr).messages,
              QStringList({"median(): detected NaN"}));
}

TEST(NormalisedBands, AreTheMatrixAndItsStatisticsBandByBand)
{
    // The rows a run writes, cut band by band on a second core with their statistics:
    // the same bits as the matrix and statistics built in one piece.
    const std::vector<double> t = millisecondTimes(200000);
    const std::vector<double> x = unevenSignal(t.size());
    const std::vector<double> onsets = evenOnsets(300, 0.6);
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

TEST(PerieventAnalysis, SidesSelectionResamplingAndFailures)
{
    const auto t = indexSignal(20);
    const auto x = indexSignal(20);
    auto config = windowConfig(-2, 3);
    config.sides = PerieventAnalysisConfig::Sides::Both;
    config.offset.windowStart = -1; // offset: startOffset -1, endOffset 2, x[i - 1] .. x[i + 1]
    config.offset.windowEnd = 1;
    auto result = PerieventAnalysis::run(t, x, EventArray({5.0}, {10.0}), config, nullptr);
    ASSERT_EQ(result.sides.size(), 2u);
    EXPECT_FALSE(result.sides[0].offset);
    expectRow(result.sides[0].matrix, 0, {3, 4, 5, 6, 7, 8});
    EXPECT_TRUE(result.sides[1].offset);
    expectRow(result.sides[1].matrix, 0, {9, 10, 11});
    EXPECT_EQ(PerieventAnalysis::run(t, x, EventArray({5.0}), config, nullptr).messages,
              QStringList({"Cannot find/load event <b>DataBehavior/Box/Events/Lever</b> from the file."}));
    EXPECT_EQ(PerieventAnalysis::run(t, x, EventArray(), windowConfig(-2, 3), nullptr).messages.size(), 1);

    // Events 2 and 3 of four, by their 1-based numbers.
    config = windowConfig(-2, 3);
    config.selection.mode = EventSelection::Mode::ByNumber;
    config.selection.first = 2;
    config.selection.last = 3;
    result = PerieventAnalysis::run(t, x, EventArray({4.0, 6.0, 8.0, 10.0}), config, nullptr);
    EXPECT_EQ(result.sides[0].eventNames, QStringList({"Event2", "Event3"}));
    expectRow(result.sides[0].matrix, 1, {6, 7, 8, 9, 10, 11});
    config.selection.mode = EventSelection::Mode::ByTimePeriod;
    config.selection.periods = {{7.0}, {12.0}, {"Test"}};
    config.selection.periodName = "Test";
    result = PerieventAnalysis::run(t, x, EventArray({4.0, 6.0, 8.0, 10.0}), config, nullptr);
    EXPECT_EQ(result.sides[0].eventNames, QStringList({"Event3", "Event4"}));
    config.selection.periodName = "Rest";
    EXPECT_EQ(PerieventAnalysis::run(t, x, EventArray({4.0}), config, nullptr).messages,
              QStringList({"Cannot pick selected events Rest."}));

    // Resampled to 2 Hz: 39 samples 0, 0.5, ..., 19 of value = time, rate 39 / 19;
    // window [-1, 1] gives x[i - 2] .. x[i + 2] around sample 16 (8 s).
    config = windowConfig(-1, 1);
    config.resampling.enabled = true;
    config.resampling.frequency = 2.0;
    result = PerieventAnalysis::run(t, x, EventArray({8.0}), config, nullptr);
    expectRow(result.sides[0].matrix, 0, {7, 7.5, 8, 8.5, 9});
    EXPECT_NEAR(result.sides[0].time[1], -1.0 + 19.0 / 39.0, 1e-12);

    EXPECT_EQ(
        PerieventAnalysis::run(t, x, EventArray({8.0}), windowConfig(-10, 10), nullptr).messages,
        QStringList({"Impossible to calculate perievents, since the duration of the signal (19) is shorter "
                     "than the selected perievent window (-10 -- 10)."}));

    CancelAfter cancel;
    cancel.limit = 1;
    result = PerieventAnalysis::run(t, x, EventArray({4.0, 6.0, 8.0}), windowConfig(-2, 3), &cancel);
    EXPECT_TRUE(result.canceled);
    EXPECT_TRUE(result.sides.empty());
    EXPECT_EQ(cancel.label, "Calculating perievent arrays...");
}

} // namespace
} // namespace zarvi
