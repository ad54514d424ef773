#include "VideoTestSupport.h"

#include "framework/AbstractOperationProcess.h"
#include "framework/OperationRegistry.h"
#include "framework/OperationRunner.h"

#include <QDir>

namespace zarvi {
namespace {

using FD = FileDefinitions;

constexpr int Frames = 40;
const QString link = QStringLiteral("DataConverted/Camera/Video/Series1/Video1");
const QString coordinates = QStringLiteral("DataBehavior/Camera/Coordinates/Series1/Video1/Coordinates1");
const QString coordinatesTime = QStringLiteral("DataBehavior/Camera/Coordinates/Series1/Video1/Time");

/// The disc's centre on frame k: always whole pixels, so its centroid is exact; no disc on
/// frames 10 and 11.
cv::Point centre(int k)
{
    if (k == 10 || k == 11)
        return test::NoDisc;
    return {30 + 2 * k, 40 + 3 * (k % 5)};
}

QVariantMap tracking(QVariantMap parameters)
{
    parameters.insert(FD::Operations, QStringLiteral("AnimalTracking"));
    return parameters;
}

/// Grey mode keeping the darkest 30 % (up to level 76): the disc (20), never the floor (230).
QVariantMap darkDisc(QVariantMap more = {})
{
    more.insert(QStringLiteral("ConvertToGrayscale"), 1);
    more.insert(QStringLiteral("ValueRange(%)"), QVariantList{0, 30});
    return tracking(more);
}

class TrackingOperationTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(QDir().mkpath(dir.file(QStringLiteral("videos"))));
        std::vector<cv::Point> centres;
        for (int k = 0; k < Frames; ++k)
            centres.push_back(centre(k));
        ASSERT_TRUE(test::writeDiscVideo(video, centres));
        ASSERT_EQ(test::linkVideo(file, video), link);
    }

    std::vector<cv::Point> path(int first = 0, int last = Frames - 1) const
    {
        std::vector<cv::Point> points;
        for (int k = first; k <= last; ++k)
            points.push_back(centre(k));
        return points;
    }

    /// Runs and expects a refusal that wrote nothing.
    void expectRefused(const QVariantMap& parameters, const QString& error, const QString& input = link)
    {
        const RunResult result = runner.run(parameters, file, {input});
        EXPECT_EQ(result.errors, QStringList{error});
        EXPECT_TRUE(result.datapaths.isEmpty());
        EXPECT_FALSE(test::pathExists(file, FD::DataBehavior));
    }

    test::TempDir dir;
    QString file = dir.file(QStringLiteral("session.orvel"));
    QString video = dir.file(QStringLiteral("videos/arena.avi"));
    OperationRunner runner;
};

TEST_F(TrackingOperationTest, DiscPathIsRecoveredExactlyWithTheLinkTimesAndAttributes)
{
    const RunResult result = runner.run(darkDisc(), file, {link});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    EXPECT_EQ(result.datapaths, QStringList{coordinates});
    EXPECT_EQ(test::storedCoordinates(file, coordinates), path());

    const test::StoredDataset stored = test::storedDataset(file, coordinates);
    EXPECT_EQ(stored.dimensions, (std::vector<hsize_t>{Frames, 2}));
    EXPECT_EQ(stored.type.elementClass, ElementClass::Integer);
    EXPECT_EQ(stored.type.size, 4u);
    EXPECT_TRUE(stored.type.isSigned);
    const QVariantMap& attributes = stored.attributes;
    EXPECT_EQ(attributes.value("Username").toString(), QStringLiteral("arena.avi"));
    EXPECT_EQ(attributes.value("Color").toString(), QStringLiteral("#2ecc71"));
    EXPECT_EQ(attributes.value("VideoRange").toList(), (QVariantList{0, Frames - 1}));
    EXPECT_EQ(attributes.value("RelativeFilePath").toString(), QStringLiteral("videos/arena.avi"));
    EXPECT_EQ(attributes.value("DifferenceMasterStartToFirstImage").toDouble(), 0.0);
    EXPECT_EQ(attributes.value("Operations").toString(), QStringLiteral("AnimalTracking"));
    EXPECT_EQ(attributes.value("SourceDatapath").toString(), link);
    EXPECT_EQ(attributes.value("ConvertToGrayscale").toInt(), 1);
    EXPECT_EQ(attributes.value("ValueRange(%)").toList(), (QVariantList{0.0, 30.0}));
    EXPECT_FALSE(attributes.contains("HueRange"));

    const std::vector<double> times = test::storedValues(file, coordinatesTime);
    ASSERT_EQ(times.size(), std::size_t(Frames));
    for (int k = 0; k < Frames; ++k)
        EXPECT_NEAR(times[k], k / test::VideoRate, 1e-9);
    EXPECT_EQ(times, test::storedValues(file, link + QStringLiteral("/Time")));
    EXPECT_EQ(test::storedDataset(file, coordinatesTime).attributes.value("Unit").toString(),
              QStringLiteral("s"));
}

