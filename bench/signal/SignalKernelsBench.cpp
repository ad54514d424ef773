// Throughput of the signal kernels, each against a plain single pass over the same
// array timed in the same run, so the ratio holds on any machine.

#include "definitions/SignalOperationDefinitions.h"
#include "numeric/Statistics.h"
#include "signal/operations/filter/FilterDesign.h"
#include "signal/operations/filter/ZeroPhaseFilter.h"
#include "signal/operations/photometry/RansacLineFit.h"
#include "signal/operations/smooth/RunningAverage.h"

#include <benchmark/benchmark.h>

#include <array>
#include <chrono>
#include <cmath>
#include <random>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

std::vector<double> noise(std::size_t n)
{
    std::mt19937_64 generator(42);
    std::normal_distribution<double> distribution(0.0, 1.0);
    std::vector<double> values(n);
    for (double& v : values)
        v = distribution(generator);
    return values;
}

double seconds(Clock::time_point from)
{
    return std::chrono::duration<double>(Clock::now() - from).count();
}

/// The baseline: one direct-form-II biquad, one pass, written the plain way.
void plainBiquad(const zarvi::Butterworth::Section& s, std::vector<double>& x)
{
    double w1 = 0.0;
    double w2 = 0.0;
    for (double& v : x) {
        const double w = v - s.a1 * w1 - s.a2 * w2;
        v = s.b0 * w + s.b1 * w1 + s.b2 * w2;
        w2 = w1;
        w1 = w;
    }
}

/// The baseline of the running average: one plain running sum over the array.
void plainRunningSum(const std::vector<double>& x, std::vector<double>& out)
{
    double sum = 0.0;
    for (std::size_t i = 0; i < x.size(); ++i) {
        sum += x[i];
        out[i] = sum;
    }
}

void reportRates(benchmark::State& state, double samples, double kernelSeconds, double baselineSeconds)
{
    state.counters["Msamples_per_s"] = samples / kernelSeconds / 1e6;
    state.counters["baseline_Msamples_per_s"] = samples / baselineSeconds / 1e6;
    state.counters["time_vs_baseline"] = kernelSeconds / baselineSeconds;
}

