#include "ImageStackTestSupport.h"

#include "common/TempDir.h"

namespace zarvi {
namespace {

const QString croppedStack =
    QStringLiteral("DataProcessed/Scope/Images/Series1/CroppedImages1/Cells/ImageStack");

QVariantMap crop(const QVariantList& coordinates)
{
    return test::operationParameters(QStringLiteral("Crop"),
                                     {{QStringLiteral("CropCoordinates"), coordinates}});
}

class CropOperationTest : public ::testing::Test
{
protected:
    /// Three 6 x 4 frames, pixel (x, y) of frame k holding 1000 k + 10 y + x.
    QString writeNumberedStack()
    {
        std::vector<cv::Mat> frames;
        for (int k = 0; k < 3; ++k) {
            cv::Mat frame(4, 6, CV_16U);
            for (int y = 0; y < 4; ++y)
                for (int x = 0; x < 6; ++x)
                    frame.at<std::uint16_t>(y, x) = static_cast<std::uint16_t>(1000 * k + 10 * y + x);
            frames.push_back(frame);
        }
        return test::writeStack(file, frames, times);
    }

    test::TempDir dir;
    QString file = dir.file(QStringLiteral("stack.orvel"));
    const std::vector<double> times{0.5, 0.75, 1.25};
    OperationRunner runner;
};

TEST_F(CropOperationTest, CropOfTheWholeFrameGivesTheInputUnchanged)
{
    // The extremes of the 16-bit range and values no float rounding may move.
    std::vector<cv::Mat> frames;
    for (int k = 0; k < 3; ++k) {
        cv::Mat frame(5, 7, CV_16U);
        for (int y = 0; y < 5; ++y)
            for (int x = 0; x < 7; ++x)
                frame.at<std::uint16_t>(y, x) =
                    static_cast<std::uint16_t>((9973 * (k * 35 + 7 * y + x)) % 65536);
        frames.push_back(frame);
    }
    frames[1].at<std::uint16_t>(0, 0) = 65535;
    frames[2].at<std::uint16_t>(4, 6) = 0;
    const QString input = test::writeStack(file, frames, times);

    const RunResult result = runner.run(crop({0, 0, 7, 5}), file, {input});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    EXPECT_EQ(result.datapaths, QStringList{croppedStack});
    std::vector<double> croppedTimes;
    const std::vector<cv::Mat> cropped = test::readStack(file, croppedStack, &croppedTimes);
    ASSERT_EQ(cropped.size(), frames.size());
    for (std::size_t k = 0; k < frames.size(); ++k)
        EXPECT_TRUE(test::sameImage(cropped[k], frames[k])) << k;
    EXPECT_EQ(croppedTimes, times);
}

TEST_F(CropOperationTest, CropKeepsExactlyTheRectangle)
{
    const QString input = writeNumberedStack();
    const RunResult result = runner.run(crop({2, 1, 3, 2}), file, {input});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();

    std::vector<double> croppedTimes;
    const std::vector<cv::Mat> cropped = test::readStack(file, croppedStack, &croppedTimes);
    ASSERT_EQ(cropped.size(), 3u);
    EXPECT_EQ(croppedTimes, times);
    for (int k = 0; k < 3; ++k) {
        ASSERT_EQ(cropped[k].size(), cv::Size(3, 2));
        for (int y = 0; y < 2; ++y)
            for (int x = 0; x < 3; ++x)
                EXPECT_EQ(cropped[k].at<std::uint16_t>(y, x), 1000 * k + 10 * (y + 1) + (x + 2));
    }

    HDF5Reader_V6 reader;
    ASSERT_GE(reader.open(file), 0);
    const hid_t stack = reader.openDataset(reader.fileId(), croppedStack);
    const QVariantMap attributes = reader.readAllAttributes(stack);
    reader.closeDataset(stack);
    EXPECT_EQ(attributes.value("Height").toInt(), 2);
    EXPECT_EQ(attributes.value("Width").toInt(), 3);
    EXPECT_EQ(attributes.value("Operations").toString(), QStringLiteral("Crop"));
}

TEST_F(CropOperationTest, BadRectanglesAreRefusedAndNothingIsWritten)
{
    const QString input = writeNumberedStack();
    const QString incorrect =
        QStringLiteral("The crop coordinates are incorrect. Make sure to well define the crop ROI.");
    const QString outside =
        QStringLiteral("The crop area is larger than the image size or lies outside the image.");
    const std::vector<std::pair<QVariantList, QString>> cases{
        {{0, 0, 2}, incorrect},  {{0.5, 0, 2, 2}, incorrect}, {{0, 0, 0, 2}, incorrect},
        {{4, 0, 3, 2}, outside}, {{0, 0, 7, 4}, outside},     {{0, 0, 6, 5}, outside},
        {{-1, 0, 2, 2}, outside}};
    for (std::size_t c = 0; c < cases.size(); ++c) {
        const RunResult result = runner.run(crop(cases[c].first), file, {input});
        EXPECT_EQ(result.errors, QStringList{cases[c].second}) << "case " << c;
        EXPECT_FALSE(test::hasProcessedData(file));
    }
}

} // namespace
} // namespace zarvi