TEST_F(TrackingOperationTest, SegmentKeepsItsOwnFramesAndTimes)
{
    const RunResult result = runner.run(
        darkDisc({{QStringLiteral("FirstFrame"), 5}, {QStringLiteral("LastFrame"), 20}}), file, {link});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    EXPECT_EQ(test::storedCoordinates(file, coordinates), path(5, 20));
    const QVariantMap attributes = test::storedDataset(file, coordinates).attributes;
    EXPECT_EQ(attributes.value("VideoRange").toList(), (QVariantList{5, 20}));
    EXPECT_NEAR(attributes.value("DifferenceMasterStartToFirstImage").toDouble(), 5 / test::VideoRate, 1e-9);
    const std::vector<double> times = test::storedValues(file, coordinatesTime);
    ASSERT_EQ(times.size(), 16u);
    EXPECT_NEAR(times.front(), 5 / test::VideoRate, 1e-9);
    EXPECT_NEAR(times.back(), 20 / test::VideoRate, 1e-9);
}

TEST_F(TrackingOperationTest, InterpolationFillsTheFramesWithoutDisc)
{
    const RunResult result = runner.run(darkDisc({{QStringLiteral("Interpolate"), 1}}), file, {link});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    // Between (48, 52) on frame 9 and (54, 46) on frame 12: steps of (2, −2).
    std::vector<cv::Point> expected = path();
    expected[10] = {50, 50};
    expected[11] = {52, 48};
    EXPECT_EQ(test::storedCoordinates(file, coordinates), expected);
}

TEST_F(TrackingOperationTest, SmoothingOfASegmentMirrorsItsEnds)
{
    // Frames 0..4: x 30, 32, 34, 36, 38 and y 40, 43, 46, 49, 52. Window 3, mirrored:
    // frame 0 reads frames 1, 0, 1: (32 + 30 + 32) / 3 = 31.3 and (43 + 40 + 43) / 3 = 42;
    // frame 4 reads 3, 4, 3: (36 + 38 + 36) / 3 = 36.7 and (49 + 52 + 49) / 3 = 50.
    const RunResult result = runner.run(darkDisc({{QStringLiteral("LastFrame"), 4},
                                                  {QStringLiteral("SmoothCoordinates"), 1},
                                                  {QStringLiteral("SmoothWindow(frames)"), 3}}),
                                        file, {link});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    EXPECT_EQ(test::storedCoordinates(file, coordinates),
              (std::vector<cv::Point>{{31, 42}, {32, 43}, {34, 46}, {36, 49}, {37, 50}}));
}

TEST_F(TrackingOperationTest, ExcursionOfTheDiscIsRemovedAndInterpolated)
{
    std::vector<cv::Point> centres = path();
    centres[20] = centres[21] = {140, 100};
    const QString jumpy = dir.file(QStringLiteral("videos/jumpy.avi"));
    ASSERT_TRUE(test::writeDiscVideo(jumpy, centres));
    const QString jumpyLink = test::linkVideo(file, jumpy);
    const RunResult result = runner.run(darkDisc({{QStringLiteral("DetectOutliers"), 1},
                                                  {QStringLiteral("AnimalSize(px)"), 10},
                                                  {QStringLiteral("Interpolate"), 1}}),
                                        file, {jumpyLink});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    // Away by (72, 48) and back by (−66, −54): frames 20 and 21 go, then fill in between
    // (68, 52) and (74, 46), as frames 10 and 11 fill in between (48, 52) and (54, 46).
    std::vector<cv::Point> expected = path();
    expected[10] = {50, 50};
    expected[11] = {52, 48};
    expected[20] = {70, 50};
    expected[21] = {72, 48};
    EXPECT_EQ(test::storedCoordinates(file, result.datapaths.value(0)), expected);
}

