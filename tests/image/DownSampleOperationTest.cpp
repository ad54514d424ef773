#include "ImageStackTestSupport.h"

#include "common/TempDir.h"

namespace zarvi {
namespace {

const QString downsampledStack =
    QStringLiteral("DataProcessed/Scope/Images/Series1/DownSampledImages1/Cells/ImageStack");

QVariantMap downsample(int factor, const QString& method)
{
    return test::operationParameters(
        QStringLiteral("Temporal Downsample"),
        {{QStringLiteral("Factor"), factor}, {QStringLiteral("Method"), method}});
}

/// Frames of 1 x n pixels, pixel j of frame k being values[k][j].
std::vector<cv::Mat> framesOf(const std::vector<std::vector<double>>& values)
{
    std::vector<cv::Mat> frames;
    for (const std::vector<double>& row : values)
        frames.push_back(cv::Mat(row, true).reshape(1, 1));
    return frames;
}

std::vector<double> pixels(const cv::Mat& frame)
{
    cv::Mat values;
    frame.convertTo(values, CV_64F);
    return {values.begin<double>(), values.end<double>()};
}

class DownSampleOperationTest : public ::testing::Test
{
protected:
    test::TempDir dir;
    QString file = dir.file(QStringLiteral("stack.orvel"));
    OperationRunner runner;
};

TEST_F(DownSampleOperationTest, SkipByThreeKeepsFramesZeroThreeSixNineWithTheirTimes)
{
    std::vector<std::vector<double>> values;
    std::vector<double> times;
    for (int k = 0; k < 10; ++k) {
        values.push_back({100.0 + k, 200.0 + k});
        times.push_back(1.0 + 0.5 * k);
    }
    const QString input = test::writeStack(file, framesOf(values), times);

    const RunResult result = runner.run(downsample(3, QStringLiteral("Skip")), file, {input});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    EXPECT_EQ(result.datapaths, QStringList{downsampledStack});
    std::vector<double> outTimes;
    const std::vector<cv::Mat> out = test::readStack(file, downsampledStack, &outTimes);
    ASSERT_EQ(out.size(), 4u);
    EXPECT_EQ(pixels(out[0]), (std::vector<double>{100, 200}));
    EXPECT_EQ(pixels(out[1]), (std::vector<double>{103, 203}));
    EXPECT_EQ(pixels(out[2]), (std::vector<double>{106, 206}));
    EXPECT_EQ(pixels(out[3]), (std::vector<double>{109, 209}));
    EXPECT_EQ(outTimes, (std::vector<double>{1.0, 2.5, 4.0, 5.5}));
}

TEST_F(DownSampleOperationTest, MeanRoundsTiesToEvenAndKeepsTheTrailingGroup)
{
    // Factor 2 on five frames: groups {0, 1}, {2, 3} and the trailing {4}. Pixel 0:
    // means 2.5 and 4.5 round to 2 and 4; pixel 1: 3.5 and 5.5 round to 4 and 6; the
    // trailing frame stays as it is. Times are those of frames 0, 2 and 4.
    const QString input =
        test::writeStack(file, framesOf({{2, 3}, {3, 4}, {4, 5}, {5, 6}, {7, 8}}), {0.0, 0.1, 0.2, 0.3, 0.4});
    const RunResult result = runner.run(downsample(2, QStringLiteral("Mean")), file, {input});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    std::vector<double> outTimes;
    const std::vector<cv::Mat> out = test::readStack(file, downsampledStack, &outTimes);
    ASSERT_EQ(out.size(), 3u);
    EXPECT_EQ(pixels(out[0]), (std::vector<double>{2, 4}));
    EXPECT_EQ(pixels(out[1]), (std::vector<double>{4, 6}));
    EXPECT_EQ(pixels(out[2]), (std::vector<double>{7, 8}));
    EXPECT_EQ(outTimes, (std::vector<double>{0.0, 0.2, 0.4}));
}

TEST_F(DownSampleOperationTest, SumSaturatesAt65535)
{
    // 3 x 30000 = 90000 is written as 65535; 100 + 200 + 300 = 600 as it is.
    const QString input = test::writeStack(file, framesOf({{30000, 100}, {30000, 200}, {30000, 300}}));
    const RunResult result = runner.run(downsample(3, QStringLiteral("Sum")), file, {input});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    const std::vector<cv::Mat> out = test::readStack(file, downsampledStack);
    ASSERT_EQ(out.size(), 1u);
    EXPECT_EQ(pixels(out[0]), (std::vector<double>{65535, 600}));
}

TEST_F(DownSampleOperationTest, AFactorAboveTheFrameCountIsRefusedAndNothingIsWritten)
{
    const QString input = test::writeStack(file, framesOf({{1}, {2}, {3}}));
    const RunResult result = runner.run(downsample(4, QStringLiteral("Mean")), file, {input});
    ASSERT_EQ(result.errors.size(), 1);
    EXPECT_EQ(
        result.errors.first(),
        QStringLiteral("The factor <b>4</b> is larger than the number of images of <b>%1</b> (<b>3</b>).")
            .arg(input));
    EXPECT_FALSE(test::hasProcessedData(file));
}

} // namespace
} // namespace zarvi
