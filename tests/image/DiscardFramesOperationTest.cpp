#include "ImageStackTestSupport.h"

#include "common/TempDir.h"

namespace zarvi {
namespace {

const QString reducedGroup = QStringLiteral("DataProcessed/Scope/Images/Series1/ReducedStackImages1");
const QString reducedStack = reducedGroup + QStringLiteral("/Cells/ImageStack");

QVariantMap discard(QVariantMap parameters)
{
    return test::operationParameters(QStringLiteral("Discard Frames"), parameters);
}

/// A 3 x 4 frame of constant `value`.
cv::Mat constantFrame(int value)
{
    return cv::Mat(3, 4, CV_16U, cv::Scalar(value));
}

class DiscardFramesOperationTest : public ::testing::Test
{
protected:
    /// Five constant frames 100, 200, ..., 500 at 0, 0.1, 0.25, 0.5, 0.75 s.
    QString writeFiveFrames()
    {
        std::vector<cv::Mat> frames;
        for (int k = 0; k < 5; ++k)
            frames.push_back(constantFrame(100 * (k + 1)));
        return test::writeStack(file, frames, times);
    }

    /// The constant value of each frame of the output, and its times.
    std::vector<int> outputValues(std::vector<double>* outputTimes)
    {
        std::vector<int> values;
        for (const cv::Mat& frame : test::readStack(file, reducedStack, outputTimes)) {
            double low = 0.0, high = 0.0;
            cv::minMaxLoc(frame, &low, &high);
            EXPECT_EQ(low, high);
            values.push_back(static_cast<int>(low));
        }
        return values;
    }

    QVariantMap attributesOf(const QString& path)
    {
        HDF5Reader_V6 reader;
        EXPECT_GE(reader.open(file), 0);
        const bool isGroup = !path.endsWith(QStringLiteral("ImageStack"));
        const hid_t id =
            isGroup ? reader.openGroup(reader.fileId(), path) : reader.openDataset(reader.fileId(), path);
        EXPECT_GE(id, 0) << path.toStdString();
        const QVariantMap attributes = reader.readAllAttributes(id);
        isGroup ? reader.closeGroup(id) : reader.closeDataset(id);
        return attributes;
    }