TEST_F(TrackingOperationTest, ColourModeReadsTheFrameAsRgb)
{
    // A red disc (blue-green-red 40, 40, 200) on green: read as RGB, the disc has hue 120.
    std::vector<cv::Point> centres;
    for (int k = 0; k < 6; ++k)
        centres.emplace_back(40 + 7 * k, 50 + k);
    const QString coloured = dir.file(QStringLiteral("videos/colour.avi"));
    ASSERT_TRUE(
        test::writeDiscVideo(coloured, centres, 10, cv::Scalar(40, 40, 200), cv::Scalar(60, 180, 60)));
    const QString colourLink = test::linkVideo(file, coloured);
    const QVariantMap disc = tracking({{QStringLiteral("ConvertToGrayscale"), 0},
                                       {QStringLiteral("HueRange"), QVariantList{100, 140}},
                                       {QStringLiteral("SaturationRange(%)"), QVariantList{50, 100}},
                                       {QStringLiteral("ValueRange(%)"), QVariantList{50, 100}}});
    RunResult result = runner.run(disc, file, {colourLink});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    EXPECT_EQ(test::storedCoordinates(file, result.datapaths.value(0)), centres);

    // The hue of red as the video shows it (0) finds nothing: the frame is read as RGB.
    QVariantMap videoRed = disc;
    videoRed.insert(QStringLiteral("HueRange"), QVariantList{0, 10});
    const QString again = test::linkVideo(file, coloured);
    result = runner.run(videoRed, file, {again});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    EXPECT_EQ(test::storedCoordinates(file, result.datapaths.value(0)),
              std::vector<cv::Point>(centres.size(), test::NoDisc));
}

TEST_F(TrackingOperationTest, TrackedLinkIsRefusedAndKeepsItsCoordinates)
{
    ASSERT_TRUE(runner.run(darkDisc(), file, {link}).succeeded());
    const RunResult again = runner.run(darkDisc({{QStringLiteral("LastFrame"), 3}}), file, {link});
    EXPECT_EQ(again.errors, QStringList{QStringLiteral("Dataset <b>%1</b> already saved.").arg(coordinates)});
    EXPECT_EQ(test::storedCoordinates(file, coordinates), path());
}

TEST_F(TrackingOperationTest, BadInputIsRefusedAndWritesNothing)
{
    expectRefused(
        darkDisc({{QStringLiteral("LastFrame"), Frames}}),
        QStringLiteral("The frame range <b>0 - 40</b> is not inside the video <b>%1</b>, whose frames "
                       "are numbered 0 to 39.")
            .arg(video));
    expectRefused(darkDisc({{QStringLiteral("FirstFrame"), 30}, {QStringLiteral("LastFrame"), 20}}),
                  QStringLiteral("The first frame must not come after the last frame."));
    expectRefused(
        tracking({{QStringLiteral("ValueRange(%)"), QVariantList{60, 20}}}),
        QStringLiteral("The threshold range <b>ValueRange(%)</b> from 60 to 20 is empty: its low bound "
                       "is above its high bound, so no pixel would be kept."));
    expectRefused(
        tracking({{QStringLiteral("HueRange"), QVariantList{100, 90}},
                  {QStringLiteral("SaturationRange(%)"), QVariantList{0, 100}},
                  {QStringLiteral("ValueRange(%)"), QVariantList{0, 100}}}),
        QStringLiteral("The threshold range <b>HueRange</b> from 100 to 90 is empty: its low bound is "
                       "above its high bound, so no pixel would be kept."));
    expectRefused(
        tracking({{QStringLiteral("ValueRange(%)"), QVariantList{0, 20, 40}}}),
        QStringLiteral("Parameter <b>ValueRange(%)</b> needs two values: the low and the high bound."));
    expectRefused(darkDisc({{QStringLiteral("DetectOutliers"), 1}}),
                  QStringLiteral("Parameter <b>AnimalSize(px)</b> is missing."));
    expectRefused(
        darkDisc(),
        QStringLiteral("<b>DataConverted/Camera/Video/Series1</b> is not a linked video: a video link is "
                       "a group with the attributes Filepath or RelativeFilePath and a Time dataset."),
        QStringLiteral("DataConverted/Camera/Video/Series1"));
    // A grey test leaves the colour ranges out, empty or not.
    const QVariantMap greyWithEmptyHue = darkDisc({{QStringLiteral("HueRange"), QVariantList{100, 90}}});
    EXPECT_TRUE(runner.run(greyWithEmptyHue, file, {link}).succeeded());
}

