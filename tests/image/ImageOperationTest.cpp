#include "ImageStackTestSupport.h"

#include "common/TempDir.h"
#include "datafile/SignalDataset.h"

namespace zarvi {
namespace {

const QString binnedStack =
    QStringLiteral("DataProcessed/Scope/Images/Series1/BinnedImages1/Cells/ImageStack");

QVariantMap binning(const QString& factor)
{
    return test::operationParameters(QStringLiteral("Binning"), {{QStringLiteral("BinningFactor"), factor}});
}

class ImageOperationTest : public ::testing::Test
{
protected:
    test::TempDir dir;
    QString file = dir.file(QStringLiteral("stack.orvel"));
    OperationRunner runner;
};

TEST_F(ImageOperationTest, BinningWritesEachFrameRoundedWithTimeAndGeometry)
{
    // Frame k: 2 x 2 blocks whose values differ by one, so each block mean ends in .5
    // for odd sums and rounds; block (0, 0) of frame k is {k, k, k+1, k+1} -> k + 0.5.
    std::vector<cv::Mat> frames;
    for (int k = 0; k < 3; ++k) {
        cv::Mat frame(4, 6, CV_16U);
        for (int y = 0; y < 4; ++y)
            for (int x = 0; x < 6; ++x)
                frame.at<std::uint16_t>(y, x) = static_cast<std::uint16_t>(100 * k + 10 * (x / 2) + (y % 2));
        frames.push_back(frame);
    }
    const std::vector<double> times{0.5, 0.75, 1.25};
    const QString input = test::writeStack(file, frames, times);

    const RunResult result = runner.run(binning(QStringLiteral("2x2")), file, {input});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    EXPECT_EQ(result.datapaths, QStringList{binnedStack});

    std::vector<double> binnedTimes;
    const std::vector<cv::Mat> binned = test::readStack(file, binnedStack, &binnedTimes);
    ASSERT_EQ(binned.size(), 3u);
    EXPECT_EQ(binnedTimes, times);
    for (int k = 0; k < 3; ++k) {
        ASSERT_EQ(binned[k].size(), cv::Size(3, 2));
        for (int x = 0; x < 3; ++x) {
            // Mean 100 k + 10 x + 0.5: a tie, rounded to the even neighbour.
            const double mean = 100.0 * k + 10.0 * x + 0.5;
            EXPECT_EQ(binned[k].at<std::uint16_t>(0, x), static_cast<std::uint16_t>(std::nearbyint(mean)));
            EXPECT_EQ(binned[k].at<std::uint16_t>(1, x), binned[k].at<std::uint16_t>(0, x));
        }
    }

    HDF5Reader_V6 reader;
    ASSERT_GE(reader.open(file), 0);
    const hid_t stack = reader.openDataset(reader.fileId(), binnedStack);
    const QVariantMap attributes = reader.readAllAttributes(stack);
    reader.closeDataset(stack);
    EXPECT_EQ(attributes.value("Operations").toString(), QStringLiteral("Binning"));
    EXPECT_EQ(attributes.value("BinningFactor").toString(), QStringLiteral("2x2"));
    EXPECT_EQ(attributes.value("SourceDatapath").toString(), input);
    EXPECT_EQ(attributes.value("Height").toInt(), 2);
    EXPECT_EQ(attributes.value("Width").toInt(), 3);
    EXPECT_EQ(attributes.value("Format").toInt(), 28);
    EXPECT_EQ(attributes.value("Username").toString(), QStringLiteral("Cells"));
}

TEST_F(ImageOperationTest, BadStacksAreRefusedAndNothingIsWritten)
{
    // A 1-D signal given as a stack.
    Signal signal{{0.0, 1.0}, {1.0, 2.0}, QStringLiteral("V")};
    {
        HDF5Writer_V6 writer;
        ASSERT_GE(writer.create(file), 0);
        QString error;
        ASSERT_TRUE(SignalDataset::write(writer, QStringLiteral("DataConverted/Scope/Signals/Series1/A"),
                                         signal, {}, error));
    }
    RunResult result = runner.run(binning(QStringLiteral("2x2")), file,
                                  {QStringLiteral("DataConverted/Scope/Signals/Series1/A/Signal")});
    ASSERT_EQ(result.errors.size(), 1);
    EXPECT_TRUE(result.errors.first().contains(QStringLiteral("is not an image stack")))
        << result.errors.first().toStdString();
    EXPECT_FALSE(test::hasProcessedData(file));

    // A stack of zero frames.
    const QString empty = test::writeStack(file, {}, {}, QStringLiteral("Empty"));
    result = runner.run(binning(QStringLiteral("2x2")), file, {empty});
    ASSERT_EQ(result.errors.size(), 1);
    EXPECT_EQ(result.errors.first(), QStringLiteral("The image stack <b>%1</b> has no frames.").arg(empty));
    EXPECT_FALSE(test::hasProcessedData(file));

    // Binning that would leave no pixel.
    const QString tiny = test::writeStack(file, {cv::Mat::ones(1, 1, CV_16U)}, {}, QStringLiteral("Tiny"));
    result = runner.run(binning(QStringLiteral("4x4")), file, {tiny});
    EXPECT_FALSE(result.succeeded());
    EXPECT_FALSE(test::hasProcessedData(file));
}

TEST_F(ImageOperationTest, AFailingSecondStackTakesBackTheFirstStacksOutput)
{
    const QString good = test::writeStack(file, {cv::Mat::ones(4, 4, CV_16U)}, {}, QStringLiteral("Good"));
    const QString tiny = test::writeStack(file, {cv::Mat::ones(1, 1, CV_16U)}, {}, QStringLiteral("Tiny"));
    const RunResult result = runner.run(binning(QStringLiteral("4x4")), file, {good, tiny});
    EXPECT_FALSE(result.succeeded());
    EXPECT_FALSE(test::hasProcessedData(file));
}

} // namespace
} // namespace zarvi
