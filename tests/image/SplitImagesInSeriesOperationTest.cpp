#include "ImageStackTestSupport.h"

#include "common/TempDir.h"

namespace zarvi {
namespace {

const QString splitGroup = QStringLiteral("DataProcessed/Scope/Images/Series1/SplitedImages1/");

QVariantMap split(const QString& method, const QString& duration)
{
    return test::operationParameters(
        QStringLiteral("Split Images in Series"),
        {{QStringLiteral("Method"), method}, {QStringLiteral("Duration"), duration}});
}

class SplitImagesInSeriesOperationTest : public ::testing::Test
{
protected:
    /// One constant 2 x 3 frame per time, frame k holding 10 k.
    QString writeStack(const std::vector<double>& times)
    {
        std::vector<cv::Mat> frames;
        for (std::size_t k = 0; k < times.size(); ++k)
            frames.push_back(cv::Mat(2, 3, CV_16U, cv::Scalar(10.0 * k)));
        return test::writeStack(file, frames, times);
    }

    /// The frame numbers (value / 10) of the output stack of series `n`, and its times.
    std::vector<int> seriesFrames(int n, std::vector<double>& times)
    {
        std::vector<int> numbers;
        for (const cv::Mat& frame : test::readStack(file, stackOf(n), &times))
            numbers.push_back(frame.at<std::uint16_t>(1, 2) / 10);
        return numbers;
    }

    static QString stackOf(int n) { return splitGroup + QStringLiteral("Cells_%1/ImageStack").arg(n); }

    test::TempDir dir;
    QString file = dir.file(QStringLiteral("stack.orvel"));
    OperationRunner runner;
};

TEST_F(SplitImagesInSeriesOperationTest, TimeGapsSplitTheStackIntoSeriesWithTheirOwnTimes)
{
    const QString input = writeStack({0.0, 0.1, 0.2, 5.0, 5.1});
    QStringList labels;
    runner.onLabel = [&labels](const QString& label) { labels << label; };
    const RunResult result =
        runner.run(split(QStringLiteral("Detect Time Gaps"), QStringLiteral("00:00:01:000")), file, {input});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    EXPECT_EQ(result.datapaths, (QStringList{stackOf(1), stackOf(2)}));

    std::vector<double> times;
    EXPECT_EQ(seriesFrames(1, times), (std::vector<int>{0, 1, 2}));
    EXPECT_EQ(times, (std::vector<double>{0.0, 0.1, 0.2}));
    EXPECT_EQ(seriesFrames(2, times), (std::vector<int>{3, 4}));
    EXPECT_EQ(times, (std::vector<double>{5.0, 5.1}));
    EXPECT_EQ(
        labels,
        (QStringList{QStringLiteral("Analyzing the image stack to determine the split location..."),
                     QStringLiteral("Saving time series 1..."), QStringLiteral("Saving time series 2...")}));

    HDF5Reader_V6 reader;
    ASSERT_GE(reader.open(file), 0);
    const hid_t stack = reader.openDataset(reader.fileId(), stackOf(2));
    const QVariantMap attributes = reader.readAllAttributes(stack);
    reader.closeDataset(stack);
    EXPECT_EQ(attributes.value("Username").toString(), QStringLiteral("Cells_2"));
    EXPECT_EQ(attributes.value("Duration").toString(), QStringLiteral("00:00:01:000"));
    EXPECT_EQ(attributes.value("SourceDatapath").toString(), input);
}

TEST_F(SplitImagesInSeriesOperationTest, SplitByDurationCutsConsecutiveSeries)
{
    // Frames every 0.25 s from 0 to 2.25 s, series of at most 1.5 s from their first
    // frame: [0, 1.25], [1.5, 2.25]; the frame at exactly 1.5 s opens the second.
    std::vector<double> inputTimes;
    for (int k = 0; k < 10; ++k)
        inputTimes.push_back(0.25 * k);
    const QString input = writeStack(inputTimes);
    const RunResult result =
        runner.run(split(QStringLiteral("Split by Duration"), QStringLiteral("00:00:01:500")), file, {input});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    EXPECT_EQ(result.datapaths, (QStringList{stackOf(1), stackOf(2)}));
    std::vector<double> times;
    EXPECT_EQ(seriesFrames(1, times), (std::vector<int>{0, 1, 2, 3, 4, 5}));
    EXPECT_EQ(times, (std::vector<double>{0.0, 0.25, 0.5, 0.75, 1.0, 1.25}));
    EXPECT_EQ(seriesFrames(2, times), (std::vector<int>{6, 7, 8, 9}));
    EXPECT_EQ(times, (std::vector<double>{1.5, 1.75, 2.0, 2.25}));
}

TEST_F(SplitImagesInSeriesOperationTest, ADurationNotInItsFormIsRefused)
{
    const QString input = writeStack({0.0, 0.1});
    for (const QString& duration :
         {QStringLiteral("1.5"), QStringLiteral("00:00:00:000"), QStringLiteral("00:00:1:500")}) {
        const RunResult result =
            runner.run(split(QStringLiteral("Split by Duration"), duration), file, {input});
        EXPECT_EQ(
            result.errors,
            QStringList{QStringLiteral("The duration <b>%1</b> is incorrect. Write it as <b>HH:mm:ss:zzz</b> "
                                       "(hours, minutes, seconds, milliseconds), for example 00:00:01:500, "
                                       "and make it longer than zero.")
                            .arg(duration)});
        EXPECT_FALSE(test::hasProcessedData(file));
    }
}

} // namespace
} // namespace zarvi
