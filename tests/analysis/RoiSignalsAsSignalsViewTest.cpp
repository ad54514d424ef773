// ROI signals taken from an image stack are signals like any other: the dataset selector
// offers them as signals, and a signal operation and the perievent analysis run on them.
#include "PerieventTestFile.h"

#include "datafile/SignalDataset.h"
#include "framework/DatasetSelector.h"
#include "framework/OperationRunner.h"
#include "image/ImageStackTestSupport.h"
#include "roi/RoiStore.h"

#include <gtest/gtest.h>

using namespace zarvi;

namespace {

using D = AnalysisOperationDefinitions;
using FD = FileDefinitions;

TEST(RoiSignalsAsSignals, TheSignalPipelineAndThePerieventAnalysisTakeThem)
{
    // 100 frames, 0.1 s apart; the cell over (1, 1)-(4, 4) holds 100, and 150 for the
    // half second after each event at 3 s and 6 s.
    test::TempDir dir;
    const QString file = dir.file(QStringLiteral("cells.orvel"));
    std::vector<cv::Mat> frames;
    for (int k = 0; k < 100; ++k) {
        const bool response = (k >= 30 && k < 35) || (k >= 60 && k < 65);
        cv::Mat frame(8, 8, CV_16U, cv::Scalar(3));
        frame(cv::Rect(1, 1, 4, 4)).setTo(response ? 150 : 100);
        frames.push_back(frame);
    }
    const QString stack = test::writeStack(file, frames);
    {
        HDF5Writer_V6 writer;
        ASSERT_GE(writer.open(file), 0);
        QStringList names;
        QString error;
        ASSERT_TRUE(
            RoiStore::add(writer, stack, {{RoiKind::Rectangle, {{1, 1}, {4, 4}}, 0, {}}}, 8, 8, names, error))
            << error.toStdString();
    }
    OperationRunner runner;
    const RunResult extracted = runner.run({{FD::Operations, QStringLiteral("ROI Signals")}}, file, {stack});
    ASSERT_TRUE(extracted.succeeded()) << extracted.errors.join(' ').toStdString();
    const QString signal = QStringLiteral("DataProcessed/Scope/ROISignals/Series1/ROISignals1/ROI1/Signal");
    ASSERT_EQ(extracted.datapaths, QStringList{signal});

    DatasetSelector selector;
    ASSERT_TRUE(selector.reload(file));
    selector.select({signal});
    EXPECT_EQ(selector.selectedPaths(), QStringList{signal});
    EXPECT_EQ(selector.selectionKind(), SelectionKind::Signals);

    const RunResult decimated =
        runner.run({{FD::Operations, QStringLiteral("Decimation")}, {QStringLiteral("DecimationFactor"), 2}},
                   file, {signal});
    ASSERT_TRUE(decimated.succeeded()) << decimated.errors.join(' ').toStdString();
    ASSERT_EQ(decimated.datapaths, QStringList{QStringLiteral(
                                       "DataProcessed/Scope/Signals/Series1/DecimatedSignals1/ROI1/Signal")});
    EXPECT_EQ(test::readRaw(file, decimated.datapaths.first()).values.size(), 50u);

    test::writeEventArray(file, QStringLiteral("DataProcessed/Scope/Events/Series1"), QStringLiteral("Stim"),
                          {3.0, 6.0}, 1);
    const RunResult perievents =
        runner.run({{FD::Operations, D::Perievents},
                    {D::EventPath, QStringLiteral("DataProcessed/Scope/Events/Series1")},
                    {D::Event, QStringLiteral("Stim")},
                    {D::PerieventTimeFrame, QVariantList{-1.0, 2.0}},
                    {D::StatisticTimeFrames, QVariantList{-1.0, 0.0, 0.0, 0.4}},
                    {D::TimeFramesNames, QStringList{QStringLiteral("Baseline"), QStringLiteral("Response")}},
                    {D::Statistics, QStringList{D::Mean}}},
                   file, {signal});
    ASSERT_TRUE(perievents.succeeded()) << perievents.errors.join(' ').toStdString();
    const QString matrixPath =
        QStringLiteral("DataAnalyzed/Scope/Signals/Series1/Perievents1/ROI1/Perievents");
    ASSERT_TRUE(perievents.datapaths.contains(matrixPath)) << perievents.datapaths.join(' ').toStdString();
    // One row per event, each showing the cell's response above its level.
    const test::RawDataset matrix = test::readRaw(file, matrixPath);
    ASSERT_EQ(matrix.dimensions.size(), 2u);
    EXPECT_EQ(matrix.dimensions[0], 2u);
    EXPECT_EQ(*std::max_element(matrix.values.begin(), matrix.values.end()), 150.0);
    EXPECT_EQ(*std::min_element(matrix.values.begin(), matrix.values.end()), 100.0);
}

} // namespace
