// The "Perievents" operation end to end: run through the OperationRunner on the demo
// recording and on hand-made files, then read back exactly what it wrote.
#include "PerieventTestFile.h"

#include "analysis/PerieventExport.h"
#include "analysis/operations/perievents/PerieventResultFile.h"
#include "datafile/SignalDataset.h"
#include "fileeditor/CsvTableReader.h"
#include "framework/OperationRunner.h"

#include <QFileInfo>
#include <QTextStream>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

using namespace zarvi;

namespace {

using D = AnalysisOperationDefinitions;
using FD = FileDefinitions;

const QString resultGroup = QStringLiteral("DataAnalyzed/FiberPhotometry/Signals/Series1/Perievents1");

class PerieventOperationTest : public ::testing::Test
{
protected:
    const DemoTruth& truth = test::PerieventDemo::instance().truth;
    test::TempDir dir;
    QString file = test::PerieventDemo::instance().copyTo(dir);

    RunResult run(const QVariantMap& parameters, const QStringList& inputs)
    {
        OperationRunner runner;
        return runner.run(parameters, file, inputs);
    }
};

/// Column means of a row-major [rows, columns] matrix.
std::vector<double> columnMeans(const test::RawDataset& matrix)
{
    const std::size_t rows = matrix.dimensions[0], columns = matrix.dimensions[1];
    std::vector<double> means(columns, 0.0);
    for (std::size_t r = 0; r < rows; ++r)
        for (std::size_t c = 0; c < columns; ++c)
            means[c] += matrix.values[r * columns + c] / static_cast<double>(rows);
    return means;
}

TEST_F(PerieventOperationTest, TheEventLockedTransientShowsInTheMeanTrace)
{
    QVariantMap parameters = test::demoParameters(truth);
    const RunResult raw = run(parameters, {truth.biosensorPath});
    ASSERT_TRUE(raw.succeeded()) << raw.errors.join(' ').toStdString();
    parameters.insert(D::NormalizeWindow, QVariantList{-2.0, -0.5});
    parameters.insert(D::NormalizeMethod, D::Mean);
    const RunResult aligned = run(parameters, {truth.biosensorPath});
    ASSERT_TRUE(aligned.succeeded()) << aligned.errors.join(' ').toStdString();
    ASSERT_EQ(aligned.datapaths,
              QStringList({"DataAnalyzed/FiberPhotometry/Signals/Series1/Perievents2/Biosensor/Perievents"}));

    // Every event lies 20 s or more inside the five minutes: all rows are kept.
    const test::RawDataset level = test::readRaw(file, raw.datapaths[0]);
    const test::RawDataset matrix = test::readRaw(file, aligned.datapaths[0]);
    const test::RawDataset time = test::readRaw(file, resultGroup.chopped(1) + "2/Biosensor/Time");
    ASSERT_EQ(matrix.dimensions.size(), 2u);
    EXPECT_EQ(matrix.dimensions[0], truth.eventOnsets.size());
    ASSERT_EQ(time.values.size(), matrix.dimensions[1]);

    // Baseline level from the raw chunks' first 1.5 s; the aligned mean trace peaks at
    // the transient's latency with about its relative amplitude.
    const std::vector<double> rawMeans = columnMeans(level);
    const std::vector<double> means = columnMeans(matrix);
    double baseline = 0.0;
    int baselineSamples = 0;
    for (std::size_t c = 0; c < time.values.size(); ++c)
        if (time.values[c] <= -0.5) {
            baseline += rawMeans[c];
            ++baselineSamples;
        }
    baseline /= baselineSamples;
    const auto peak = std::max_element(means.begin(), means.end()) - means.begin();
    EXPECT_NEAR(time.values[peak], truth.transientPeakLatency, 0.1);
    EXPECT_NEAR(means[peak] / baseline, truth.transientAmplitude, 0.2 * truth.transientAmplitude);

    // Before the event the aligned trace stays at 0 within the noise.
    for (std::size_t c = 0; c < time.values.size() && time.values[c] < -0.5; ++c)
        EXPECT_NEAR(means[c], 0.0, 0.01 * baseline);

    // On the photometry ΔF/F of the pair, the relative rise is the trace itself.
    const QVariantMap deltaF{{FD::Operations, QStringLiteral("Photometry deltaF/F")},
                             {QStringLiteral("IsosbesticName"), QStringLiteral("Isosbestic")},
                             {QStringLiteral("BiosensorName"), QStringLiteral("Biosensor")},
                             {QStringLiteral("ResidualThreshold"), 0.01}};
    OperationRunner runner;
    const RunResult dff =
        runner.runPipeline({deltaF, parameters}, file, {truth.isosbesticPath, truth.biosensorPath});
    ASSERT_TRUE(dff.succeeded()) << dff.errors.join(' ').toStdString();
    ASSERT_EQ(dff.datapaths.size(), 1);
    const std::vector<double> dffMeans = columnMeans(test::readRaw(file, dff.datapaths[0]));
    const auto dffPeak = std::max_element(dffMeans.begin(), dffMeans.end()) - dffMeans.begin();
    EXPECT_NEAR(time.values[dffPeak], truth.transientPeakLatency, 0.1);
    EXPECT_NEAR(dffMeans[dffPeak], truth.transientAmplitude, 0.2 * truth.transientAmplitude);
}

TEST_F(PerieventOperationTest, SavesTheDocumentedDatasetsAndAttributes)
{
    QVariantMap parameters = test::demoParameters(truth);
    parameters.insert(D::NormalizeWindow, QVariantList{-2.0, -0.5});
    parameters.insert(D::NormalizeMethod, D::StandardZScore);
    parameters.insert(D::SelectEvents, 1);
    parameters.insert(D::EventRange, QVariantList{2, 5});
    const RunResult result = run(parameters, {truth.isosbesticPath, truth.biosensorPath});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    ASSERT_EQ(result.datapaths,
              QStringList({resultGroup + "/Isosbestic/Perievents", resultGroup + "/Biosensor/Perievents"}));

    // fs = 300000 / 299.999 Hz: startOffset round(-2 fs) = -2000, endOffset round(4 fs) + 1 = 4001.
    const test::RawDataset matrix = test::readRaw(file, result.datapaths[1]);
    ASSERT_EQ(matrix.dimensions, (std::vector<hsize_t>{4, 6001}));
    EXPECT_EQ(matrix.chunk, (std::vector<hsize_t>{4, 6001})); // a band of rows under 1 MiB
    const QVariantMap& a = matrix.attributes;
    EXPECT_EQ(a.value(D::RowNames).toStringList(), QStringList({"Event2", "Event3", "Event4", "Event5"}));
    EXPECT_EQ(a.value(D::RowLabel).toString(), "Trials");
    EXPECT_EQ(a.value(D::ColumnLabel).toString(), "Time (sec)");
    EXPECT_EQ(a.value(D::ColumnRange).toList(), QVariantList({-2.0, 4.0}));
    EXPECT_EQ(a.value(FD::Unit).toString(), "z-score");
    EXPECT_EQ(a.value(FD::Username).toString(), "Biosensor Stimulus");
    EXPECT_EQ(a.value(FD::Operations).toString(), "Perievents");
    EXPECT_EQ(a.value(FD::SourceDatapath).toString(), truth.biosensorPath);
    EXPECT_EQ(a.value(D::PerieventTimeFrame).toList(), QVariantList({-2.0, 4.0}));

    const test::RawDataset time = test::readRaw(file, resultGroup + "/Biosensor/Time");
    EXPECT_EQ(time.attributes.value(FD::Unit).toString(), "s");
    EXPECT_DOUBLE_EQ(time.values[0], -2.0);
    EXPECT_NEAR(time.values[1] - time.values[0], 299.999 / 300000.0, 1e-12);

    // One [events, frames] matrix per statistic; the z-scored baseline has mean 0.
    const test::RawDataset mean = test::readRaw(file, resultGroup + "/Biosensor/Mean");
    ASSERT_EQ(mean.dimensions, (std::vector<hsize_t>{4, 2}));
    EXPECT_EQ(mean.attributes.value(D::ColumnNames).toStringList(), QStringList({"Baseline", "Response"}));
    EXPECT_EQ(mean.attributes.value(D::RowNames).toStringList(), a.value(D::RowNames).toStringList());
    EXPECT_EQ(mean.attributes.value(FD::Username).toString(), "Biosensor Stimulus Mean");
    const test::RawDataset maximum = test::readRaw(file, resultGroup + "/Biosensor/Maximum");
    for (std::size_t row = 0; row < 4; ++row) {
        EXPECT_GT(maximum.values[row * 2 + 1], mean.values[row * 2 + 1]);
        EXPECT_GT(mean.values[row * 2 + 1], 3.0); // the transient, in baseline deviations
    }
    const test::RawDataset group = test::readRaw(file, resultGroup + "/Isosbestic/Perievents");
    EXPECT_EQ(group.attributes.value(FD::Username).toString(), "Isosbestic Stimulus");
    HDF5Reader_V6 reader;
    ASSERT_GE(reader.open(file), 0);
    const hid_t run = reader.openGroup(reader.fileId(), resultGroup);
    EXPECT_EQ(reader.readAttribute(run, FD::SourceDatapaths).toStringList(),
              QStringList({truth.isosbesticPath, truth.biosensorPath}));
    reader.closeGroup(run);
}

TEST_F(PerieventOperationTest, BothSidesGoToTheirOwnGroups)
{
    QVariantMap parameters = test::demoParameters(truth);
    parameters.insert(D::Onset, 1);
    parameters.insert(D::Offset, 1);
    parameters.insert(D::OffsetPerieventTimeFrame, QVariantList{-1.0, 1.0});
    parameters.insert(D::OffsetStatisticTimeFrames, QVariantList{0.0, 1.0});
    parameters.insert(D::OffsetTimeFramesNames, QStringList{QStringLiteral("After")});
    const RunResult result = run(parameters, {truth.biosensorPath});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    EXPECT_EQ(result.datapaths, QStringList({resultGroup + "/Biosensor/Onset/Perievents",
                                             resultGroup + "/Biosensor/Offset/Perievents"}));
    const test::RawDataset offset = test::readRaw(file, result.datapaths[1]);
    EXPECT_EQ(offset.dimensions[1], 2001u); // round(-fs) = -1000 .. round(fs) + 1 = 1001
    EXPECT_EQ(offset.attributes.value(FD::Username).toString(), "Biosensor Stimulus (Offset)");
    EXPECT_EQ(offset.attributes.value(FD::Unit).toString(), "V");
    const test::RawDataset statistic = test::readRaw(file, resultGroup + "/Biosensor/Offset/Maximum");
    EXPECT_EQ(statistic.attributes.value(D::ColumnNames).toStringList(), QStringList({"After"}));
    EXPECT_EQ(statistic.attributes.value(FD::Username).toString(), "Biosensor Stimulus Maximum (Offset)");

    // "Only Offsets": the offsets as plain events, named without a side.
    parameters = test::demoParameters(truth);
    parameters.insert(D::Onset, 0);
    parameters.insert(D::Offset, 1);
    parameters.insert(D::PlainEvents, 1);
    const RunResult plain = run(parameters, {truth.biosensorPath});
    ASSERT_TRUE(plain.succeeded()) << plain.errors.join(' ').toStdString();
    const test::RawDataset offsets = test::readRaw(file, plain.datapaths[0]);
    EXPECT_EQ(offsets.attributes.value(FD::Username).toString(), "Biosensor Stimulus");
    // The offsets come 2 s (2000 samples) after the onsets: offset column j is onset
    // column j + 2000 of the same event.
    parameters.remove(D::PlainEvents);
    parameters.insert(D::Onset, 1);
    parameters.insert(D::Offset, 0);
    const RunResult onset = run(parameters, {truth.biosensorPath});
    const test::RawDataset onsets = test::readRaw(file, onset.datapaths[0]);
    ASSERT_EQ(offsets.dimensions, onsets.dimensions);
    const std::size_t columns = onsets.dimensions[1];
    for (std::size_t r = 0; r < onsets.dimensions[0]; ++r)
        for (std::size_t j = 0; j + 2000 < columns; j += 250)
            ASSERT_EQ(offsets.values[r * columns + j], onsets.values[r * columns + j + 2000])
                << r << ", " << j;
}

TEST_F(PerieventOperationTest, RowsSpanningSeveralBandsHoldTheirChunksInOrder)
{
    // 2000 s at 100 Hz whose sample i has the value i, and 1000 events at 1.5 s steps:
    // the perievent rate is 200001 / 2000 s, the window [-1, 1] s spans offsets -100 to
    // 100 (201 columns), and the nearest sample to event k is 150 + 150 k. Row k, column
    // j is then 50 + 150 k + j; at 201 columns a band of 1 MiB holds 652 rows, so the
    // rows come in two bands.
    Signal ramp;
    for (std::size_t i = 0; i <= 200000; ++i) {
        ramp.time.push_back(static_cast<double>(i) / 100.0);
        ramp.values.push_back(static_cast<double>(i));
    }
    const QString signalGroup = QStringLiteral("DataAcquisition/Rig/Signals/Series1/Ramp");
    {
        HDF5Writer_V6 writer;
        ASSERT_GE(writer.open(file), 0);
        QString error;
        ASSERT_TRUE(SignalDataset::write(writer, signalGroup, ramp, {}, error)) << error.toStdString();
    }
    std::vector<double> events;
    for (int k = 0; k < 1000; ++k)
        events.push_back(1.5 + 1.5 * k);
    const QString eventGroup = QStringLiteral("DataAcquisition/Rig/Events/Series1");
    test::writeEventArray(file, eventGroup, QStringLiteral("Ticks"), events, 1);

    const QVariantMap parameters{{FD::Operations, D::Perievents},
                                 {D::EventPath, eventGroup},
                                 {D::Event, QStringLiteral("Ticks")},
                                 {D::PerieventTimeFrame, QVariantList{-1.0, 1.0}},
                                 {D::StatisticTimeFrames, QVariantList{0.0, 0.5}},
                                 {D::TimeFramesNames, QStringList{QStringLiteral("Early")}},
                                 {D::Statistics, QStringList{D::Mean}}};
    const RunResult result = run(parameters, {SignalDataset::valuesPath(signalGroup)});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    const test::RawDataset matrix = test::readRaw(file, result.datapaths[0]);
    ASSERT_EQ(matrix.dimensions, (std::vector<hsize_t>{1000, 201}));
    EXPECT_EQ(matrix.chunk, (std::vector<hsize_t>{652, 201}));
    for (std::size_t k = 0; k < 1000; ++k)
        for (std::size_t j = 0; j < 201; ++j)
            ASSERT_EQ(matrix.values[k * 201 + j], static_cast<double>(50 + 150 * k + j)) << k << ", " << j;

    // "Early" [0, 0.5] s covers columns 100 to 149: the mean of 150 + 150 k + 0 .. 49.
    const QString group = result.datapaths[0].left(result.datapaths[0].lastIndexOf(QLatin1Char('/')));
    const test::RawDataset mean = test::readRaw(file, group + QStringLiteral("/Mean"));
    ASSERT_EQ(mean.dimensions, (std::vector<hsize_t>{1000, 1}));
    for (std::size_t k = 0; k < 1000; ++k)
        ASSERT_EQ(mean.values[k], 150.0 + 150.0 * static_cast<double>(k) + 24.5) << k;
}

TEST_F(PerieventOperationTest, SelectsTheEventsOfANamedTimePeriod)
{
    // Periods "Light" over the first and third minute, "Dark" over the second.
    const QString periods = QStringLiteral("DataBehavior/Box/TimePeriods/Series1");
    test::writeEventArray(file, periods, QStringLiteral("Phases"), {0.0, 60.0, 60.0, 120.0, 120.0, 180.0}, 2);
    {
        HDF5Writer_V6 writer;
        ASSERT_GE(writer.open(file), 0);
        const hid_t dataset = writer.openDataset(writer.fileId(), periods + QStringLiteral("/Phases"));
        ASSERT_TRUE(writer.writeAttribute(dataset, FD::PeriodNames, QStringList({"Light", "Dark", "Light"})));
        writer.closeDataset(dataset);
    }
    QVariantMap parameters = test::demoParameters(truth);
    parameters.insert(D::SelectEvents, 1);
    parameters.insert(D::TimePeriodPath, periods);
    parameters.insert(D::TimePeriod, QStringLiteral("Phases"));
    parameters.insert(D::TimePeriodName, QStringLiteral("Dark"));
    const RunResult result = run(parameters, {truth.biosensorPath});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    QStringList expected;
    for (std::size_t k = 0; k < truth.eventOnsets.size(); ++k)
        if (truth.eventOnsets[k] >= 60.0 && truth.eventOnsets[k] <= 120.0)
            expected << QStringLiteral("Event%1").arg(k + 1);
    ASSERT_FALSE(expected.isEmpty());
    EXPECT_EQ(test::readRaw(file, result.datapaths[0]).attributes.value(D::RowNames).toStringList(),
              expected);

    parameters.insert(D::TimePeriodName, QStringLiteral("Dusk"));
    EXPECT_EQ(run(parameters, {truth.biosensorPath}).errors,
              QStringList({"Cannot pick selected events Dusk."}));
}

TEST_F(PerieventOperationTest, FailuresWriteNothing)
{
    QVariantMap parameters = test::demoParameters(truth);
    parameters.insert(D::Event, QStringLiteral("Missing"));
    RunResult result = run(parameters, {truth.biosensorPath});
    EXPECT_EQ(result.errors,
              QStringList({"Cannot find/load event <b>" + truth.eventPath + "/Missing</b> from the file."}));
    EXPECT_TRUE(result.datapaths.isEmpty());

    // A baseline array of another length.
    test::writeEventArray(file, truth.eventPath, QStringLiteral("Tone"), {10.0, 50.0, 90.0}, 1);
    parameters = test::demoParameters(truth);
    parameters.insert(D::NormalizeWindow, QVariantList{-1.0, 0.0});
    parameters.insert(D::NormalizeEvent, QStringLiteral("Tone"));
    parameters.insert(D::NormalizeEventPath, truth.eventPath);
    result = run(parameters, {truth.biosensorPath});
    EXPECT_EQ(result.errors,
              QStringList({"Events <b>Tone</b> used for normalization and events <b>Stimulus</b> do "
                           "not have the same number of events."}));

    // The first signal succeeds, the second is missing: the first one's output goes too.
    result = run(test::demoParameters(truth),
                 {truth.biosensorPath, QStringLiteral("DataAcquisition/None/Signal")});
    EXPECT_FALSE(result.succeeded());
    EXPECT_FALSE(test::pathExists(file, resultGroup));
    EXPECT_FALSE(test::pathExists(file, FD::DataAnalyzed + "/FiberPhotometry/Signals/Series1/Perievents2"));

    // Parameters the operation cannot use.
    parameters = test::demoParameters(truth);
    parameters.remove(D::PerieventTimeFrame);
    parameters.insert(D::Statistics, QStringList{QStringLiteral("Mode")});
    result = run(parameters, {truth.biosensorPath});
    EXPECT_EQ(result.errors,
              QStringList({"Parameter <b>Statistics</b> must be one of AUC, Mean, Median, Maximum, Minimum; "
                           "<b>Mode</b> is not allowed.",
                           "Parameter <b>PerieventTimeFrame</b> is missing."}));
    EXPECT_FALSE(test::pathExists(file, resultGroup));
}

TEST_F(PerieventOperationTest, CsvExportReadsBackAsTheMatrix)
{
    const RunResult result = run(test::demoParameters(truth), {truth.biosensorPath});
    ASSERT_TRUE(result.succeeded());
    const QString csv = dir.file(QStringLiteral("trials.csv"));
    QStringList written;
    ASSERT_EQ(PerieventExport::exportFromFile(file, resultGroup + "/Biosensor", csv, written), QString());
    EXPECT_EQ(written, QStringList({csv, dir.file("trials_MeanSEM.csv"), dir.file("trials_Mean.csv"),
                                    dir.file("trials_Maximum.csv")}));

    // The first column holds the event names; the rest is numbers the reader parses.
    QFile text(csv);
    ASSERT_TRUE(text.open(QIODevice::ReadOnly | QIODevice::Text));
    QStringList names;
    QString numbers;
    QTextStream in(&text);
    for (QString line = in.readLine(); !line.isNull(); line = in.readLine()) {
        const qsizetype comma = line.indexOf(QLatin1Char(','));
        names << line.left(comma);
        numbers += line.mid(comma + 1) + QLatin1Char('\n');
    }
    const QString stripped = dir.file(QStringLiteral("numbers.csv"));
    QFile out(stripped);
    ASSERT_TRUE(out.open(QIODevice::WriteOnly));
    out.write(numbers.toUtf8());
    out.close();
    CsvTableReaderConfig config;
    config.path = stripped;
    config.timeColumn = -1;
    const CsvTable table = CsvTableReader::read(config);
    ASSERT_TRUE(table.ok()) << table.error.toStdString();

    const test::RawDataset matrix = test::readRaw(file, result.datapaths[0]);
    const test::RawDataset time = test::readRaw(file, resultGroup + "/Biosensor/Time");
    const std::size_t rows = matrix.dimensions[0], columns = matrix.dimensions[1];
    EXPECT_EQ(names.first(), "Event");
    EXPECT_EQ(names.mid(1), matrix.attributes.value(D::RowNames).toStringList());
    ASSERT_EQ(table.columns.size(), columns);
    EXPECT_EQ(table.columnNames[0], QString::number(time.values[0]));
    EXPECT_EQ(table.columns[0].unit, QStringLiteral("s"));
    for (std::size_t c = 0; c < columns; ++c) {
        ASSERT_EQ(table.columns[c].values.size(), rows);
        for (std::size_t r = 0; r < rows; ++r)
            ASSERT_EQ(table.columns[c].values[r], matrix.values[r * columns + c]) << r << ", " << c;
    }

    // The mean ± SEM trace, by hand from the matrix at the first time point.
    CsvTableReaderConfig averageConfig;
    averageConfig.path = dir.file("trials_MeanSEM.csv");
    const CsvTable average = CsvTableReader::read(averageConfig);
    ASSERT_TRUE(average.ok()) << average.error.toStdString();
    EXPECT_EQ(average.columnNames, (QStringList{"Time", "Mean", "SEM"}));
    EXPECT_EQ(average.columns[0].unit, matrix.attributes.value(QStringLiteral("Unit")).toString());
    EXPECT_EQ(average.time, time.values);
    double sum = 0.0, squares = 0.0;
    for (std::size_t r = 0; r < rows; ++r)
        sum += matrix.values[r * columns];
    const double mean = sum / static_cast<double>(rows);
    for (std::size_t r = 0; r < rows; ++r)
        squares += (matrix.values[r * columns] - mean) * (matrix.values[r * columns] - mean);
    EXPECT_NEAR(average.columns[0].values[0], mean, 1e-12);
    EXPECT_NEAR(average.columns[1].values[0],
                std::sqrt(squares / static_cast<double>(rows - 1)) / std::sqrt(static_cast<double>(rows)),
                1e-12);

    QFile statistic(dir.file("trials_Mean.csv"));
    ASSERT_TRUE(statistic.open(QIODevice::ReadOnly | QIODevice::Text));
    EXPECT_EQ(QString::fromUtf8(statistic.readLine()).trimmed(), "Event,Baseline (V),Response (V)");

    // A name typed without the extension gets it, like the files beside it.
    written.clear();
    ASSERT_EQ(PerieventExport::exportFromFile(file, resultGroup + "/Biosensor", dir.file("plain"), written),
              QString());
    EXPECT_EQ(written.first(), dir.file("plain.csv"));
    EXPECT_TRUE(QFileInfo::exists(dir.file("plain.csv")));
}

TEST(PerieventOperation, TooManyEventsOrACancelWriteNothing)
{
    test::TempDir dir;
    const QString file = dir.file(QStringLiteral("many.orvel"));
    const QString group = QStringLiteral("DataAcquisition/Rig/Signals/Series1/Green");
    {
        HDF5Writer_V6 writer;
        ASSERT_GE(writer.create(file), 0);
        Signal signal;
        for (int i = 0; i < 100000; ++i) {
            signal.time.push_back(i * 0.01);
            signal.values.push_back(i);
        }
        QString error;
        ASSERT_TRUE(SignalDataset::write(writer, group, signal, {}, error));
    }
    std::vector<double> onsets;
    for (int k = 0; k < 4001; ++k)
        onsets.push_back(10.0 + 0.2 * k);
    test::writeEventArray(file, QStringLiteral("DataAcquisition/Rig/Events/Series1"), QStringLiteral("Lick"),
                          onsets, 1);
    const QVariantMap parameters{{FD::Operations, D::Perievents},
                                 {D::EventPath, QStringLiteral("DataAcquisition/Rig/Events/Series1")},
                                 {D::Event, QStringLiteral("Lick")},
                                 {D::PerieventTimeFrame, QVariantList{-0.05, 0.05}}};
    OperationRunner runner;
    RunResult result = runner.run(parameters, file, {SignalDataset::valuesPath(group)});
    EXPECT_EQ(result.errors,
              QStringList({"The perievent result holds <b>4001</b> events, more than the <b>4000</b> "
                           "a result can name. Select fewer events."}));
    EXPECT_FALSE(test::pathExists(file, QStringLiteral("DataAnalyzed/Rig/Signals/Series1/Perievents1")));

    // Cancelled while computing: nothing stays in the file.
    QVariantMap wide = parameters;
    wide.insert(D::PerieventTimeFrame, QVariantList{-20.0, 20.0}); // 3901 x 4001 values
    wide.insert(D::SelectEvents, 1);
    wide.insert(D::EventRange, QVariantList{100, 4000});
    OperationRunner canceling;
    canceling.onLabel = [&](const QString&) { canceling.requestCancel(); };
    result = canceling.run(wide, file, {SignalDataset::valuesPath(group)});
    EXPECT_TRUE(result.canceled);
    EXPECT_FALSE(result.succeeded());
    EXPECT_FALSE(test::pathExists(file, QStringLiteral("DataAnalyzed/Rig/Signals/Series1/Perievents1")));

    QVariantMap fewer = parameters;
    fewer.insert(D::SelectEvents, 1);
    fewer.insert(D::EventRange, QVariantList{2, 4001});
    result = runner.run(fewer, file, {SignalDataset::valuesPath(group)});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    EXPECT_EQ(test::readRaw(file, result.datapaths[0]).attributes.value(D::RowNames).toStringList().last(),
              "Event4001");
}

} // namespace
