#include "SignalOpsTestSupport.h"
#include "common/TempDir.h"

#include "framework/PipelineSummaryDialog.h"
#include "signal/SignalPipeline.h"

#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>

#include <gtest/gtest.h>

namespace zarvi {
namespace {

/// A 100 Hz signal whose sample i has the value i, so a decimation keeps known values.
class PipelineLoadTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        Signal signal;
        for (int i = 0; i < 1000; ++i) {
            signal.time.push_back(i / 100.0);
            signal.values.push_back(i);
        }
        input = test::writeSignal(file, QStringLiteral("DataAcquisition/Rig/Signals/Series1/Green"), signal);
        pipeline.setData(file, {input});
        pipeline.setMessagePresenter([this](const QString&, const QString& message) { messages << message; });
    }

    QString writePipeline(const QByteArray& json)
    {
        const QString path = dir.file(QStringLiteral("pipeline.json"));
        QFile out(path);
        EXPECT_TRUE(out.open(QIODevice::WriteOnly));
        out.write(json);
        return path;
    }

    /// Shows the summary to the test, which notes what it lists and presses `button`.
    void answerWith(QPushButton* (PipelineSummaryDialog::*button)() const)
    {
        pipeline.setSummaryPresenter([this, button](PipelineSummaryDialog& dialog) {
            shownSteps << dialog.stepsLabel()->text();
            shownDatasets = dialog.datasetsLabel()->text();
            (dialog.*button)()->click();
            return dialog.result() == QDialog::Accepted;
        });
    }

    test::TempDir dir;
    QString file = dir.file(QStringLiteral("load.orvel"));
    QString input;
    SignalPipeline pipeline;
    QStringList messages;
    QStringList shownSteps;
    QString shownDatasets;
};

TEST_F(PipelineLoadTest, TheStepsAreShownFirstAndOnlyRunRunsThem)
{
    const QString path = writePipeline(R"([{"Operations": "Decimation", "DecimationFactor": 10},
                                           {"Operations": "Decimation", "DecimationFactor": 2}])");
    QSignalSpy finished(&pipeline, &AbstractPipeline::sendOperationProcessFinished);
    answerWith(&PipelineSummaryDialog::cancelButton);
    const RunResult cancelled = pipeline.loadPipeline(path);
    EXPECT_TRUE(cancelled.canceled);
    EXPECT_EQ(shownSteps, QStringList{QStringLiteral("1. Decimation — DecimationFactor = 10<br>"
                                                     "2. Decimation — DecimationFactor = 2")});
    EXPECT_EQ(shownDatasets, QStringLiteral("<b>%1</b>").arg(input));
    EXPECT_FALSE(test::hasProcessedData(file));
    EXPECT_EQ(finished.count(), 0);

    answerWith(&PipelineSummaryDialog::acceptButton);
    const RunResult run = pipeline.loadPipeline(path);
    ASSERT_TRUE(run.succeeded()) << run.errors.join(QLatin1Char('\n')).toStdString();
    ASSERT_EQ(run.datapaths.size(), 1);
    EXPECT_EQ(finished.count(), 1);
    EXPECT_TRUE(messages.isEmpty());
    // Every 10th sample, then every 2nd of those: 0, 20, 40, ..., 980.
    std::vector<double> expected;
    for (int i = 0; i < 1000; i += 20)
        expected.push_back(i);
    EXPECT_EQ(test::readSignal(file, run.datapaths.first()).values, expected);
}

TEST_F(PipelineLoadTest, AnInvalidFileIsRefusedWithItsProblemsAndRunsNothing)
{
    answerWith(&PipelineSummaryDialog::acceptButton);
    const QString path = writePipeline(R"([{"Operations": "Decimation", "DecimationFactor": 10},
                                           {"Operations": "Sharpen"},
                                           {"Operations": "Decimation", "DecimationFactor": 0}])");
    const QStringList problems{QStringLiteral("Step 2: Operation <b>Sharpen</b> does not exist."),
                               QStringLiteral("Step 3: Bad value for decimation factor.")};
    EXPECT_EQ(pipeline.loadPipeline(path).errors, problems);
    EXPECT_EQ(messages, QStringList{problems.join(QStringLiteral("<br>"))});
    EXPECT_TRUE(shownSteps.isEmpty());
    // Without the dialog as well.
    EXPECT_EQ(pipeline.runSavedPipeline(path).errors, problems);
    EXPECT_FALSE(test::hasProcessedData(file));

    messages.clear();
    writePipeline(R"({"Operations": "Decimation"})");
    pipeline.loadPipeline(path);
    EXPECT_EQ(messages, QStringList{QStringLiteral("%1 must hold a list of operations.").arg(path)});
    EXPECT_TRUE(shownSteps.isEmpty());
    EXPECT_FALSE(test::hasProcessedData(file));
}

} // namespace
} // namespace zarvi
