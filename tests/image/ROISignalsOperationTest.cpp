#include "ImageStackTestSupport.h"

#include "common/TempDir.h"
#include "datafile/SignalDataset.h"
#include "roi/RoiStore.h"

namespace zarvi {
namespace {

const QString runGroup = QStringLiteral("DataProcessed/Scope/ROISignals/Series1/ROISignals%1/%2/Signal");
constexpr int width = 40, height = 30, frameCount = 5;

/// Cell i holds a_i + b_i k in frame k on a background of 7: ROI1 the rectangle (2, 3)-(9, 8)
/// with 100 + 10 k; ROI2 the rectangle (20, 2)-(25, 10) with 300 - 20 k + (x - 20), whose
/// mean over x = 20..25 adds 2.5; ROI3 a circle of radius 4 about (30, 20) inside a disc of
/// radius 6 holding 1000 + 3 k, so its mean is that whatever pixels its rim takes.
std::vector<cv::Mat> cellFrames()
{
    std::vector<cv::Mat> frames;
    for (int k = 0; k < frameCount; ++k) {
        cv::Mat frame(height, width, CV_16U, cv::Scalar(7));
        frame(cv::Rect(cv::Point(2, 3), cv::Point(10, 9))).setTo(100 + 10 * k);
        for (int y = 2; y <= 10; ++y)
            for (int x = 20; x <= 25; ++x)
                frame.at<std::uint16_t>(y, x) = static_cast<std::uint16_t>(300 - 20 * k + (x - 20));
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                if ((x - 30) * (x - 30) + (y - 20) * (y - 20) <= 36)
                    frame.at<std::uint16_t>(y, x) = static_cast<std::uint16_t>(1000 + 3 * k);
        frames.push_back(frame);
    }
    return frames;
}

double expectedMean(int cell, int k)
{
    switch (cell) {
    case 1:
        return 100.0 + 10.0 * k;
    case 2:
        return 300.0 - 20.0 * k + 2.5;
    default:
        return 1000.0 + 3.0 * k;
    }
}

void addRois(const QString& file, const QString& stack, const std::vector<RoiShape>& rois)
{
    HDF5Writer_V6 writer;
    ASSERT_GE(writer.open(file), 0);
    QStringList names;
    QString error;
    ASSERT_TRUE(RoiStore::add(writer, stack, rois, width, height, names, error)) << error.toStdString();
}

QVariantMap roiSignals(const QStringList& names = {})
{
    QVariantMap parameters;
    if (!names.isEmpty())
        parameters.insert(QStringLiteral("ROINames"), names);
    return test::operationParameters(QStringLiteral("ROI Signals"), parameters);
}

class ROISignalsOperationTest : public ::testing::Test
{
protected:
    test::TempDir dir;
    QString file = dir.file(QStringLiteral("cells.orvel"));
    std::vector<double> times{0.0, 0.05, 0.1, 0.15, 0.25};
    QString stack = test::writeStack(file, cellFrames(), times);
    OperationRunner runner;