TEST_F(TrackingOperationTest, MissingOrUndecodableVideoWritesNothing)
{
    ASSERT_TRUE(QFile::rename(video, dir.file(QStringLiteral("elsewhere.avi"))));
    const QString expected = QDir::cleanPath(dir.file(QStringLiteral("videos/arena.avi")));
    expectRefused(darkDisc(),
                  QStringLiteral("The video of <b>%1</b> was not found: neither at <b>%2</b> (its path "
                                 "relative to the data file) nor at <b>%3</b>. If the video or the data "
                                 "file was moved, put them back in the same places relative to each "
                                 "other, or link the video again.")
                      .arg(link, expected, QFileInfo(video).absoluteFilePath()));

    test::writeText(video, "not a video at all");
    expectRefused(darkDisc(),
                  QStringLiteral("<b>%1</b> could not be opened as a video; the file may be damaged or "
                                 "in a format that cannot be decoded.")
                      .arg(expected));
}

TEST_F(TrackingOperationTest, MovedFilesAreFoundByTheRelativePathFirst)
{
    // The data file and its videos folder moved together: the absolute path is stale.
    const QString moved = dir.file(QStringLiteral("moved"));
    ASSERT_TRUE(QDir().mkpath(moved));
    ASSERT_TRUE(QDir().rename(dir.file(QStringLiteral("videos")), moved + QStringLiteral("/videos")));
    const QString movedFile = moved + QStringLiteral("/session.orvel");
    ASSERT_TRUE(QFile::rename(file, movedFile));
    RunResult result = runner.run(darkDisc(), movedFile, {link});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    EXPECT_EQ(test::storedCoordinates(movedFile, coordinates), path());

    // A copy of the data file beside another video of that name: the relative path wins
    // although the absolute one still leads to a video.
    const QString other = dir.file(QStringLiteral("other"));
    ASSERT_TRUE(QDir().mkpath(other + QStringLiteral("/videos")));
    std::vector<cv::Point> still(Frames, cv::Point(80, 60));
    ASSERT_TRUE(test::writeDiscVideo(other + QStringLiteral("/videos/arena.avi"), still));
    ASSERT_TRUE(QDir().rename(moved + QStringLiteral("/videos"), dir.file(QStringLiteral("videos"))));
    const QString copy = other + QStringLiteral("/session.orvel");
    ASSERT_TRUE(QFile::copy(movedFile, copy));
    // The copy still holds the first run's coordinates; track the link afresh beside it.
    {
        HDF5Writer_V6 writer;
        ASSERT_GE(writer.open(copy), 0);
        ASSERT_TRUE(writer.deleteLink(writer.fileId(), FD::DataBehavior));
    }
    result = runner.run(darkDisc(), copy, {link});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    EXPECT_EQ(test::storedCoordinates(copy, coordinates), still);

    // The data file moved alone: the relative path misses, the absolute one is used.
    const QString alone = dir.file(QStringLiteral("alone/session.orvel"));
    ASSERT_TRUE(QDir().mkpath(dir.file(QStringLiteral("alone"))));
    ASSERT_TRUE(QFile::rename(copy, alone));
    {
        HDF5Writer_V6 writer;
        ASSERT_GE(writer.open(alone), 0);
        ASSERT_TRUE(writer.deleteLink(writer.fileId(), FD::DataBehavior));
    }
    result = runner.run(darkDisc(), alone, {link});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    EXPECT_EQ(test::storedCoordinates(alone, coordinates), path());
}

TEST_F(TrackingOperationTest, CancelledRunWritesNothing)
{
    // The process runs on this thread, so the cancel lands exactly when the progress reaches
    // 10 %, while the frames are being decoded ahead.
    const std::unique_ptr<AbstractOperationProcess> process =
        OperationRegistry::instance().find(QStringLiteral("AnimalTracking"))->createProcess();
    QStringList errors;
    bool finished = false;
    QObject::connect(process.get(), &AbstractOperationProcess::sendProgressToView, [&](int percent, bool) {
        if (percent >= 10)
            process->onCancelProcessRequested();
    });
    QObject::connect(process.get(), &AbstractOperationProcess::sendProcessFinished,
                     [&](const QString&, const QStringList&, const QStringList& reported) {
                         errors = reported;
                         finished = true;
                     });
    QVariantMap request = darkDisc();
    request.insert(FD::Filepath, file);
    request.insert(FD::SourceDatapaths, QStringList{link});
    process->onStartProcessRequested(request);
    ASSERT_TRUE(finished);
    EXPECT_EQ(errors, QStringList{QStringLiteral("The operation was cancelled.")});
    EXPECT_FALSE(test::pathExists(file, FD::DataBehavior));
}

} // namespace
} // namespace zarvi