    test::TempDir dir;
    QString file = dir.file(QStringLiteral("stack.orvel"));
    const std::vector<double> times{0.0, 0.1, 0.25, 0.5, 0.75};
    OperationRunner runner;
};

TEST_F(DiscardFramesOperationTest, NothingSelectedGivesTheInputUnchanged)
{
    std::vector<cv::Mat> frames;
    for (int k = 0; k < 3; ++k) {
        cv::Mat frame(3, 4, CV_16U);
        for (int i = 0; i < 12; ++i)
            frame.at<std::uint16_t>(i / 4, i % 4) = static_cast<std::uint16_t>((7919 * (12 * k + i)) % 65536);
        frames.push_back(frame);
    }
    frames[0].at<std::uint16_t>(0, 0) = 65535;
    const std::vector<double> inputTimes{0.0, 0.1, 0.25};
    const QString input = test::writeStack(file, frames, inputTimes);

    // Without the key, then with an empty list.
    for (const QVariantMap& parameters :
         {QVariantMap{}, QVariantMap{{QStringLiteral("DiscardedFrames"), QVariantList{}}}}) {
        const RunResult result = runner.run(discard(parameters), file, {input});
        ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
        ASSERT_EQ(result.datapaths.size(), 1);
        std::vector<double> outputTimes;
        const std::vector<cv::Mat> output = test::readStack(file, result.datapaths.first(), &outputTimes);
        ASSERT_EQ(output.size(), frames.size());
        for (std::size_t k = 0; k < frames.size(); ++k)
            EXPECT_TRUE(test::sameImage(output[k], frames[k])) << k;
        EXPECT_EQ(outputTimes, inputTimes);
    }
}

TEST_F(DiscardFramesOperationTest, SelectedFramesAreLeftOutAndTheOthersKeepTheirTimes)
{
    const QString input = writeFiveFrames();
    const RunResult result =
        runner.run(discard({{QStringLiteral("DiscardedFrames"), QVariantList{3, 1}}}), file, {input});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    EXPECT_EQ(result.datapaths, QStringList{reducedStack});
    std::vector<double> outputTimes;
    EXPECT_EQ(outputValues(&outputTimes), (std::vector<int>{100, 300, 500}));
    EXPECT_EQ(outputTimes, (std::vector<double>{0.0, 0.25, 0.75}));
}

TEST_F(DiscardFramesOperationTest, InterpolationReplacesDiscardedFramesLinearlyInTime)
{
    // Frame 1: 100 + 4x, frame 3: 200 + 8x (x the column), at 4 s and 8 s. Frame 2 at
    // 5 s is 3/4 of frame 1 plus 1/4 of frame 3: 75 + 3x + 50 + 2x = 125 + 5x. Frames 0
    // and 4 have a kept frame on one side only and copy it.
    std::vector<cv::Mat> frames(5, cv::Mat());
    for (int k = 0; k < 5; ++k) {
        frames[k] = cv::Mat(2, 4, CV_16U, cv::Scalar(60000));
        for (int x = 0; x < 4; ++x) {
            frames[k].at<std::uint16_t>(0, x) =
                static_cast<std::uint16_t>(k == 1 ? 100 + 4 * x : 200 + 8 * x);
            frames[k].at<std::uint16_t>(1, x) = frames[k].at<std::uint16_t>(0, x);
        }
    }
    const std::vector<double> inputTimes{0.0, 4.0, 5.0, 8.0, 9.0};
    const QString input = test::writeStack(file, frames, inputTimes);
    const RunResult result = runner.run(discard({{QStringLiteral("DiscardedFrames"), QVariantList{0, 2, 4}},
                                                 {QStringLiteral("InterpolateFrames"), 1}}),
                                        file, {input});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();

    std::vector<double> outputTimes;
    const std::vector<cv::Mat> output = test::readStack(file, reducedStack, &outputTimes);
    ASSERT_EQ(output.size(), 5u);
    EXPECT_EQ(outputTimes, inputTimes);
    const int expected[5][4] = {{100, 104, 108, 112},
                                {100, 104, 108, 112},
                                {125, 130, 135, 140},
                                {200, 208, 216, 224},
                                {200, 208, 216, 224}};
    for (int k = 0; k < 5; ++k)
        for (int y = 0; y < 2; ++y)
            for (int x = 0; x < 4; ++x)
                EXPECT_EQ(output[k].at<std::uint16_t>(y, x), expected[k][x]) << k << ' ' << x;
}

TEST_F(DiscardFramesOperationTest, AutodetectionAddsBlackAndCorruptedFramesToTheSelection)
{
    // Frame means 1000, 1004, 996, 0 (black), 1002, 5000, 1020, 998; frame 6 is noisier
    // (a checkerboard of +-40 around 1020). Of the frames that are not black the median
    // mean is 1002, the MAD 4 (deviations 0, 2, 2, 4, 6, 18, 3998), so the spread is
    // max(1.4826 x 4, 0.01 x 1002) = 10.02 and the limit 50.1: frames 3 and 5 go, 6 stays.
    // Frame 0 is discarded by hand.
    const int means[8] = {1000, 1004, 996, 0, 1002, 5000, 1020, 998};
    std::vector<cv::Mat> frames;
    std::vector<double> inputTimes;
    for (int k = 0; k < 8; ++k) {
        const int amplitude = k == 3 ? 0 : (k == 6 ? 40 : 20);
        cv::Mat frame(4, 4, CV_16U);
        for (int y = 0; y < 4; ++y)
            for (int x = 0; x < 4; ++x)
                frame.at<std::uint16_t>(y, x) =
                    static_cast<std::uint16_t>(means[k] + ((x + y) % 2 == 0 ? amplitude : -amplitude));
        frames.push_back(frame);
        inputTimes.push_back(0.5 * k);
    }
    const QString input = test::writeStack(file, frames, inputTimes);
    QStringList labels;
    runner.onLabel = [&labels](const QString& label) { labels << label; };
    const RunResult result = runner.run(discard({{QStringLiteral("DiscardedFrames"), QVariantList{0}},
                                                 {QStringLiteral("AutodetectCorruptedFrames"), 1}}),
                                        file, {input});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();

    std::vector<double> outputTimes;
    const std::vector<cv::Mat> output = test::readStack(file, reducedStack, &outputTimes);
    EXPECT_EQ(outputTimes, (std::vector<double>{0.5, 1.0, 2.0, 3.0, 3.5}));
    const std::vector<int> kept{1, 2, 4, 6, 7};
    ASSERT_EQ(output.size(), kept.size());
    for (std::size_t i = 0; i < kept.size(); ++i)
        EXPECT_TRUE(test::sameImage(output[i], frames[kept[i]])) << kept[i];
    EXPECT_EQ(labels, (QStringList{QStringLiteral("Estimating Threshold for Autodetection..."),
                                   QStringLiteral("Autodetecting Corrupted frames..."),
                                   QStringLiteral("Discarding images...")}));
}

TEST_F(DiscardFramesOperationTest, DoNotSaveParametersLeavesTheOutputsWithoutThem)
{
    const QString input = writeFiveFrames();
    const RunResult result = runner.run(discard({{QStringLiteral("DiscardedFrames"), QVariantList{2}},
                                                 {QStringLiteral("DontSaveParameters"), 1}}),
                                        file, {input});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    for (const QString& path : {reducedGroup, reducedStack}) {
        const QVariantMap attributes = attributesOf(path);
        for (const char* key :
             {"Operations", "DiscardedFrames", "DontSaveParameters", "SourceDatapaths", "SourceDatapath"})
            EXPECT_FALSE(attributes.contains(QString::fromLatin1(key))) << path.toStdString() << ' ' << key;
    }
    // The stack's own geometry is still there.
    EXPECT_EQ(attributesOf(reducedStack).value("Width").toInt(), 4);
    std::vector<double> outputTimes;
    EXPECT_EQ(outputValues(&outputTimes), (std::vector<int>{100, 200, 400, 500}));
}

TEST_F(DiscardFramesOperationTest, IndicesOutsideTheStackOrDiscardingEverythingAreRefused)
{
    const QString input = writeFiveFrames();
    RunResult result =
        runner.run(discard({{QStringLiteral("DiscardedFrames"), QVariantList{1, 5}}}), file, {input});
    EXPECT_EQ(result.errors,
              QStringList{QStringLiteral("The frame <b>5</b> cannot be discarded: the frames of the "
                                         "image stack <b>%1</b> are numbered from 0 to <b>4</b>.")
                              .arg(input)});
    EXPECT_FALSE(test::hasProcessedData(file));

    result = runner.run(discard({{QStringLiteral("DiscardedFrames"), QVariantList{0, 1, 2, 3, 4}},
                                 {QStringLiteral("InterpolateFrames"), 1}}),
                        file, {input});
    EXPECT_EQ(result.errors, QStringList{QStringLiteral("Every frame of the image stack <b>%1</b> would be "
                                                        "discarded. Keep at least one frame.")
                                             .arg(input)});
    EXPECT_FALSE(test::hasProcessedData(file));
}

} // namespace
} // namespace zarvi
