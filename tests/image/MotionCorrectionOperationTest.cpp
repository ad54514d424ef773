#include "ImageStackTestSupport.h"
#include "MotionTestImages.h"

#include "common/TempDir.h"
#include "image/operations/motioncorrection/MotionCorrectionProcess.h"

#include <QFile>

namespace zarvi {
namespace {

const QString outputGroup = QStringLiteral("DataProcessed/Scope/Images/Series1/MotionCorrectedImages1/");
const QString correctedStack = outputGroup + QStringLiteral("Cells/ImageStack");
const QString shiftsPath = outputGroup + QStringLiteral("Cells/AlignmentShifts");

QVariantMap motionCorrection(QVariantMap parameters = {})
{
    if (!parameters.contains(QStringLiteral("ReferenceFrame")))
        parameters.insert(QStringLiteral("ReferenceFrame"), 0);
    return test::operationParameters(QStringLiteral("Motion Correction"), parameters);
}

/// The stored shifts, one row (x, y) per frame.
std::vector<std::vector<double>> storedShifts(const QString& file, const QString& path = shiftsPath)
{
    HDF5Reader_V6 reader;
    EXPECT_GE(reader.open(file), 0);
    const hid_t dataset = reader.openDataset(reader.fileId(), path);
    std::vector<double> values;
    EXPECT_EQ(reader.dimensions(dataset).size(), 2u);
    EXPECT_TRUE(reader.read(dataset, values));
    reader.closeDataset(dataset);
    std::vector<std::vector<double>> rows;
    for (std::size_t i = 0; i + 1 < values.size(); i += 2)
        rows.push_back({values[i], values[i + 1]});
    return rows;
}

cv::Mat as16(const cv::Mat& frame)
{
    cv::Mat stored;
    frame.convertTo(stored, CV_16U);
    return stored;
}

class MotionCorrectionOperationTest : public ::testing::Test
{
protected:
    test::TempDir dir;
    QString file = dir.file(QStringLiteral("stack.orvel"));
    OperationRunner runner;
};

TEST_F(MotionCorrectionOperationTest, FramesEqualToTheReferenceHaveZeroShiftsAndComeOutUnchanged)
{
    cv::Mat frame(48, 48, CV_16U);
    cv::RNG(5).fill(frame, cv::RNG::UNIFORM, 0, 65536);
    const QString input = test::writeStack(file, {frame, frame, frame}, {1.0, 1.5, 2.0});
    const RunResult result = runner.run(motionCorrection(), file, {input});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    EXPECT_EQ(result.datapaths, QStringList{correctedStack});
    std::vector<double> times;
    const std::vector<cv::Mat> out = test::readStack(file, correctedStack, &times);
    ASSERT_EQ(out.size(), 3u);
    for (const cv::Mat& corrected : out)
        EXPECT_TRUE(test::sameImage(corrected, frame));
    EXPECT_EQ(times, (std::vector<double>{1.0, 1.5, 2.0}));
    EXPECT_EQ(storedShifts(file), (std::vector<std::vector<double>>{{0, 0}, {0, 0}, {0, 0}}));

    HDF5Reader_V6 reader;
    ASSERT_GE(reader.open(file), 0);
    const hid_t shifts = reader.openDataset(reader.fileId(), shiftsPath);
    EXPECT_EQ(reader.readAttribute(shifts, QStringLiteral("ColumnNames")).toStringList(),
              (QStringList{QStringLiteral("X Shift"), QStringLiteral("Y Shift")}));
    EXPECT_EQ(reader.readAttribute(shifts, QStringLiteral("Unit")).toString(), QStringLiteral("px"));
    EXPECT_EQ(reader.readAttribute(shifts, QStringLiteral("SourceDatapath")).toString(), input);
    EXPECT_EQ(reader.readAttribute(shifts, QStringLiteral("Operations")).toString(),
              QStringLiteral("Motion Correction"));
    reader.closeDataset(shifts);
}

TEST_F(MotionCorrectionOperationTest, MovedFramesAreMovedBackAndTheirShiftsKept)
{
    // Reference frame 1; frame 0 moved 4 right and 2 up, frame 2 moved 3 left and 5 down.
    const cv::Mat scene = test::cellScene(128, 36);
    const QString input = test::writeStack(
        file, {as16(test::translated(scene, 4, -2)), as16(scene), as16(test::translated(scene, -3, 5))});
    const RunResult result =
        runner.run(motionCorrection({{QStringLiteral("ReferenceFrame"), 1}}), file, {input});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    EXPECT_EQ(storedShifts(file), (std::vector<std::vector<double>>{{4, -2}, {0, 0}, {-3, 5}}));
    const std::vector<cv::Mat> out = test::readStack(file, correctedStack);
    ASSERT_EQ(out.size(), 3u);
    // Frame 0 is moved 4 left and 2 down: its 4 right columns and 2 top rows are uncovered.
    const cv::Mat expected = as16(scene);
    for (int y = 0; y < 128; ++y)
        for (int x = 0; x < 128; ++x)
            ASSERT_EQ(out[0].at<std::uint16_t>(y, x),
                      x >= 124 || y < 2 ? 0 : expected.at<std::uint16_t>(y, x));
}

TEST_F(MotionCorrectionOperationTest, RefusalsNameTheirReasonAndWriteNothing)
{
    const QString wide =
        test::writeStack(file, {cv::Mat(256, 512, CV_16U, cv::Scalar(7))}, {}, QStringLiteral("Wide"));
    const QString input = test::writeStack(file, {cv::Mat(96, 96, CV_16U, cv::Scalar(7))});
    const QString small =
        test::writeStack(file, {cv::Mat(64, 64, CV_16U, cv::Scalar(7))}, {}, QStringLiteral("Small"));
    const cv::Mat plain(32, 32, CV_16U, cv::Scalar(7));
    const QString twoFrames =
        test::writeStack(file, {plain, plain}, {}, QStringLiteral("Green"), QStringLiteral("Series2"));
    const QString oneFrame =
        test::writeStack(file, {plain}, {}, QStringLiteral("Red"), QStringLiteral("Series2"));
    const QString alone =
        test::writeStack(file, {plain}, {}, QStringLiteral("Green"), QStringLiteral("Series3"));
    {
        HDF5Writer_V6 writer;
        ASSERT_GE(writer.open(file), 0);
        const hid_t group =
            writer.createGroupPath(writer.fileId(), QStringLiteral("DataConverted/Scope/Plane"));
        const hid_t flat = writer.createDataset(group, ElementKind::UInt16, QStringLiteral("Frame"), 2,
                                                {4, 4}, {4, 4}, {4, 4}, 0);
        writer.closeDataset(flat);
        writer.closeGroup(group);
    }
    struct Refusal
    {
        QVariantMap parameters;
        QString input;
        QString message;
    };
    const Refusal refusals[] = {
        {{},
         wide,
         QStringLiteral(
             "The input images are not square. This operation can only be applied to square images. "
             "Use Crop operation to make images square.<br><b>%1</b> is <b>512 x 256</b> (width x "
             "height).")
             .arg(wide)},
        {{{QStringLiteral("ReferenceDatapath"), small}},
         input,
         QStringLiteral(
             "The reference frame size is different from the images size (64x64 vs 96x96).Make sure to "
             "load correct reference.")},
        {{{QStringLiteral("ReferenceSource"), QStringLiteral("External File")}},
         input,
         QStringLiteral("No external file was selected. Please select a file.")},
        {{{QStringLiteral("ReferenceFrame"), 3}},
         input,
         QStringLiteral("Unable to load reference frame from the dataset <b>%2</b> of the file <b>%1</b>.")
             .arg(file, input)},
        {{},
         QStringLiteral("DataConverted/Scope/Plane/Frame"),
         QStringLiteral("The dimensions of the input dataset are incorrect. Make sure that the operation is "
                        "applied to image stack.")},
        {{{QStringLiteral("ApplyShiftsToSensor2"), 1}},
         twoFrames,
         QStringLiteral(
             "No motion correction shifts were found.<br><b>%1</b> has <b>1</b> frames, the shifts "
             "were found for <b>2</b>.")
             .arg(oneFrame)},
        {{{QStringLiteral("ApplyShiftsToSensor2"), 1}},
         alone,
         QStringLiteral(
             "No second sensor was found beside <b>%1</b>: the series holds no other image stack to "
             "apply the X-Y shifts to.")
             .arg(alone)},
    };
    for (const Refusal& refusal : refusals) {
        SCOPED_TRACE(refusal.message.toStdString());
        const RunResult result = runner.run(motionCorrection(refusal.parameters), file, {refusal.input});
        ASSERT_EQ(result.errors.size(), 1);
        EXPECT_EQ(result.errors.first(), refusal.message);
        EXPECT_FALSE(test::hasProcessedData(file));
    }
}

TEST_F(MotionCorrectionOperationTest, AReferenceFromAnotherFileRegistersLikeTheSameFrameHere)
{
    const cv::Mat scene = test::cellScene(128, 36, 40, 3);
    const QString input = test::writeStack(file, {as16(scene), as16(test::translated(scene, 2, 3))});
    const QString other = dir.file(QStringLiteral("session1.orvel"));
    const QString reference = test::writeStack(other, {as16(test::translated(scene, -1, 1)), as16(scene)}, {},
                                               QStringLiteral("Old"));
    const RunResult result =
        runner.run(motionCorrection({{QStringLiteral("ReferenceSource"), QStringLiteral("External File")},
                                     {QStringLiteral("ReferenceFilepath"), other},
                                     {QStringLiteral("ReferenceDatapath"), reference},
                                     {QStringLiteral("ReferenceFrame"), 1}}),
                   file, {input});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    EXPECT_EQ(storedShifts(file), (std::vector<std::vector<double>>{{0, 0}, {2, 3}}));
}

TEST_F(MotionCorrectionOperationTest, FrameThreadsGiveTheStackAndShiftsOfOneThreadBitForBit)
{
    const cv::Mat image = test::smoothRandomImage(96, 24);
    std::vector<cv::Mat> frames;
    cv::RNG rng(17);
    for (int k = 0; k < 23; ++k) {
        cv::Mat frame = test::fourierShifted(image, rng.uniform(-3.0, 3.0), rng.uniform(-3.0, 3.0));
        cv::Mat noise(frame.size(), CV_64F);
        rng.fill(noise, cv::RNG::NORMAL, 0.0, 20.0);
        frames.push_back(as16(frame + noise));
    }
    const QString input = test::writeStack(file, frames);
    const QString copy = dir.file(QStringLiteral("copy.orvel"));
    ASSERT_TRUE(QFile::copy(file, copy));

    const RunResult one = test::runWithFrameThreads<MotionCorrectionProcess>(
        motionCorrection({{QStringLiteral("ReferenceFrame"), 11}}), file, {input}, 1);
    const RunResult three = test::runWithFrameThreads<MotionCorrectionProcess>(
        motionCorrection({{QStringLiteral("ReferenceFrame"), 11}}), copy, {input}, 3);
    ASSERT_TRUE(one.succeeded()) << one.errors.join(' ').toStdString();
    ASSERT_TRUE(three.succeeded()) << three.errors.join(' ').toStdString();
    EXPECT_EQ(three.datapaths, one.datapaths);
    EXPECT_EQ(storedShifts(copy), storedShifts(file));
    const std::vector<cv::Mat> expected = test::readStack(file, correctedStack);
    const std::vector<cv::Mat> found = test::readStack(copy, correctedStack);
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t k = 0; k < found.size(); ++k)
        EXPECT_TRUE(test::sameImage(found[k], expected[k])) << "frame " << k;
}

TEST_F(MotionCorrectionOperationTest, TheSecondSensorIsMovedByTheSameShifts)
{
    // The red frames are the green frames halved, exactly (whole values): moved by the
    // same whole-pixel shifts, the red output is the green output halved.
    const cv::Mat scene = test::asStored(test::cellScene(128, 36, 40, 9));
    std::vector<cv::Mat> green, red;
    for (const cv::Point move : {cv::Point(0, 0), cv::Point(3, -4), cv::Point(-5, 2)}) {
        green.push_back(as16(test::translated(scene * 2.0, move.x, move.y, 200.0f)));
        red.push_back(as16(test::translated(scene, move.x, move.y, 100.0f)));
    }
    const QString input = test::writeStack(file, green, {}, QStringLiteral("Green"));
    test::writeStack(file, red, {}, QStringLiteral("Red"));
    QStringList labels;
    runner.onLabel = [&labels](const QString& label) { labels << label; };
    const RunResult result =
        runner.run(motionCorrection({{QStringLiteral("ApplyShiftsToSensor2"), 1}}), file, {input});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    EXPECT_EQ(result.datapaths, (QStringList{outputGroup + QStringLiteral("Green/ImageStack"),
                                             outputGroup + QStringLiteral("Red/ImageStack")}));
    EXPECT_TRUE(labels.contains(QStringLiteral("Applying shifts for sensor Red...")));
    EXPECT_TRUE(labels.contains(QStringLiteral("Calculating motion correction shifts...")));
    const std::vector<std::vector<double>> shifts{{0, 0}, {3, -4}, {-5, 2}};
    EXPECT_EQ(storedShifts(file, outputGroup + QStringLiteral("Green/AlignmentShifts")), shifts);
    EXPECT_EQ(storedShifts(file, outputGroup + QStringLiteral("Red/AlignmentShifts")), shifts);
    const std::vector<cv::Mat> greenOut =
        test::readStack(file, outputGroup + QStringLiteral("Green/ImageStack"));
    const std::vector<cv::Mat> redOut = test::readStack(file, outputGroup + QStringLiteral("Red/ImageStack"));
    ASSERT_EQ(redOut.size(), 3u);
    for (std::size_t k = 0; k < 3; ++k) {
        cv::Mat halved;
        greenOut[k].convertTo(halved, CV_16U, 0.5);
        EXPECT_TRUE(test::sameImage(redOut[k], halved)) << "frame " << k;
    }
}

} // namespace
} // namespace zarvi
