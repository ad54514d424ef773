#include "ImageStackTestSupport.h"

#include "common/TempDir.h"
#include "datafile/SignalDataset.h"
#include "image/operations/dffimages/DFFImagesProcess.h"

#include <array>

namespace zarvi {
namespace {

const QString dffStack = QStringLiteral("DataProcessed/Scope/Images/Series1/DFFImages1/Cells/ImageStack");

using Pixels = std::array<int, 4>;

/// 2 x 2 frames, row by row: pixel (0, 0), (0, 1), (1, 0), (1, 1) of each frame.
std::vector<cv::Mat> frames(const std::vector<Pixels>& values)
{
    std::vector<cv::Mat> result;
    for (const Pixels& v : values)
        result.push_back((cv::Mat_<std::uint16_t>(2, 2) << v[0], v[1], v[2], v[3]));
    return result;
}

/// The pixels of each written frame, in the order of frames().
std::vector<Pixels> pixelsOf(const std::vector<cv::Mat>& stack)
{
    std::vector<Pixels> result;
    for (const cv::Mat& frame : stack)
        result.push_back({frame.at<std::uint16_t>(0, 0), frame.at<std::uint16_t>(0, 1),
                          frame.at<std::uint16_t>(1, 0), frame.at<std::uint16_t>(1, 1)});
    return result;
}

QVariantMap dff(QVariantMap parameters = {})
{
    return test::operationParameters(QStringLiteral("Images deltaF/F"), parameters);
}

QVariantMap withDarkframe(const QString& file, const QString& dataset, int removeVariations = 0)
{
    return dff({{QStringLiteral("DarkframeFilepath"), file},
                {QStringLiteral("DarkframeDataset"), dataset},
                {QStringLiteral("RemoveTemporalVariations"), removeVariations}});
}

class DFFImagesOperationTest : public ::testing::Test
{
protected:
    /// Runs the operation on a stack of `values` in a fresh file; the output's pixels.
    std::vector<Pixels> runOn(const std::vector<Pixels>& values, const QVariantMap& parameters)
    {
        QFile::remove(file);
        const QString input = test::writeStack(file, frames(values));
        const RunResult result = runner.run(parameters, file, {input});
        EXPECT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
        return result.succeeded() ? pixelsOf(test::readStack(file, dffStack)) : std::vector<Pixels>{};
    }

