#include "ImageStackTestSupport.h"

#include "common/TempDir.h"
#include "roi/RoiJson.h"

namespace zarvi {
namespace {

const QString correctedStack =
    QStringLiteral("DataProcessed/Scope/Images/Series1/BackgroundCorrectedImages1/Cells/ImageStack");
const QString backgroundMessage =
    QStringLiteral("The coordinates for removing the background are incorrect. Make sure that the ROI for "
                   "removing background is drawn correctly.");

QVariantMap removal(const QVariant& coordinates)
{
    QVariantMap parameters;
    if (coordinates.isValid())
        parameters.insert(QStringLiteral("BackgroundCoordinates"), coordinates);
    return test::operationParameters(QStringLiteral("Remove Background"), parameters);
}

/// A 6 x 4 frame whose top left 2 x 2 pixels hold `background`; the others go from
/// 100 to 2400 in steps of 100 (row by row).
cv::Mat frameOn(double background)
{
    cv::Mat frame(4, 6, CV_16U);
    for (int y = 0; y < frame.rows; ++y)
        for (int x = 0; x < frame.cols; ++x)
            frame.at<std::uint16_t>(y, x) = static_cast<std::uint16_t>(100 * (6 * y + x + 1));
    frame(cv::Rect(0, 0, 2, 2)).setTo(background);
    return frame;
}

/// The frame minus c, pixels darker than c written as 0.
cv::Mat minus(const cv::Mat& frame, int c)
{
    cv::Mat expected = frame.clone();
    for (auto it = expected.begin<std::uint16_t>(); it != expected.end<std::uint16_t>(); ++it)
        *it = static_cast<std::uint16_t>(std::max(0, *it - c));
    return expected;
}

class RemoveBackgroundOperationTest : public ::testing::Test
{
protected:
    test::TempDir dir;
    QString file = dir.file(QStringLiteral("stack.orvel"));
    OperationRunner runner;
};

TEST_F(RemoveBackgroundOperationTest, AConstantBackgroundLowersEveryPixelAndSaturatesAtZero)
{
    // The background is 0, 250 and 1000 in the three frames.
    const std::vector<cv::Mat> frames{frameOn(0), frameOn(250), frameOn(1000)};
    const QString input = test::writeStack(file, frames, {2.0, 2.5, 3.0});
    const QString region = QStringLiteral(R"({"Shape":"Rectangle","Points":[[0,0],[1,1]]})");
    const RunResult result = runner.run(removal(region), file, {input});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    EXPECT_EQ(result.datapaths, QStringList{correctedStack});
    std::vector<double> times;
    const std::vector<cv::Mat> out = test::readStack(file, correctedStack, &times);
    ASSERT_EQ(out.size(), 3u);
    EXPECT_TRUE(test::sameImage(out[0], frames[0]));
    EXPECT_TRUE(test::sameImage(out[1], minus(frames[1], 250)));
    // 100 ... 1000 become 0, the background included.
    EXPECT_TRUE(test::sameImage(out[2], minus(frames[2], 1000)));
    EXPECT_EQ(times, (std::vector<double>{2.0, 2.5, 3.0}));

    // The region as a parameter file gives it, an object, is recorded as JSON text too.
    const QVariantMap asObject{
        {QStringLiteral("Shape"), QStringLiteral("Rectangle")},
        {QStringLiteral("Points"), QVariantList{QVariantList{0.0, 0.0}, QVariantList{1.0, 1.0}}}};
    const RunResult again = runner.run(removal(asObject), file, {input});
    ASSERT_TRUE(again.succeeded()) << again.errors.join(' ').toStdString();
    HDF5Reader_V6 reader;
    ASSERT_GE(reader.open(file), 0);
    const hid_t stack = reader.openDataset(reader.fileId(), again.datapaths.first());
    std::vector<RoiShape> recorded;
    QString error;
    ASSERT_TRUE(
        roisFromJson(reader.readAttribute(stack, QStringLiteral("BackgroundCoordinates")), recorded, error))
        << error.toStdString();
    ASSERT_EQ(recorded.size(), 1u);
    EXPECT_EQ(recorded.front().kind, RoiKind::Rectangle);
    EXPECT_EQ(recorded.front().points, (std::vector<cv::Point>{{0, 0}, {1, 1}}));
    reader.closeDataset(stack);
}

TEST_F(RemoveBackgroundOperationTest, AFractionalMeanIsSubtractedBeforeTheOneRounding)
{
    // Background 10, 11, 10, 11: m = 10.5. 20 - 10.5 = 9.5 and 21 - 10.5 = 10.5 round to the
    // even neighbours 10 and 10; 30 - 10.5 = 19.5 to 20.
    cv::Mat frame(2, 4, CV_16U, cv::Scalar(30));
    frame.at<std::uint16_t>(0, 0) = frame.at<std::uint16_t>(1, 0) = 10;
    frame.at<std::uint16_t>(0, 1) = frame.at<std::uint16_t>(1, 1) = 11;
    frame.at<std::uint16_t>(0, 2) = 20;
    frame.at<std::uint16_t>(0, 3) = 21;
    const QString input = test::writeStack(file, {frame});
    const RunResult result =
        runner.run(removal(QStringLiteral(R"({"Shape":"Rectangle","Points":[[0,0],[1,1]]})")), file, {input});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    const cv::Mat expected = (cv::Mat_<std::uint16_t>(2, 4) << 0, 0, 10, 10, 0, 0, 20, 20);
    EXPECT_TRUE(test::sameImage(test::readStack(file, correctedStack).at(0), expected));
}

TEST_F(RemoveBackgroundOperationTest, BadRegionsAreRefusedWithTheMessageAndWriteNothing)
{
    const QString input = test::writeStack(file, {frameOn(100), frameOn(100)});
    const QList<QVariant> regions{QVariant(), QVariant(QString()), QVariant(QStringLiteral("garbage")),
                                  // Zero area, one pixel outside the 6 x 4 frame, not an area shape.
                                  QVariant(QStringLiteral(R"({"Shape":"Rectangle","Points":[[1,0],[1,3]]})")),
                                  QVariant(QStringLiteral(R"({"Shape":"Rectangle","Points":[[0,0],[6,3]]})")),
                                  QVariant(QStringLiteral(R"({"Shape":"Point","Points":[[1,1]]})"))};
    for (const QVariant& region : regions) {
        const RunResult result = runner.run(removal(region), file, {input});
        ASSERT_EQ(result.errors.size(), 1) << region.toString().toStdString();
        EXPECT_EQ(result.errors.first(), backgroundMessage);
        EXPECT_FALSE(test::hasProcessedData(file));
    }
}

} // namespace
} // namespace zarvi
