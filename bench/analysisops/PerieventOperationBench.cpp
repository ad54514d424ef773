// The "Perievents" operation end to end through `zarvi-cli run`: one hour of 1 kHz
// signal, 1000 events, window -5 .. +10 s, z-score normalisation from the chunk
// baseline, three statistic time frames. The file is read, the analysis computed and
// the 1000 x 15001 matrix with its statistics written back. Each iteration times the
// command on a fresh copy of the input, then a memcpy of the same matrix bytes; the
// ratio is reported as "x_memcpy". The same run inside this process shows what the
// start of the program costs. With ZARVI_BASELINE_CLI naming an earlier build of the
// program, both run on the same input in turn and "new_over_old" is the ratio of
// their median times.
#include "analysis/AnalysisOperations.h"
#include "datafile/HDF5Writer_V6.h"
#include "datafile/SignalDataset.h"
#include "definitions/AnalysisOperationDefinitions.h"
#include "framework/OperationRegistry.h"
#include "framework/OperationRunner.h"
#include "signal/SignalOperations.h"

#include <QCoreApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstring>
#include <iostream>
#include <memory>

namespace {

using namespace zarvi;
using D = AnalysisOperationDefinitions;
using Clock = std::chrono::steady_clock;

constexpr std::size_t Samples = 3'600'000;
constexpr std::size_t Events = 1000;
constexpr std::size_t MatrixDoubles = Events * 15001;
const QString SignalGroup = QStringLiteral("DataAcquisition/FiberPhotometry/Signals/Series1/Biosensor");
const QString EventGroup = QStringLiteral("DataAcquisition/FiberPhotometry/Events/Series1");

bool writeInput(const QString& path)
{
    HDF5Writer_V6 file;
    if (file.create(path) < 0)
        return false;
    Signal signal;
    signal.unit = QStringLiteral("V");
    signal.time.resize(Samples);
    signal.values.resize(Samples);
    for (std::size_t i = 0; i < Samples; ++i) {
        signal.time[i] = static_cast<double>(i) / 1000.0;
        signal.values[i] = std::sin(signal.time[i] * 0.7) + 0.1 * std::sin(signal.time[i] * 31.0);
    }
    QString error;
    if (!SignalDataset::write(file, SignalGroup, signal, {}, error))
        return false;
    std::vector<double> onsets(Events);
    for (std::size_t k = 0; k < Events; ++k)
        onsets[k] = 10.0 + 3.58 * static_cast<double>(k);
    const hid_t group = file.createGroupPath(file.fileId(), EventGroup);
    const hid_t events = file.createDataset(group, ElementKind::Float64, QStringLiteral("Stimulus"), 2,
                                            {H5S_UNLIMITED, 1}, {Events, 1}, {Events, 1}, 0);
    const bool ok = events >= 0 && file.write(events, onsets.data(), {0, 0}, {Events, 1});
    file.closeDataset(events);
    file.closeGroup(group);
    return ok;
}

QByteArray parameters()
{
    const QJsonObject object{
        {D::EventPath, EventGroup},
        {D::Event, QStringLiteral("Stimulus")},
        {D::PerieventTimeFrame, QJsonArray{-5.0, 10.0}},
        {D::StatisticTimeFrames, QJsonArray{-5.0, 0.0, 0.0, 2.0, 2.0, 10.0}},
        {D::TimeFramesNames,
         QJsonArray{QStringLiteral("Before"), QStringLiteral("Response"), QStringLiteral("After")}},
        {D::Statistics, QJsonArray{D::AUC}},
        {D::NormalizeWindow, QJsonArray{-5.0, -1.0}},
        {D::NormalizeMethod, D::StandardZScore}};
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

double seconds(Clock::time_point from)
{
    return std::chrono::duration<double>(Clock::now() - from).count();
}

QStringList cliArguments(const QString& work)
{
    return {QStringLiteral("run"),         work,
            QStringLiteral("--operation"), D::Perievents,
            QStringLiteral("--params"),    QString::fromUtf8(parameters()),
            QStringLiteral("--data"),      SignalGroup + QStringLiteral("/Signal")};
}

/// User and system seconds of the finished child processes so far.
double childCpuSeconds()
{
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage);
    const auto toSeconds = [](const timeval& t) { return static_cast<double>(t.tv_sec) + 1e-6 * t.tv_usec; };
    return toSeconds(usage.ru_utime) + toSeconds(usage.ru_stime);
}

/// Seconds `program` takes to run the operation on a fresh copy of `input`, and the
/// processor seconds it used (`cpu`); negative with `error` set when it fails.
double timeCli(const QString& program, const QString& input, const QString& work, QString& error,
               double* cpu = nullptr)
{
    QFile::remove(work);
    QFile::copy(input, work);
    QProcess cli;
    const double cpuBefore = childCpuSeconds();
    const auto start = Clock::now();
    cli.start(program, cliArguments(work));
    const bool finished = cli.waitForFinished(-1);
    const double elapsed = seconds(start);
    if (cpu)
        *cpu = childCpuSeconds() - cpuBefore;
    if (finished && cli.exitCode() == 0)
        return elapsed;
    error = QString::fromUtf8(cli.readAllStandardError());
    return -1.0;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    const std::size_t n = values.size();
    return n % 2 == 1 ? values[n / 2] : (values[n / 2 - 1] + values[n / 2]) / 2.0;
}

void BM_PerieventOperationCli(benchmark::State& state)
{
    QTemporaryDir dir;
    const QString input = dir.filePath(QStringLiteral("input.orvel"));
    const QString work = dir.filePath(QStringLiteral("work.orvel"));
    if (!writeInput(input)) {
        state.SkipWithError("cannot write the input file");
        return;
    }
    std::vector<double> source(MatrixDoubles, 1.0);
    std::vector<double> target(MatrixDoubles, 0.0);
    double operation = 0.0;
    double copy = 0.0;
    for (auto _ : state) {
        QString error;
        const double elapsed = timeCli(QStringLiteral(ZARVI_CLI_PATH), input, work, error);
        if (elapsed < 0.0) {
            state.SkipWithError(error.toUtf8().constData());
            return;
        }
        operation += elapsed;
        state.SetIterationTime(elapsed);
        const auto start = Clock::now();
        std::memcpy(target.data(), source.data(), MatrixDoubles * sizeof(double));
        benchmark::DoNotOptimize(target.data());
        copy += seconds(start);
    }
    const double iterations = static_cast<double>(state.iterations());
    state.counters["seconds"] = operation / iterations;
    state.counters["memcpy_ms"] = 1e3 * copy / iterations;
    state.counters["x_memcpy"] = operation / copy;
}

/// The same run inside this process through the OperationRunner: the command without
/// the start of a program.
void BM_PerieventOperationInProcess(benchmark::State& state)
{
    QTemporaryDir dir;
    const QString input = dir.filePath(QStringLiteral("input.orvel"));
    const QString work = dir.filePath(QStringLiteral("work.orvel"));
    if (!writeInput(input)) {
        state.SkipWithError("cannot write the input file");
        return;
    }
    QVariantMap request = QJsonDocument::fromJson(parameters()).object().toVariantMap();
    request.insert(QStringLiteral("Operations"), D::Perievents);
    std::vector<double> source(MatrixDoubles, 1.0);
    std::vector<double> target(MatrixDoubles, 0.0);
    double operation = 0.0;
    double copy = 0.0;
    for (auto _ : state) {
        QFile::remove(work);
        QFile::copy(input, work);
        OperationRunner runner;
        auto start = Clock::now();
        const RunResult result = runner.run(request, work, {SignalGroup + QStringLiteral("/Signal")});
        const double elapsed = seconds(start);
        if (!result.succeeded()) {
            state.SkipWithError(result.errors.join(QLatin1Char(' ')).toUtf8().constData());
            return;
        }
        operation += elapsed;
        state.SetIterationTime(elapsed);
        start = Clock::now();
        std::memcpy(target.data(), source.data(), MatrixDoubles * sizeof(double));
        benchmark::DoNotOptimize(target.data());
        copy += seconds(start);
    }
    const double iterations = static_cast<double>(state.iterations());
    state.counters["seconds"] = operation / iterations;
    state.counters["memcpy_ms"] = 1e3 * copy / iterations;
    state.counters["x_memcpy"] = operation / copy;
}

/// This build and the baseline build on the same input, in turn, the first to run
/// alternating so that neither always meets a warm or a cold file cache.
void BM_PerieventOperationAgainstBaseline(benchmark::State& state, const QString& baseline)
{
    QTemporaryDir dir;
    const QString input = dir.filePath(QStringLiteral("input.orvel"));
    const QString work = dir.filePath(QStringLiteral("work.orvel"));
    if (!writeInput(input)) {
        state.SkipWithError("cannot write the input file");
        return;
    }
    std::vector<double> current, previous, currentCpu, previousCpu;
    for (auto _ : state) {
        const bool baselineFirst = current.size() % 2 == 1;
        for (int turn = 0; turn < 2; ++turn) {
            const bool isBaseline = (turn == 0) == baselineFirst;
            QString error;
            double cpu = 0.0;
            const double elapsed =
                timeCli(isBaseline ? baseline : QStringLiteral(ZARVI_CLI_PATH), input, work, error, &cpu);
            if (elapsed < 0.0) {
                state.SkipWithError(error.toUtf8().constData());
                return;
            }
            (isBaseline ? previous : current).push_back(elapsed);
            (isBaseline ? previousCpu : currentCpu).push_back(cpu);
        }
        state.SetIterationTime(current.back());
    }
    state.counters["new_s"] = median(current);
    state.counters["old_s"] = median(previous);
    state.counters["new_over_old"] = median(current) / median(previous);
    // Processor time is less swayed than wall time by other work on the machine.
    state.counters["cpu_new_over_old"] = median(currentCpu) / median(previousCpu);
}

} // namespace

BENCHMARK(BM_PerieventOperationCli)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PerieventOperationInProcess)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv)
{
    // The in-process runner needs an application object for its event loop.
    QCoreApplication application(argc, argv);
    zarvi::registerSignalOperations(zarvi::OperationRegistry::instance());
    zarvi::registerAnalysisOperations(zarvi::OperationRegistry::instance());
    const QString baseline = qEnvironmentVariable("ZARVI_BASELINE_CLI");
    if (!baseline.isEmpty())
        benchmark::RegisterBenchmark("BM_PerieventOperationAgainstBaseline",
                                     BM_PerieventOperationAgainstBaseline, baseline)
            ->UseManualTime()
            ->Iterations(9)
            ->Unit(benchmark::kMillisecond);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
