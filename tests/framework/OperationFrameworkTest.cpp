#include "TestOperations.h"
#include "common/TempDir.h"

#include "datafile/HDF5Reader_V6.h"
#include "datafile/HDF5Writer_V6.h"
#include "datafile/SignalDataset.h"
#include "definitions/FileDefinitions.h"
#include "framework/OperationRunner.h"
#include "framework/PipelineFile.h"
#include "framework/RunSummary.h"

#include <QCoreApplication>
#include <QTimer>

#include <gtest/gtest.h>

using namespace zarvi;

namespace {

constexpr const char* inputGroup = "DataAcquisition/Rig/Signals/Series2/Green";

QString writeRamp(const QString& path, std::size_t n)
{
    HDF5Writer_V6 file;
    EXPECT_GE(file.create(path), 0);
    Signal signal;
    for (std::size_t i = 0; i < n; ++i) {
        signal.time.push_back(i * 0.001);
        signal.values.push_back(static_cast<double>(i));
    }
    signal.unit = QStringLiteral("V");
    QString error;
    EXPECT_TRUE(SignalDataset::write(file, QString::fromLatin1(inputGroup), signal, {}, error))
        << error.toStdString();
    return SignalDataset::valuesPath(QString::fromLatin1(inputGroup));
}

QVariantMap scale(double factor, int pauseMs = 0)
{
    return {{FileDefinitions::Operations, test::slowOperation},
            {QStringLiteral("Factor"), factor},
            {QStringLiteral("PauseMs"), pauseMs}};
}

class OperationFrameworkTest : public ::testing::Test
{
protected:
    void SetUp() override { test::registerTestOperations(); }
    test::TempDir dir;
};

TEST_F(OperationFrameworkTest, RunWritesNumberedOutputWithParametersAndRisingProgress)
{
    const QString file = dir.file(QStringLiteral("a.orvel"));
    const QString input = writeRamp(file, 5000);
    OperationRunner runner;
    std::vector<int> progress;
    runner.onProgress = [&](int p) { progress.push_back(p); };

    const RunResult first = runner.run(scale(2.0), file, {input});
    ASSERT_TRUE(first.succeeded()) << first.errors.join(' ').toStdString();
    ASSERT_FALSE(progress.empty());
    EXPECT_TRUE(std::is_sorted(progress.begin(), progress.end()));
    EXPECT_EQ(progress.back(), 100);
    EXPECT_EQ(first.datapaths,
              QStringList{QStringLiteral("DataProcessed/Rig/Signals/Series2/ScaledSignals1/Green/Signal")});

    const RunResult second = runner.run(scale(3.0), file, {input});
    ASSERT_TRUE(second.succeeded());
    EXPECT_EQ(second.datapaths.first(),
              QStringLiteral("DataProcessed/Rig/Signals/Series2/ScaledSignals2/Green/Signal"));

    HDF5Reader_V6 reader;
    ASSERT_GE(reader.open(file), 0);
    Signal out;
    QString error;
    ASSERT_TRUE(SignalDataset::read(reader, first.datapaths.first(), out, error));
    EXPECT_EQ(out.values[4999], 2.0 * 4999);
    EXPECT_EQ(out.unit, QStringLiteral("V"));
    const hid_t dataset = reader.openDataset(reader.fileId(), first.datapaths.first());
    const QVariantMap attributes = reader.readAllAttributes(dataset);
    reader.closeDataset(dataset);
    EXPECT_EQ(attributes.value(FileDefinitions::Operations).toString(), test::slowOperation);
    EXPECT_EQ(attributes.value(QStringLiteral("Factor")).toDouble(), 2.0);
    EXPECT_EQ(attributes.value(FileDefinitions::SourceDatapath).toString(), input);
    const hid_t group =
        reader.openGroup(reader.fileId(), QStringLiteral("DataProcessed/Rig/Signals/Series2/ScaledSignals1"));
    EXPECT_EQ(reader.readAttribute(group, FileDefinitions::SourceDatapaths).toStringList(),
              QStringList{input});
    reader.closeGroup(group);
}

TEST_F(OperationFrameworkTest, ErrorsAndBadParametersReachTheResultAndWriteNothing)
{
    const QString file = dir.file(QStringLiteral("b.orvel"));
    const QString input = writeRamp(file, 100);
    OperationRunner runner;

    QVariantMap failing = scale(1.0);
    failing.insert(QStringLiteral("FailWith"), QStringLiteral("Something went wrong: error 7."));
    RunResult result = runner.run(failing, file, {input});
    EXPECT_EQ(result.errors, QStringList{QStringLiteral("Something went wrong: error 7.")});
    EXPECT_TRUE(result.datapaths.isEmpty());

    QVariantMap unknownKey = scale(1.0);
    unknownKey.insert(QStringLiteral("Factr"), 2.0);
    result = runner.run(unknownKey, file, {input});
    ASSERT_EQ(result.errors.size(), 1);
    EXPECT_TRUE(result.errors.first().contains(QStringLiteral("<b>Factr</b>")));

    QVariantMap badValue = scale(1.0);
    badValue.insert(QStringLiteral("PauseMs"), 1.5);
    EXPECT_FALSE(runner.run(badValue, file, {input}).succeeded());

    // The first input is written before the second is found missing: the run takes it back.
    result = runner.run(scale(1.0), file,
                        {input, QStringLiteral("DataAcquisition/Rig/Signals/Series2/Missing/Signal")});
    EXPECT_FALSE(result.succeeded());
    result = runner.run(scale(1.0), file, {});
    EXPECT_EQ(result.errors, QStringList{QStringLiteral("No datasets set to the operation")});

    // Nothing is left, not even the parent groups the run had to add.
    HDF5Reader_V6 reader;
    ASSERT_GE(reader.open(file), 0);
    EXPECT_FALSE(reader.exists(reader.fileId(), QStringLiteral("DataProcessed")));
}

TEST_F(OperationFrameworkTest, CancelInTheMiddleStopsAndLeavesNoPartialOutput)
{
    const QString file = dir.file(QStringLiteral("c.orvel"));
    const QString input = writeRamp(file, 10000);
    OperationRunner runner;
    int highest = 0;
    runner.onProgress = [&](int p) {
        highest = p;
        if (p >= 60)
            runner.requestCancel();
    };
    // Two inputs: the first is written before the cancel lands in the second half.
    const RunResult result = runner.run(scale(2.0, 20), file, {input, input});
    EXPECT_TRUE(result.canceled);
    EXPECT_FALSE(result.succeeded());
    EXPECT_LT(highest, 100);

    // Nothing is left, not even the parent groups the run had to add.
    HDF5Reader_V6 reader;
    ASSERT_GE(reader.open(file), 0);
    EXPECT_FALSE(reader.exists(reader.fileId(), QStringLiteral("DataProcessed")));
}

TEST_F(OperationFrameworkTest, PipelineFeedsEachStepTheOutputsOfTheStepBefore)
{
    const QString file = dir.file(QStringLiteral("d.orvel"));
    const QString input = writeRamp(file, 1000);
    const QString pipeline = dir.file(QStringLiteral("pipeline.json"));
    QString error;
    ASSERT_TRUE(PipelineFile::write(pipeline, {scale(2.0), scale(5.0)}, error));
    QList<QVariantMap> steps;
    ASSERT_TRUE(PipelineFile::read(pipeline, steps, error));

    OperationRunner runner;
    const RunResult result = runner.runPipeline(steps, file, {input});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    ASSERT_EQ(result.datapaths.size(), 1);
    HDF5Reader_V6 reader;
    ASSERT_GE(reader.open(file), 0);
    Signal out;
    ASSERT_TRUE(SignalDataset::read(reader, result.datapaths.first(), out, error));
    EXPECT_EQ(out.values[10], 100.0);
}

TEST_F(OperationFrameworkTest, APipelineIsAllOrNothing)
{
    const QString file = dir.file(QStringLiteral("e.orvel"));
    const QString input = writeRamp(file, 1000);
    {
        // A group of the file that is empty before the pipeline must stay.
        HDF5Writer_V6 writer;
        ASSERT_GE(writer.open(file), 0);
        writer.closeGroup(writer.createGroupPath(writer.fileId(), QStringLiteral("DataProcessed/Kept")));
    }
    QVariantMap failing = scale(5.0);
    failing.insert(QStringLiteral("FailWith"), QStringLiteral("Step two failed."));
    OperationRunner runner;
    const RunResult result = runner.runPipeline({scale(2.0), scale(3.0), failing}, file, {input});
    EXPECT_EQ(result.errors, QStringList{QStringLiteral("Step two failed.")});
    EXPECT_TRUE(result.datapaths.isEmpty());

    HDF5Reader_V6 reader;
    ASSERT_GE(reader.open(file), 0);
    EXPECT_TRUE(reader.exists(reader.fileId(), QStringLiteral("DataProcessed/Kept")));
    EXPECT_FALSE(reader.exists(reader.fileId(), QStringLiteral("DataProcessed/Rig")));
    EXPECT_TRUE(reader.exists(reader.fileId(), input));
}

TEST_F(OperationFrameworkTest, AnInputThatIsNotInTheFileIsAnError)
{
    const QString file = dir.file(QStringLiteral("f.orvel"));
    const QString input = writeRamp(file, 100);
    OperationRunner runner;
    const QString missing = QStringLiteral("DataAcquisition/Rig/Signals/Series2/Red/Signal");
    const RunResult result = runner.run(scale(2.0), file, {input, missing});
    EXPECT_EQ(result.errors,
              QStringList{QStringLiteral("Dataset <b>%1</b> was not found in the file.").arg(missing)});
}

} // namespace

TEST(RunSummary, NamesEachOutputGroupWithTheSignalsWrittenUnderIt)
{
    const QString group = QStringLiteral("DataProcessed/FiberPhotometry/Signals/Series1/");
    EXPECT_EQ(RunSummary::describe({group + "DFFSignals1/Left/Signal", group + "DFFSignals1/Right/Signal"}),
              QStringLiteral("DFFSignals1: 2 signals"));
    EXPECT_EQ(RunSummary::describe({group + "Perievents1/Left/Matrix", group + "Perievents1/Left/AUC",
                                    group + "FilteredSignals2/Left/Signal"}),
              QStringLiteral("Perievents1: 1 signal; FilteredSignals2: 1 signal"));
    EXPECT_EQ(RunSummary::describe({}), QString());
}
