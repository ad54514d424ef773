// Times the whole "Photometry deltaF/F" run through `zarvi-cli run` on a one-hour
// 1 kHz isosbestic/biosensor pair (low-pass smoothing at 10 Hz, standard z-scores),
// reading and writing the file included, pinned to one core. The baseline, timed in
// the same run, is `zarvi-cli run` of "Decimation" by 1 on the same two signals: the
// same program start, reads and writes with no computation. Each run starts from a
// fresh copy of the recording. Prints the median seconds of each and their ratio.
//
// usage: bench_signalops_photometry [repeats (default 3)]

#include "bench/common/BenchTimer.h"

#include "datafile/DemoRecording.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>

using namespace zarvi;

namespace {

constexpr double targetSeconds = 3.0;

struct Run
{
    QString operation;
    QString parameters;
};

/// One `zarvi-cli run` on a fresh copy of the recording; aborts when the run fails.
void runOnce(const QString& recording, const QString& work, const DemoTruth& truth, const Run& run)
{
    QFile::remove(work);
    if (!QFile::copy(recording, work))
        std::abort();
    QStringList arguments{QStringLiteral(ZARVI_CLI_PATH),
                          QStringLiteral("run"),
                          work,
                          QStringLiteral("--operation"),
                          run.operation,
                          QStringLiteral("--params"),
                          run.parameters,
                          QStringLiteral("--data"),
                          truth.isosbesticPath,
                          truth.biosensorPath};
    QString program = arguments.takeFirst();
    // One core, as the target is stated for one.
    if (!QStandardPaths::findExecutable(QStringLiteral("taskset")).isEmpty()) {
        arguments.prepend(program);
        arguments.prepend(QStringLiteral("0"));
        arguments.prepend(QStringLiteral("-c"));
        program = QStringLiteral("taskset");
    }
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(-1) || process.exitCode() != 0) {
        std::fprintf(stderr, "%s failed:\n%s\n", qPrintable(run.operation),
                     process.readAllStandardError().constData());
        std::exit(1);
    }
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const int repeats = argc > 1 ? std::atoi(argv[1]) : 3;
    QTemporaryDir dir;
    const QString recording = dir.filePath(QStringLiteral("hour.orvel"));
    const QString work = dir.filePath(QStringLiteral("work.orvel"));

    DemoSettings settings;
    settings.photometryDuration = 3600.0;
    settings.stackHeight = settings.stackWidth = 32;
    settings.stackFrames = 4;
    settings.videoWidth = 64;
    settings.videoHeight = 48;
    settings.videoFrames = 4;
    DemoTruth truth;
    QString error;
    if (!DemoRecording::write(recording, settings, truth, error)) {
        std::fprintf(stderr, "Cannot write the recording: %s\n", qPrintable(error));
        return 1;
    }

    const Run baseline{QStringLiteral("Decimation"), QStringLiteral("{\"DecimationFactor\": 1}")};
    const Run deltaF{
        QStringLiteral("Photometry deltaF/F"),
        QStringLiteral("{\"IsosbesticName\": \"Isosbestic\", \"BiosensorName\": \"Biosensor\", "
                       "\"SmoothMethod\": \"Low-pass Butterworth Filter\", \"SmoothFrequency(Hz)\": 10, "
                       "\"StandardizeMethod\": \"Standard Z Score\", \"ResidualThreshold\": 0.5}")};
    const double baseSeconds =
        bench::medianSeconds(repeats, [&] { runOnce(recording, work, truth, baseline); });
    const double deltaFSeconds =
        bench::medianSeconds(repeats, [&] { runOnce(recording, work, truth, deltaF); });

    std::printf("Photometry deltaF/F, 1 h at 1 kHz (2 x 3.6e6 samples), zarvi-cli run on one core\n");
    std::printf("  baseline Decimation by 1 (read + write both signals): %7.3f s\n", baseSeconds);
    std::printf(
        "  Photometry deltaF/F (10 Hz low-pass, z-score, fit):  %7.3f s  ratio %.2f  target <= %.1f s: %s\n",
        deltaFSeconds, deltaFSeconds / baseSeconds, targetSeconds,
        deltaFSeconds <= targetSeconds ? "met" : "missed");
    return 0;
}