void ZeroPhaseLowPassOrder10(benchmark::State& state)
{
    const auto n = static_cast<std::size_t>(state.range(0));
    const std::vector<double> source = noise(n);
    const std::array<double, 1> cutoff{10.0};
    const zarvi::FilterDesign::Result design =
        zarvi::FilterDesign::design(zarvi::SignalOperationDefinitions::LowPass, cutoff, 1000.0);
    std::vector<double> values;
    double kernelSeconds = 0.0;
    double baselineSeconds = 0.0;
    for (auto _ : state) {
        values = source;
        zarvi::Butterworth filter = design.filter;
        auto start = Clock::now();
        zarvi::ZeroPhaseFilter::apply(filter, values, nullptr);
        const double elapsed = seconds(start);
        state.SetIterationTime(elapsed);
        kernelSeconds += elapsed;
        benchmark::DoNotOptimize(values.data());

        values = source;
        start = Clock::now();
        plainBiquad(design.filter.sections()[0], values);
        baselineSeconds += seconds(start);
        benchmark::DoNotOptimize(values.data());
    }
    reportRates(state, static_cast<double>(n) * state.iterations(), kernelSeconds, baselineSeconds);
}
BENCHMARK(ZeroPhaseLowPassOrder10)
    ->Arg(3'600'000)
    ->Arg(36'000'000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

/// The running average into a reused buffer, so both sides write to memory that
/// is already mapped; `allocate` adds the fresh output vector a plain call returns.
void RunningAverageWindow(benchmark::State& state, bool allocate)
{
    const auto n = static_cast<std::size_t>(state.range(0));
    const std::vector<double> source = noise(n);
    std::vector<double> output(n);
    std::vector<double> sums(n);
    double kernelSeconds = 0.0;
    double baselineSeconds = 0.0;
    for (auto _ : state) {
        // A 1 s window at 1 kHz.
        constexpr long long window = 1000;
        auto start = Clock::now();
        if (allocate) {
            zarvi::VectorResult result = zarvi::RunningAverage::computeSamples(source, window, nullptr);
            benchmark::DoNotOptimize(result.values.data());
        } else {
            zarvi::RunningAverage::computeInto(source, window, output, nullptr);
            benchmark::DoNotOptimize(output.data());
        }
        const double elapsed = seconds(start);
        state.SetIterationTime(elapsed);
        kernelSeconds += elapsed;

        start = Clock::now();
        plainRunningSum(source, sums);
        baselineSeconds += seconds(start);
        benchmark::DoNotOptimize(sums.data());
    }
    reportRates(state, static_cast<double>(n) * state.iterations(), kernelSeconds, baselineSeconds);
}
BENCHMARK_CAPTURE(RunningAverageWindow, into_buffer, false)
    ->Arg(36'000'000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(RunningAverageWindow, new_vector, true)
    ->Arg(36'000'000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

/// A standardised one-hour pair as the deltaF/F run fits it: a shared slow drift, a
/// 0.1 Hz response on the biosensor, white noise, low-passed at 10 Hz and z-scored.
std::pair<std::vector<double>, std::vector<double>> standardisedPair(std::size_t n)
{
    std::mt19937_64 generator(7);
    std::normal_distribution<double> distribution(0.0, 1.0);
    std::vector<double> iso(n);
    std::vector<double> bio(n);
    for (std::size_t i = 0; i < n; ++i) {
        const double t = static_cast<double>(i) / 1000.0;
        const double drift = 0.2 * std::exp(-t / 1800.0);
        iso[i] = 1.0 + drift + 0.01 * distribution(generator);
        bio[i] = 1.5 + 1.3 * drift + 0.05 * std::sin(2.0 * M_PI * 0.1 * t) + 0.02 * distribution(generator);
    }
    const std::array<double, 1> cutoff{10.0};
    const zarvi::FilterDesign::Result design =
        zarvi::FilterDesign::design(zarvi::SignalOperationDefinitions::LowPass, cutoff, 1000.0);
    for (std::vector<double>* values : {&iso, &bio}) {
        zarvi::Butterworth filter = design.filter;
        zarvi::ZeroPhaseFilter::apply(filter, *values, nullptr);
        const zarvi::Statistics::Scale scale = zarvi::Statistics::standardScore(*values);
        for (double& v : *values)
            v = scale.score(v);
    }
    return {std::move(iso), std::move(bio)};
}

/// The robust line fit of a one-hour pair. The baseline is one plain pass counting the
/// inliers of one line, so the ratio says how many full passes the fit costs.
void RansacLineFitOneHour(benchmark::State& state)
{
    const auto n = static_cast<std::size_t>(state.range(0));
    const auto [iso, bio] = standardisedPair(n);
    double kernelSeconds = 0.0;
    double baselineSeconds = 0.0;
    long long iterations = 0;
    for (auto _ : state) {
        auto start = Clock::now();
        const zarvi::RansacLineFit::Result fit = zarvi::RansacLineFit::fit(iso, bio, 0.5, nullptr);
        const double elapsed = seconds(start);
        state.SetIterationTime(elapsed);
        kernelSeconds += elapsed;
        iterations += fit.iterations;

        start = Clock::now();
        std::size_t count = 0;
        for (std::size_t i = 0; i < n; ++i)
            count += std::fabs(fit.a * iso[i] + fit.b * bio[i] + fit.c) < 0.5 ? 1 : 0;
        baselineSeconds += seconds(start);
        benchmark::DoNotOptimize(count);
    }
    reportRates(state, static_cast<double>(n) * state.iterations(), kernelSeconds, baselineSeconds);
    state.counters["models"] = static_cast<double>(iterations) / static_cast<double>(state.iterations());
}
BENCHMARK(RansacLineFitOneHour)->Arg(3'600'000)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
