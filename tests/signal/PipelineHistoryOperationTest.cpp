#include "SignalOpsTestSupport.h"
#include "common/TempDir.h"

#include "definitions/FileDefinitions.h"
#include "framework/OperationRunner.h"
#include "framework/PipelineFile.h"
#include "framework/PipelineHistory.h"

#include <gtest/gtest.h>

namespace zarvi {
namespace {

using FD = FileDefinitions;

const QVariantMap decimation{{FD::Operations, QStringLiteral("Decimation")},
                             {QStringLiteral("DecimationFactor"), 10}};
const QVariantMap lowPass{{FD::Operations, QStringLiteral("Filter")},
                          {QStringLiteral("FilterType"), QStringLiteral("LowPass")},
                          {QStringLiteral("LowCutoffFrequency"), 5.0},
                          {QStringLiteral("FilterName"), QStringLiteral("Butterworth")}};
const QVariantMap smoothing{{FD::Operations, QStringLiteral("Smooth Signals")},
                            {QStringLiteral("SmoothMethod"), QStringLiteral("Running Average")},
                            {QStringLiteral("SmoothTimeFrame(sec)"), 0.05}};

/// The run group holding the sensor group of a values path (".../<Output><K>/<sensor>/Signal").
QString runGroupOf(const QString& valuesPath)
{
    return valuesPath.section(QLatin1Char('/'), 0, -3);
}

class PipelineHistoryTest : public ::testing::Test
{
protected:
    QString runOne(const QVariantMap& step, const QStringList& inputs, int expectedOutputs = 1)
    {
        const RunResult result = runner.run(step, file, inputs);
        EXPECT_TRUE(result.succeeded()) << result.errors.join(QLatin1Char('\n')).toStdString();
        EXPECT_EQ(result.datapaths.size(), expectedOutputs);
        return result.datapaths.value(expectedOutputs - 1);
    }

