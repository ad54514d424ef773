#include "ImageStackTestSupport.h"

#include "common/TempDir.h"

namespace zarvi {
namespace {

const QString projectedStack =
    QStringLiteral("DataProcessed/Scope/Images/Series1/StackProjectionImages1/Cells/ImageStack");

QVariantMap projection(const QVariant& method, int concatenate = 0)
{
    QVariantMap parameters{{QStringLiteral("ConcatenateSeries"), concatenate}};
    if (method.isValid())
        parameters.insert(QStringLiteral("ProjectionMethod"), method);
    return test::operationParameters(QStringLiteral("Stack Projection"), parameters);
}

/// Frames of 2 x 2 pixels, all of value values[k] in frame k.
std::vector<cv::Mat> uniformFrames(const std::vector<double>& values)
{
    std::vector<cv::Mat> frames;
    for (double value : values)
        frames.push_back(cv::Mat(2, 2, CV_16U, cv::Scalar(value)));
    return frames;
}

class StackProjectionOperationTest : public ::testing::Test
{
protected:
    test::TempDir dir;
    QString file = dir.file(QStringLiteral("stack.orvel"));
    OperationRunner runner;
};

TEST_F(StackProjectionOperationTest, MeanOfTenAndTwentyIsOneFrameOfFifteenAtTheFirstTime)
{
    const QString input = test::writeStack(file, uniformFrames({10, 20}), {3.5, 3.6});
    const RunResult result = runner.run(projection(QStringLiteral("Mean")), file, {input});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    EXPECT_EQ(result.datapaths, QStringList{projectedStack});
    std::vector<double> times;
    const std::vector<cv::Mat> out = test::readStack(file, projectedStack, &times);
    ASSERT_EQ(out.size(), 1u);
    EXPECT_TRUE(test::sameImage(out[0], cv::Mat(2, 2, CV_16U, cv::Scalar(15))));
    EXPECT_EQ(times, std::vector<double>{3.5});
}

TEST_F(StackProjectionOperationTest, SumOfManyBrightFramesSaturates)
{
    // 50 x 60000 = 3e6, far above what 16 bits hold.
    const QString input = test::writeStack(file, uniformFrames(std::vector<double>(50, 60000.0)));
    const RunResult result = runner.run(projection(QStringLiteral("Sum")), file, {input});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    const std::vector<cv::Mat> out = test::readStack(file, projectedStack);
    ASSERT_EQ(out.size(), 1u);
    EXPECT_TRUE(test::sameImage(out[0], cv::Mat(2, 2, CV_16U, cv::Scalar(65535))));
}

TEST_F(StackProjectionOperationTest, NoMethodIsRefusedWithItsMessageAndNothingIsWritten)
{
    const QString input = test::writeStack(file, uniformFrames({1, 2}));
    for (const QVariant& method : {QVariant(), QVariant(QString())}) {
        const RunResult result = runner.run(projection(method), file, {input});
        ASSERT_EQ(result.errors.size(), 1);
        EXPECT_EQ(result.errors.first(),
                  QStringLiteral("Unable to retrieve the projection method. Make sure one is selected."));
        EXPECT_FALSE(test::hasProcessedData(file));
    }
}

TEST_F(StackProjectionOperationTest, ConcatenatedSeriesGoIntoTheFirstStacksOutput)
{
    // Series1 projects to 15 at 0.5 s, Series2 to 60 at 7 s.
    const QString first = test::writeStack(file, uniformFrames({10, 20}), {0.5, 0.6});
    const QString second = test::writeStack(file, uniformFrames({40, 60, 80}), {7.0, 7.1, 7.2},
                                            QStringLiteral("Cells"), QStringLiteral("Series2"));
    RunResult result = runner.run(projection(QStringLiteral("Mean"), 1), file, {first, second});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    EXPECT_EQ(result.datapaths, QStringList{projectedStack});
    std::vector<double> times;
    const std::vector<cv::Mat> out = test::readStack(file, projectedStack, &times);
    ASSERT_EQ(out.size(), 2u);
    EXPECT_TRUE(test::sameImage(out[0], cv::Mat(2, 2, CV_16U, cv::Scalar(15))));
    EXPECT_TRUE(test::sameImage(out[1], cv::Mat(2, 2, CV_16U, cv::Scalar(60))));
    EXPECT_EQ(times, (std::vector<double>{0.5, 7.0}));

    // Without concatenation each series gets its own output.
    result = runner.run(projection(QStringLiteral("Mean")), file, {first, second});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    EXPECT_EQ(
        result.datapaths,
        (QStringList{
            QStringLiteral("DataProcessed/Scope/Images/Series1/StackProjectionImages2/Cells/ImageStack"),
            QStringLiteral("DataProcessed/Scope/Images/Series2/StackProjectionImages1/Cells/ImageStack")}));
}

TEST_F(StackProjectionOperationTest, ConcatenatingStacksOfDifferentSizesIsRefused)
{
    const QString first = test::writeStack(file, uniformFrames({10}));
    const QString other =
        test::writeStack(file, {cv::Mat(3, 2, CV_16U, cv::Scalar(5))}, {}, QStringLiteral("Other"));
    const RunResult result = runner.run(projection(QStringLiteral("Maximum"), 1), file, {first, other});
    ASSERT_EQ(result.errors.size(), 1);
    EXPECT_EQ(
        result.errors.first(),
        QStringLiteral("Image stacks written into one output stack must have the same image size: <b>%1</b> "
                       "is <b>2 x 3</b>, the output stack <b>2 x 2</b>.")
            .arg(other));
    EXPECT_FALSE(test::hasProcessedData(file));
}

} // namespace
} // namespace zarvi