    void addCells()
    {
        addRois(file, stack,
                {{RoiKind::Rectangle, {{2, 3}, {9, 8}}, 0, {}},
                 {RoiKind::Rectangle, {{25, 10}, {20, 2}}, 0, {}},
                 {RoiKind::Circle, {{30, 20}, {30, 24}}, 0, {}},
                 {RoiKind::Point, {{1, 1}}, 0, QStringLiteral("Marker")}});
    }
};

TEST_F(ROISignalsOperationTest, EachCellGivesItsMeanTraceOnTheStacksTime)
{
    addCells();
    const RunResult result = runner.run(roiSignals(), file, {stack});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    // Every cell, the point left out.
    ASSERT_EQ(result.datapaths, (QStringList{runGroup.arg(1).arg(QStringLiteral("ROI1")),
                                             runGroup.arg(1).arg(QStringLiteral("ROI2")),
                                             runGroup.arg(1).arg(QStringLiteral("ROI3"))}));
    HDF5Reader_V6 reader;
    ASSERT_GE(reader.open(file), 0);
    for (int cell = 1; cell <= 3; ++cell) {
        Signal signal;
        QString error;
        ASSERT_TRUE(SignalDataset::read(reader, result.datapaths[cell - 1], signal, error))
            << error.toStdString();
        EXPECT_EQ(signal.time, times);
        EXPECT_EQ(signal.unit, QStringLiteral("a.u."));
        ASSERT_EQ(signal.values.size(), static_cast<std::size_t>(frameCount));
        for (int k = 0; k < frameCount; ++k)
            EXPECT_NEAR(signal.values[k], expectedMean(cell, k), 1e-6) << "cell " << cell << ", frame " << k;
    }

    // The ROI is recorded on its signal with the run's parameters.
    const hid_t dataset = reader.openDataset(reader.fileId(), result.datapaths[1]);
    EXPECT_EQ(reader.readAttribute(dataset, QStringLiteral("Username")).toString(), QStringLiteral("ROI2"));
    EXPECT_EQ(reader.attributeDimensions(dataset, QStringLiteral("Coordinates")),
              (std::vector<hsize_t>{2, 2}));
    EXPECT_EQ(reader.readAttribute(dataset, QStringLiteral("Coordinates")).toList(),
              (QVariantList{25, 10, 20, 2}));
    EXPECT_EQ(reader.readAttribute(dataset, QStringLiteral("Shape")).toInt(), 1);
    EXPECT_EQ(reader.readAttribute(dataset, QStringLiteral("Operations")).toString(),
              QStringLiteral("ROI Signals"));
    EXPECT_EQ(reader.readAttribute(dataset, QStringLiteral("SourceDatapath")).toString(), stack);
    reader.closeDataset(dataset);
}

TEST_F(ROISignalsOperationTest, ROINamesChoosesTheCells)
{
    addCells();
    const RunResult result =
        runner.run(roiSignals({QStringLiteral("ROI3"), QStringLiteral("ROI3")}), file, {stack});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    ASSERT_EQ(result.datapaths, QStringList{runGroup.arg(1).arg(QStringLiteral("ROI3"))});
    HDF5Reader_V6 reader;
    ASSERT_GE(reader.open(file), 0);
    Signal signal;
    QString error;
    ASSERT_TRUE(SignalDataset::read(reader, result.datapaths[0], signal, error)) << error.toStdString();
    EXPECT_NEAR(signal.values.back(), expectedMean(3, frameCount - 1), 1e-6);
    const hid_t group = reader.openGroup(
        reader.fileId(), QStringLiteral("DataProcessed/Scope/ROISignals/Series1/ROISignals1"));
    EXPECT_EQ(reader.readAttribute(group, QStringLiteral("ROINames")).toStringList(),
              (QStringList{QStringLiteral("ROI3"), QStringLiteral("ROI3")}));
    reader.closeGroup(group);
}

TEST_F(ROISignalsOperationTest, MissingOrUnknownRoisAreRefusedAndWriteNothing)
{
    RunResult result = runner.run(roiSignals(), file, {stack});
    ASSERT_EQ(result.errors.size(), 1);
    EXPECT_EQ(
        result.errors.first(),
        QStringLiteral("The image stack <b>%1</b> has no cell ROIs. Draw the cells on the stack and save "
                       "them (or add them with <b>zarvi-cli rois</b>) before extracting their signals.")
            .arg(stack));
    EXPECT_FALSE(test::hasProcessedData(file));

    addCells();
    result = runner.run(roiSignals({QStringLiteral("ROI1"), QStringLiteral("ROI9")}), file, {stack});
    ASSERT_EQ(result.errors.size(), 1);
    EXPECT_EQ(result.errors.first(),
              QStringLiteral("The image stack <b>%1</b> has no ROI named <b>ROI9</b>.").arg(stack));
    EXPECT_FALSE(test::hasProcessedData(file));

    result = runner.run(roiSignals({QStringLiteral("Marker")}), file, {stack});
    ASSERT_EQ(result.errors.size(), 1);
    EXPECT_TRUE(result.errors.first().startsWith(QStringLiteral("The ROI <b>Marker</b> is a <b>Point</b>")));
    EXPECT_FALSE(test::hasProcessedData(file));
}

} // namespace
} // namespace zarvi