    test::TempDir dir;
    QString file = dir.file(QStringLiteral("history.orvel"));
    DemoTruth truth = test::writeSmallDemo(file, 20.0);
    OperationRunner runner;
};

TEST_F(PipelineHistoryTest, AChainOfRunsIsSavedOldestFirstAndRepeatsBitForBit)
{
    // Both channels are decimated together; the biosensor's result is filtered, then smoothed.
    const QString decimated = runOne(decimation, {truth.isosbesticPath, truth.biosensorPath}, 2);
    ASSERT_TRUE(decimated.contains(QStringLiteral("/Biosensor/")));
    const QString filtered = runOne(lowPass, {decimated});
    const QString smoothed = runOne(smoothing, {filtered});

    const PipelineHistory::Result history = PipelineHistory::of(file, smoothed);
    ASSERT_TRUE(history.error.isEmpty()) << history.error.toStdString();
    // Exactly the parameters the runs were given, no bookkeeping (SourceDatapath, Unit, ...).
    EXPECT_EQ(history.steps, (QList<QVariantMap>{decimation, lowPass, smoothing}));
    EXPECT_EQ(history.steps.first().value(QStringLiteral("DecimationFactor")).typeId(), QMetaType::Int);
    EXPECT_EQ(history.origin, truth.biosensorPath);
    // The sensor group and the run group of the result stand for it.
    for (const QString& path : {smoothed.section(QLatin1Char('/'), 0, -2), runGroupOf(smoothed)}) {
        const PipelineHistory::Result same = PipelineHistory::of(file, path);
        EXPECT_EQ(same.steps, history.steps) << path.toStdString() << same.error.toStdString();
    }

    // Through the file the dialogs and the command line read, on the raw signal again.
    const QString saved = dir.file(QStringLiteral("saved.json"));
    QString error;
    ASSERT_TRUE(PipelineFile::write(saved, history.steps, error)) << error.toStdString();
    QList<QVariantMap> steps;
    ASSERT_TRUE(PipelineFile::read(saved, steps, error)) << error.toStdString();
    const RunResult again = runner.runPipeline(steps, file, {history.origin});
    ASSERT_TRUE(again.succeeded()) << again.errors.join(QLatin1Char('\n')).toStdString();
    ASSERT_EQ(again.datapaths.size(), 1);
    EXPECT_NE(again.datapaths.first(), smoothed);
    const Signal original = test::readSignal(file, smoothed);
    const Signal repeated = test::readSignal(file, again.datapaths.first());
    ASSERT_EQ(original.values.size(), 2000u); // 20 s at 1000 Hz, every 10th sample
    EXPECT_EQ(repeated.values, original.values);
    EXPECT_EQ(repeated.time, original.time);
    // The repeat has the same history.
    EXPECT_EQ(PipelineHistory::of(file, again.datapaths.first()).steps, history.steps);
}

TEST_F(PipelineHistoryTest, AStepOfSeveralInputsNeedsAllToHaveGoneThroughTheSameSteps)
{
    // ΔF/F of the decimated pair: its own input (the biosensor) is followed, the isosbestic agrees.
    const QVariantMap deltaF{{FD::Operations, QStringLiteral("Photometry deltaF/F")},
                             {QStringLiteral("IsosbesticName"), QStringLiteral("Isosbestic")},
                             {QStringLiteral("BiosensorName"), QStringLiteral("Biosensor")},
                             {QStringLiteral("ResidualThreshold"), 1e-6}};
    const QString decimated = runGroupOf(runOne(decimation, {truth.isosbesticPath, truth.biosensorPath}, 2));
    const QString dff = runOne(deltaF, {decimated + QStringLiteral("/Isosbestic/Signal"),
                                        decimated + QStringLiteral("/Biosensor/Signal")});
    const PipelineHistory::Result history = PipelineHistory::of(file, dff);
    ASSERT_TRUE(history.error.isEmpty()) << history.error.toStdString();
    EXPECT_EQ(history.steps, (QList<QVariantMap>{decimation, deltaF}));
    EXPECT_EQ(history.origin, truth.biosensorPath);

    // One decimation run over a filtered isosbestic and the raw biosensor: the branches differ.
    const QString isoFiltered = runOne(lowPass, {truth.isosbesticPath});
    const QString mixed = runGroupOf(runOne(decimation, {isoFiltered, truth.biosensorPath}, 2)) +
                          QStringLiteral("/Biosensor/Signal");
    const PipelineHistory::Result refused = PipelineHistory::of(file, mixed);
    EXPECT_TRUE(refused.steps.isEmpty());
    EXPECT_EQ(refused.error,
              QStringLiteral("The step <b>Decimation</b> that wrote <b>%1</b> took inputs that went through "
                             "different steps (<b>%2</b> and <b>%3</b>): one pipeline cannot repeat it.")
                  .arg(mixed, truth.biosensorPath, isoFiltered));
}

TEST_F(PipelineHistoryTest, WhatNoOperationWroteOrWhatIsGoneHasNoPipeline)
{
    EXPECT_EQ(PipelineHistory::of(file, truth.biosensorPath).error,
              QStringLiteral("<b>%1</b> is not the result of an operation: it records no <b>Operations</b>.")
                  .arg(truth.biosensorPath));
    EXPECT_EQ(PipelineHistory::of(file, QStringLiteral("DataProcessed/None")).error,
              QStringLiteral("<b>DataProcessed/None</b> is not in the file <b>%1</b>.").arg(file));

    // The input of a result deleted afterwards: its steps are unknown.
    const QString decimated = runOne(decimation, {truth.biosensorPath});
    const QString filtered = runOne(lowPass, {decimated});
    {
        HDF5Writer_V6 writer;
        ASSERT_GE(writer.open(file), 0);
        ASSERT_TRUE(writer.deleteLink(writer.fileId(), runGroupOf(decimated)));
    }
    EXPECT_EQ(PipelineHistory::of(file, filtered).error,
              QStringLiteral("The input <b>%1</b> of <b>%2</b> is no longer in the file: its steps cannot be "
                             "known.")
                  .arg(decimated, filtered));
}

TEST(PipelineFileCheck, NamesEachProblemWithItsStepAndDescribesStepsInDeclaredOrder)
{
    QStringList problems;
    EXPECT_TRUE(PipelineFile::check({decimation, lowPass}, problems));
    EXPECT_TRUE(problems.isEmpty());
    QVariantMap zeroFactor = decimation;
    zeroFactor.insert(QStringLiteral("DecimationFactor"), 0);
    EXPECT_FALSE(PipelineFile::check({decimation, {{FD::Operations, QStringLiteral("Sharpen")}}, zeroFactor},
                                     problems));
    EXPECT_EQ(problems, (QStringList{QStringLiteral("Step 2: Operation <b>Sharpen</b> does not exist."),
                                     QStringLiteral("Step 3: Bad value for decimation factor.")}));

    EXPECT_EQ(PipelineFile::describe(decimation), QStringLiteral("Decimation — DecimationFactor = 10"));
    // FilterType, LowCutoffFrequency, FilterName are declared in that order (not the map's).
    EXPECT_EQ(
        PipelineFile::describe(lowPass),
        QStringLiteral("Filter — FilterType = LowPass, LowCutoffFrequency = 5, FilterName = Butterworth"));
}

} // namespace
} // namespace zarvi