    test::TempDir dir;
    QString file = dir.file(QStringLiteral("stack.orvel"));
    OperationRunner runner;
};

TEST_F(DFFImagesOperationTest, ChangesAgainstTheMeanImageInPercentClippedAtZero)
{
    // Over the three frames: (0, 0) is 10, 30, 20 (mean 20: frame 1 is 1.5 x the mean);
    // (0, 1) is constant; (1, 0) is 3, 4, 4 (mean 11/3: 4 is 9.09 % above); (1, 1) 1, 2, 3.
    const QString input =
        test::writeStack(file, frames({{10, 100, 3, 1}, {30, 100, 4, 2}, {20, 100, 4, 3}}), {1.0, 1.5, 2.25});
    const RunResult result = runner.run(dff(), file, {input});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    EXPECT_EQ(result.datapaths, QStringList{dffStack});
    std::vector<double> times;
    EXPECT_EQ(pixelsOf(test::readStack(file, dffStack, &times)),
              (std::vector<Pixels>{{0, 0, 0, 0}, {50, 0, 9, 0}, {0, 0, 9, 50}}));
    EXPECT_EQ(times, (std::vector<double>{1.0, 1.5, 2.25}));

    HDF5Reader_V6 reader;
    ASSERT_GE(reader.open(file), 0);
    ImageFrameReader output;
    QString error;
    ASSERT_TRUE(output.open(reader, dffStack, error)) << error.toStdString();
    EXPECT_EQ(output.info().bitCount, 16);
}

TEST_F(DFFImagesOperationTest, AConstantStackAndPixelsWhoseMeanIsZeroGiveZero)
{
    EXPECT_EQ(runOn(std::vector<Pixels>(4, {7, 7, 7, 7}), dff()), std::vector<Pixels>(4, {0, 0, 0, 0}));
    // Pixel (1, 1) is 0 throughout: its F0 is 0 and it is written as 0, the run goes on.
    EXPECT_EQ(runOn({{10, 5, 5, 0}, {30, 5, 5, 0}}, dff()),
              (std::vector<Pixels>{{0, 0, 0, 0}, {50, 0, 0, 0}}));
}

TEST_F(DFFImagesOperationTest, RemovingTemporalVariationsMakesAFramesScaleIrrelevant)
{
    // Each frame divided by its mean 20: (0.5, 1.5, 0.5, 1.5), (1, 1, 1, 1), (1.5, 0.5, 1.5, 0.5);
    // F0 is 1 everywhere.
    const QVariantMap remove = dff({{QStringLiteral("RemoveTemporalVariations"), 1}});
    const std::vector<Pixels> expected{{0, 50, 0, 50}, {0, 0, 0, 0}, {50, 0, 50, 0}};
    EXPECT_EQ(runOn({{10, 30, 10, 30}, {20, 20, 20, 20}, {30, 10, 30, 10}}, remove), expected);
    // Frame 1 twice as bright, frame 2 four times: nothing changes.
    EXPECT_EQ(runOn({{10, 30, 10, 30}, {40, 40, 40, 40}, {120, 40, 120, 40}}, remove), expected);
    // Without the option the brighter frames count: F0 is 170/3 and 110/3 in the columns, so
    // frame 2 is 100 (120 / (170/3) - 1) = 111.76 % above it in column 0, and frame 1
    // 100 (40 / (110/3) - 1) = 9.09 % in column 1.
    EXPECT_EQ(runOn({{10, 30, 10, 30}, {40, 40, 40, 40}, {120, 40, 120, 40}}, dff()),
              (std::vector<Pixels>{{0, 0, 0, 0}, {0, 9, 0, 9}, {112, 9, 112, 9}}));
}

TEST_F(DFFImagesOperationTest, AConstantDarkFrameIsSubtractedFromEveryPixel)
{
    // Pixel (0, 0) is 10, 20, 30: without a dark frame F0 = 20 and frame 2 is 50 % above it.
    // With the dark frame 10 it is 0, 10, 20: F0 = 10 and frame 2 is 100 % above. Pixel (0, 1),
    // 5, 15, 10, has F0 = 10 (frame 1 is 50 % above); less 10 it is -5, 5, 0 with F0 = 0:
    // written as 0, not as an infinite change.
    const std::vector<Pixels> values{{10, 5, 40, 40}, {20, 15, 40, 40}, {30, 10, 40, 40}};
    const QString darkFile = dir.file(QStringLiteral("dark.orvel"));
    // The dark frame is the first frame of its stack; the second must not count.
    const QString dark =
        test::writeStack(darkFile, frames({{10, 10, 10, 10}, {0, 0, 0, 0}}), {}, QStringLiteral("Dark"));
    EXPECT_EQ(runOn(values, dff()), (std::vector<Pixels>{{0, 0, 0, 0}, {0, 50, 0, 0}, {50, 0, 0, 0}}));
    EXPECT_EQ(runOn(values, withDarkframe(darkFile, dark)),
              (std::vector<Pixels>{{0, 0, 0, 0}, {0, 0, 0, 0}, {100, 0, 0, 0}}));

    // The same dark frame in the processed file itself.
    const QString input =
        test::writeStack(file, frames(values), {}, QStringLiteral("Cells"), QStringLiteral("Series2"));
    test::writeStack(file, frames({{10, 10, 10, 10}}), {}, QStringLiteral("Dark"));
    const RunResult result = runner.run(withDarkframe(file, dark), file, {input});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    EXPECT_EQ(pixelsOf(test::readStack(file, result.datapaths.value(0))),
              (std::vector<Pixels>{{0, 0, 0, 0}, {0, 0, 0, 0}, {100, 0, 0, 0}}));
}

TEST_F(DFFImagesOperationTest, BadInputsAndDarkFramesAreRefusedAndNothingIsWritten)
{
    const QString input = test::writeStack(file, frames({{1, 2, 3, 4}, {5, 6, 7, 8}}));
    const QString darkFile = dir.file(QStringLiteral("dark.orvel"));
    const QString wide =
        test::writeStack(darkFile, {cv::Mat(2, 3, CV_16U, cv::Scalar(1))}, {}, QStringLiteral("Wide"));
    RunResult result = runner.run(withDarkframe(darkFile, wide), file, {input});
    ASSERT_EQ(result.errors.size(), 1);
    EXPECT_EQ(
        result.errors.first(),
        QStringLiteral("The dark frame <b>%1</b> is <b>3 x 2</b> pixels but the images of <b>%2</b> are "
                       "<b>2 x 2</b>. The dark frame must have the size of the images.")
            .arg(wide, input));
    EXPECT_FALSE(test::hasProcessedData(file));

    // Half a dark frame.
    result = runner.run(dff({{QStringLiteral("DarkframeFilepath"), darkFile}}), file, {input});
    EXPECT_EQ(result.errors, QStringList{QStringLiteral("Parameter <b>DarkframeDataset</b> is missing.")});
    EXPECT_FALSE(test::hasProcessedData(file));

    // A signal is not an image stack.
    {
        HDF5Writer_V6 writer;
        ASSERT_GE(writer.open(file), 0);
        QString error;
        ASSERT_TRUE(SignalDataset::write(writer, QStringLiteral("DataConverted/Scope/Signals/Series1/A"),
                                         Signal{{0.0, 1.0}, {1.0, 2.0}, QStringLiteral("V")}, {}, error));
    }
    result = runner.run(dff(), file, {QStringLiteral("DataConverted/Scope/Signals/Series1/A/Signal")});
    EXPECT_EQ(result.errors,
              QStringList{QStringLiteral("The dimensions of the input dataset are incorrect. Make "
                                         "sure that the operation is applied to image stack.")});
    EXPECT_FALSE(test::hasProcessedData(file));
}

// The frames computed on frame threads are those of one thread, frame for frame.
TEST_F(DFFImagesOperationTest, FrameThreadsGiveTheFramesOfOneThread)
{
    std::vector<cv::Mat> stack;
    cv::RNG rng(5);
    for (int k = 0; k < 40; ++k) {
        cv::Mat frame(17, 23, CV_16U);
        rng.fill(frame, cv::RNG::UNIFORM, 100, 4000);
        stack.push_back(frame);
    }
    const QString input = test::writeStack(file, stack);
    const QString copy = dir.file(QStringLiteral("copy.orvel"));
    ASSERT_TRUE(QFile::copy(file, copy));
    const QVariantMap parameters = dff({{QStringLiteral("RemoveTemporalVariations"), 1}});
    ASSERT_TRUE(test::runWithFrameThreads<DFFImagesProcess>(parameters, file, {input}, 1).succeeded());
    ASSERT_TRUE(test::runWithFrameThreads<DFFImagesProcess>(parameters, copy, {input}, 3).succeeded());
    const std::vector<cv::Mat> expected = test::readStack(file, dffStack);
    const std::vector<cv::Mat> found = test::readStack(copy, dffStack);
    ASSERT_EQ(found.size(), stack.size());
    ASSERT_EQ(expected.size(), stack.size());
    for (std::size_t k = 0; k < found.size(); ++k)
        EXPECT_TRUE(test::sameImage(found[k], expected[k])) << "frame " << k;
}

} // namespace
} // namespace zarvi
