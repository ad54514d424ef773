// The perievent kernel on one hour of 1 kHz signal: 1000 events, window -5 .. +10 s,
// z-score normalisation from the chunk baseline, three statistic time frames.
// Each benchmark times a plain memcpy of the same matrix bytes in the same loop and
// reports the kernel's time as a ratio to it ("x_memcpy").
#include "analysis/operations/perievents/PerieventAnalysis.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cmath>
#include <cstring>
#include <memory>
#include <vector>

namespace {

using namespace zarvi;
using Clock = std::chrono::steady_clock;

constexpr std::size_t Samples = 3'600'000;
constexpr std::size_t Events = 1000;

struct Case
{
    std::vector<double> time;
    std::vector<double> values;
    EventArray events;
    PerieventAnalysisConfig config;
    std::size_t matrixDoubles = 0;

    explicit Case(bool allStatistics)
    {
        time.resize(Samples);
        values.resize(Samples);
        for (std::size_t i = 0; i < Samples; ++i) {
            time[i] = static_cast<double>(i) / 1000.0;
            values[i] = std::sin(time[i] * 0.7) + 0.1 * std::sin(time[i] * 31.0);
        }
        std::vector<double> onsets(Events);
        for (std::size_t k = 0; k < Events; ++k)
            onsets[k] = 10.0 + 3.58 * static_cast<double>(k);
        events = EventArray(onsets);
        config.onset.windowStart = -5.0;
        config.onset.windowEnd = 10.0;
        config.onset.timeFrames = {{-5.0, 0.0}, {0.0, 2.0}, {2.0, 10.0}};
        config.onset.timeFrameNames = {"Before", "Response", "After"};
        config.statistics = {ChunkStatistic::Kind::AUC};
        if (allStatistics) {
            config.statistics.insert(config.statistics.end(),
                                     {ChunkStatistic::Kind::Mean, ChunkStatistic::Kind::Median,
                                      ChunkStatistic::Kind::Maximum, ChunkStatistic::Kind::Minimum});
        }
        config.normalization.enabled = true;
        config.normalization.start = -5.0;
        config.normalization.end = -1.0;
        config.normalization.method = PerieventNormalization::Method::StandardZScore;
        matrixDoubles = Events * 15001;
    }
};

double seconds(Clock::time_point from)
{
    return std::chrono::duration<double>(Clock::now() - from).count();
}

/// Kernel reusing its result, against memcpy between two buffers already in use.
void BM_PerieventKernel(benchmark::State& state)
{
    const Case c(state.range(0) != 0);
    std::vector<double> source(c.matrixDoubles, 1.0);
    std::vector<double> target(c.matrixDoubles, 0.0);
    PerieventAnalysisResult result;
    PerieventAnalysis::run(c.time, c.values, c.events, c.config, nullptr, result);
    double kernel = 0.0;
    double copy = 0.0;
    for (auto _ : state) {
        auto start = Clock::now();
        PerieventAnalysis::run(c.time, c.values, c.events, c.config, nullptr, result);
        benchmark::DoNotOptimize(result.sides[0].matrix.memptr());
        const double elapsed = seconds(start);
        kernel += elapsed;
        state.SetIterationTime(elapsed);
        start = Clock::now();
        std::memcpy(target.data(), source.data(), c.matrixDoubles * sizeof(double));
        benchmark::DoNotOptimize(target.data());
        copy += seconds(start);
    }
    if (result.sides.empty() || result.sides[0].matrix.n_elem != c.matrixDoubles)
        state.SkipWithError("unexpected matrix size");
    state.counters["memcpy_ms"] = 1e3 * copy / static_cast<double>(state.iterations());
    state.counters["x_memcpy"] = kernel / copy;
}

/// Kernel building a new result each time, against memcpy into a newly allocated
/// buffer: both pay for the operating system mapping fresh pages.
void BM_PerieventKernelFresh(benchmark::State& state)
{
    const Case c(state.range(0) != 0);
    std::vector<double> source(c.matrixDoubles, 1.0);
    double kernel = 0.0;
    double copy = 0.0;
    for (auto _ : state) {
        auto start = Clock::now();
        {
            const PerieventAnalysisResult result =
                PerieventAnalysis::run(c.time, c.values, c.events, c.config, nullptr);
            benchmark::DoNotOptimize(result.sides[0].matrix.memptr());
        }
        const double elapsed = seconds(start);
        kernel += elapsed;
        state.SetIterationTime(elapsed);
        start = Clock::now();
        {
            const auto target = std::make_unique_for_overwrite<double[]>(c.matrixDoubles);
            std::memcpy(target.get(), source.data(), c.matrixDoubles * sizeof(double));
            benchmark::DoNotOptimize(target.get());
        }
        copy += seconds(start);
    }
    state.counters["memcpy_ms"] = 1e3 * copy / static_cast<double>(state.iterations());
    state.counters["x_memcpy"] = kernel / copy;
}

} // namespace

// Argument: 0 = AUC only, 1 = AUC, Mean, Median, Maximum and Minimum.
BENCHMARK(BM_PerieventKernel)->Arg(0)->Arg(1)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PerieventKernelFresh)->Arg(0)->Arg(1)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
