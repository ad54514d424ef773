#include "SignalOpsTestSupport.h"
#include "common/TempDir.h"

#include "definitions/FileDefinitions.h"
#include "framework/OperationRunner.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <numbers>

namespace zarvi {
namespace {

const QString operation = QStringLiteral("Photometry deltaF/F");

QString seriesGroup(int series)
{
    return QStringLiteral("DataAcquisition/FiberPhotometry/Signals/Series%1").arg(series);
}

/// An isosbestic signal (slow decay with a wobble, 100 Hz) and a biosensor at exactly
/// twice it, 5 % higher on samples [from, to). Returns the two values paths.
std::pair<QString, QString> writePair(const QString& file, int series, std::size_t n = 2000,
                                      std::size_t from = 500, std::size_t to = 700)
{
    Signal isosbestic;
    Signal biosensor;
    isosbestic.unit = biosensor.unit = QStringLiteral("V");
    for (std::size_t i = 0; i < n; ++i) {
        const double t = static_cast<double>(i) / 100.0;
        const double x = 2.0 + std::exp(-t / 8.0) + 0.2 * std::sin(2.0 * std::numbers::pi * 0.3 * t);
        isosbestic.time.push_back(t);
        isosbestic.values.push_back(x);
        biosensor.values.push_back(2.0 * x * (i >= from && i < to ? 1.05 : 1.0));
    }
    biosensor.time = isosbestic.time;
    return {test::writeSignal(file, seriesGroup(series) + QStringLiteral("/Isosbestic"), isosbestic),
            test::writeSignal(file, seriesGroup(series) + QStringLiteral("/Biosensor"), biosensor)};
}

QVariantMap deltaF(const QVariantMap& stages = {})
{
    QVariantMap parameters = stages;
    parameters.insert(FileDefinitions::Operations, operation);
    parameters.insert(QStringLiteral("IsosbesticName"), QStringLiteral("Isosbestic"));
    parameters.insert(QStringLiteral("BiosensorName"), QStringLiteral("Biosensor"));
    if (!parameters.contains(QStringLiteral("ResidualThreshold")))
        parameters.insert(QStringLiteral("ResidualThreshold"), 1e-6);
    return parameters;
}

class PhotometryOperationTest : public ::testing::Test
{
protected:
    test::TempDir dir;
    QString file = dir.file(QStringLiteral("photometry.orvel"));
    OperationRunner runner;
};

TEST_F(PhotometryOperationTest, MissingNamesAndUnmatchedSensorsAreRefusedWithoutWriting)
{
    const auto [isosbestic, biosensor] = writePair(file, 1);
    QVariantMap missing = deltaF();
    missing.remove(QStringLiteral("BiosensorName"));
    RunResult result = runner.run(missing, file, {isosbestic, biosensor});
    EXPECT_EQ(result.errors, QStringList{QStringLiteral("Parameter <b>BiosensorName</b> is missing.")});

    QVariantMap emptyName = deltaF();
    emptyName.insert(QStringLiteral("IsosbesticName"), QString());
    result = runner.run(emptyName, file, {isosbestic, biosensor});
    EXPECT_EQ(result.errors, QStringList{QStringLiteral("Parameter <b>IsosbesticName</b> is missing.")});

    QVariantMap unmatched = deltaF();
    unmatched.insert(QStringLiteral("BiosensorName"), QStringLiteral("GCaMP"));
    result = runner.run(unmatched, file, {isosbestic, biosensor});
    EXPECT_EQ(
        result.errors,
        QStringList{QStringLiteral(
            "Matching signals from sensors <b>Isosbestic</b> and <b>GCaMP</b> were not found in the file.")});
    EXPECT_FALSE(test::hasProcessedData(file));
}

TEST_F(PhotometryOperationTest, PairsEachRecordingOnceFindsUnselectedPartnersAndGivesARatio)
{
    const auto [isosbestic1, biosensor1] = writePair(file, 1);
    const auto [isosbestic2, biosensor2] = writePair(file, 2);
    std::vector<int> progress;
    runner.onProgress = [&](int p) { progress.push_back(p); };
    // Recording 1 fully selected, recording 2 only through its isosbestic signal.
    const RunResult result = runner.run(deltaF(), file, {biosensor1, isosbestic1, isosbestic2});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    EXPECT_EQ(
        result.datapaths,
        (QStringList{
            QStringLiteral("DataProcessed/FiberPhotometry/Signals/Series1/DFFSignals1/Biosensor/Signal"),
            QStringLiteral("DataProcessed/FiberPhotometry/Signals/Series2/DFFSignals1/Biosensor/Signal")}));
    EXPECT_TRUE(std::is_sorted(progress.begin(), progress.end()));
    EXPECT_EQ(progress.back(), 100);

    // Raw signals on an exact line: 0 off the rise, (2.1 x - 2 x) / 2 x = 0.05 on it; a ratio, not percent.
    for (const QString& path : result.datapaths) {
        const Signal dff = test::readSignal(file, path);
        ASSERT_EQ(dff.values.size(), 2000u);
        EXPECT_NEAR(dff.values[100], 0.0, 1e-9);
        EXPECT_NEAR(dff.values[600], 0.05, 1e-9);
        EXPECT_EQ(dff.unit, QStringLiteral("a.u."));
        EXPECT_EQ(dff.time[1999], 19.99);
    }
    const QVariantMap attributes = test::attributesOf(file, result.datapaths[1]);
    EXPECT_EQ(attributes.value(QStringLiteral("SourceDatapath")).toString(), biosensor2);
    EXPECT_EQ(attributes.value(QStringLiteral("ResidualThreshold")).typeId(), QMetaType::Double);
    const QVariantMap group = test::attributesOf(
        file, QStringLiteral("DataProcessed/FiberPhotometry/Signals/Series2/DFFSignals1"), true);
    EXPECT_EQ(group.value(QStringLiteral("SourceDatapaths")).toStringList(),
              (QStringList{isosbestic1, biosensor1, isosbestic2, biosensor2}));
}

TEST_F(PhotometryOperationTest, UnitFollowsTheStagesAndKernelWarningsBecomeMessages)
{
    const auto [isosbestic, biosensor] = writePair(file, 1);
    QStringList titles;
    QStringList messages;
    std::vector<int> icons;
    runner.onMessage = [&](const QString& title, const QString& message, const QString&, int icon) {
        titles << title;
        messages << message;
        icons.push_back(icon);
    };
    const QVariantMap standardized{{QStringLiteral("StandardizeMethod"), QStringLiteral("Standard Z Score")},
                                   {QStringLiteral("ResidualThreshold"), 0.05}};
    RunResult result = runner.run(deltaF(standardized), file, {isosbestic, biosensor});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    EXPECT_EQ(test::readSignal(file, result.datapaths.first()).unit, QStringLiteral("z-score"));
    EXPECT_TRUE(titles.isEmpty());

    // Decimated to 10 Hz, a 6 Hz low-pass cannot run: the stage is skipped with a warning.
    const QVariantMap detrended{
        {QStringLiteral("RemoveSlopeMethod"), QStringLiteral("Polynomial")},
        {QStringLiteral("SlopeOrder"), 2.0},
        {QStringLiteral("DecimationFactor"), 10.0},
        {QStringLiteral("SmoothMethod"), QStringLiteral("Low-pass Butterworth Filter")},
        {QStringLiteral("SmoothFrequency(Hz)"), 6.0},
        {QStringLiteral("ResidualThreshold"), 0.05}};
    result = runner.run(deltaF(detrended), file, {isosbestic, biosensor});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    const Signal dff = test::readSignal(file, result.datapaths.first());
    EXPECT_EQ(dff.unit, QStringLiteral("V"));
    EXPECT_EQ(dff.values.size(), 200u);
    // The two signals are one line, detrended: every sample is an inlier, which is said too.
    EXPECT_EQ(titles, QStringList(2, QStringLiteral("Warning Operation")));
    ASSERT_EQ(messages.size(), 2);
    EXPECT_TRUE(
        messages.first().contains(QStringLiteral("Cutoff Frequency of the Smooth Signals operation")));
    EXPECT_TRUE(
        messages.last().contains(QStringLiteral("every sample is an inlier of the line fit (100 %)")));
    EXPECT_EQ(icons, (std::vector<int>{2, 2}));
    const QVariantMap attributes = test::attributesOf(file, result.datapaths.first());
    EXPECT_EQ(attributes.value(QStringLiteral("SlopeOrder")).typeId(), QMetaType::Int);
    EXPECT_EQ(attributes.value(QStringLiteral("DecimationFactor")).typeId(), QMetaType::Int);
    EXPECT_EQ(attributes.value(QStringLiteral("SmoothFrequency(Hz)")).typeId(), QMetaType::Double);
    // The run records what the fit kept: here every sample.
    EXPECT_EQ(attributes.value(QStringLiteral("InlierFraction")).toDouble(), 1.0);
}

TEST_F(PhotometryOperationTest, AFailedOrCancelledRunRemovesWhatItWrote)
{
    // The second recording is too short once its start is discarded; the first pair's output goes again.
    const auto [isosbestic1, biosensor1] = writePair(file, 1);
    const auto [isosbestic2, biosensor2] = writePair(file, 2, 300, 100, 200);
    RunResult result =
        runner.run(deltaF({{QStringLiteral("DiscardStart(sec)"), 5.0}}), file, {isosbestic1, isosbestic2});
    ASSERT_EQ(result.errors.size(), 1);
    EXPECT_FALSE(
        test::exists(file, QStringLiteral("DataProcessed/FiberPhotometry/Signals/Series1/DFFSignals1")));

    // Two long pairs; the cancel lands while the second one is fitted. With a threshold of 0 no
    // sample is an inlier, so every fit scans all samples 1000 times: long enough to be stopped.
    const QString big = dir.file(QStringLiteral("big.orvel"));
    const auto [isosbesticA, biosensorA] = writePair(big, 1, 600000, 1000, 2000);
    const auto [isosbesticB, biosensorB] = writePair(big, 2, 600000, 1000, 2000);
    runner.onProgress = [&](int p) {
        if (p >= 55)
            runner.requestCancel();
    };
    result =
        runner.run(deltaF({{QStringLiteral("ResidualThreshold"), 0.0}}), big, {isosbesticA, isosbesticB});
    EXPECT_TRUE(result.canceled);
    EXPECT_FALSE(result.succeeded());
    EXPECT_FALSE(
        test::exists(big, QStringLiteral("DataProcessed/FiberPhotometry/Signals/Series1/DFFSignals1")));
}

TEST_F(PhotometryOperationTest, TheDemoTransientStandsOutInTheDeltaF)
{
    const DemoTruth truth = test::writeSmallDemo(file, 200.0);
    // Standardised signals are fitted on a scale of about one, where a residual of 0.5 separates
    // the common bleaching and artefacts from the biosensor's own transients.
    const QVariantMap stages{{QStringLiteral("DecimationFactor"), 10.0},
                             {QStringLiteral("SmoothMethod"), QStringLiteral("Low-pass Butterworth Filter")},
                             {QStringLiteral("SmoothFrequency(Hz)"), 10.0},
                             {QStringLiteral("StandardizeMethod"), QStringLiteral("Standard Z Score")},
                             {QStringLiteral("ResidualThreshold"), 0.5}};
    const RunResult result = runner.run(deltaF(stages), file, {truth.isosbesticPath, truth.biosensorPath});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    const Signal dff = test::readSignal(file, result.datapaths.first());
    ASSERT_EQ(dff.values.size(), 20000u);

    double peakSum = 0.0;
    double baselineSum = 0.0;
    for (const double onset : truth.eventOnsets) {
        const double peakTime = onset + truth.transientPeakLatency;
        const double peak = test::meanBetween(dff, peakTime - 0.1, peakTime + 0.1);
        const double baseline = test::meanBetween(dff, onset - 1.0, onset);
        EXPECT_GT(peak, baseline + 0.2) << "event at " << onset;
        peakSum += peak;
        baselineSum += baseline;
    }
    const double events = static_cast<double>(truth.eventOnsets.size());
    EXPECT_GT(peakSum / events - baselineSum / events, 0.4);
}

} // namespace
} // namespace zarvi
