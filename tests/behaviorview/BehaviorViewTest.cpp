// The behaviour page on a real data file with a real linked video: the frame asked for is
// decoded and shown, the slider moves the signals' cursor and the trail, a click on the
// signals moves the video, and "Measures" opens only once an arena is finished, then runs
// on the regions drawn.
#include "BehaviorTestFiles.h"
#include "common/TempDir.h"

#include "app/behavior/BehaviorPathPlots.h"
#include "app/behavior/BehaviorRegionsPanel.h"
#include "app/behavior/BehaviorSignalsPanel.h"
#include "app/behavior/BehaviorVideoPanel.h"
#include "app/behavior/BehaviorView.h"
#include "app/behavior/TrailItem.h"
#include "app/browser/SignalPlotWidget.h"
#include "behavior/BehaviorRegions.h"
#include "behavior/operations/measures/MeasuresView.h"
#include "datafile/HDF5Reader_V6.h"
#include "definitions/BehaviorViewDefinitions.h"
#include "framework/OperationDialog.h"
#include "roi/ArenaHandler.h"
#include "roi/ZarviGraphicsView.h"
#include "roi/ZonesHandler.h"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QSlider>
#include <QTest>
#include <QToolButton>

#include <opencv2/imgproc.hpp>

#include <gtest/gtest.h>

#include <algorithm>

using namespace zarvi;

namespace {

using BD = BehaviorViewDefinitions;

constexpr int Frames = 60;
const cv::Size videoSize(160, 120);

/// Frame k: a light floor with a dark disc at (20 + 2k, 60).
cv::Point discAt(int k)
{
    return {20 + 2 * k, 60};
}

void drawFrame(int k, cv::Mat& frame)
{
    frame.setTo(cv::Scalar::all(210));
    cv::circle(frame, discAt(k), 6, cv::Scalar::all(20), cv::FILLED);
}

/// Waits, with the event loop turning, until `done` holds; false if it never does.
template <typename Condition> bool waitFor(Condition done)
{
    return QTest::qWaitFor(done, 60000);
}

void sendMouse(ZarviGraphicsView& view, QEvent::Type type, const QPointF& scenePos, Qt::MouseButton button,
               Qt::MouseButtons buttons)
{
    QWidget* target = view.viewport();
    const QPointF position = view.mapFromScene(scenePos);
    QMouseEvent event(type, position, target->mapToGlobal(position), button, buttons, Qt::NoModifier);
    QApplication::sendEvent(target, &event);
}

void click(ZarviGraphicsView& view, const QPointF& at, bool secondOfDouble = false)
{
    sendMouse(view, secondOfDouble ? QEvent::MouseButtonDblClick : QEvent::MouseButtonPress, at,
              Qt::LeftButton, Qt::LeftButton);
    sendMouse(view, QEvent::MouseButtonRelease, at, Qt::LeftButton, Qt::NoButton);
}

void drag(ZarviGraphicsView& view, const QPointF& from, const QPointF& to)
{
    sendMouse(view, QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
    sendMouse(view, QEvent::MouseMove, (from + to) / 2, Qt::NoButton, Qt::LeftButton);
    sendMouse(view, QEvent::MouseMove, to, Qt::NoButton, Qt::LeftButton);
    sendMouse(view, QEvent::MouseButtonRelease, to, Qt::LeftButton, Qt::NoButton);
}

/// Whether the view shows the trail's red at scene pixel `p`.
bool isTrailRed(ZarviGraphicsView& view, const cv::Point& p)
{
    const QImage shown = view.viewport()->grab().toImage();
    const QColor color = shown.pixelColor(view.mapFromScene(QPointF(p.x, p.y)));
    return color.red() > 200 && color.green() < 150 && color.blue() < 150;
}

class BehaviorViewTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        test::writeLinkedVideo(file, dir.file(QStringLiteral("arena.avi")), videoSize, Frames, 10.0,
                               drawFrame);
        std::vector<cv::Point> positions;
        std::vector<double> time;
        for (int k = 0; k < Frames; ++k) {
            positions.push_back(k == 31 ? cv::Point(-1, -1) : discAt(k));
            time.push_back(k / 10.0);
        }
        test::writeCoordinates(file, QStringLiteral("DataBehavior/Camera/Coordinates/Series1/Coordinates1"),
                               positions, time);
        Signal signal;
        for (int i = 0; i < 600; ++i) {
            signal.time.push_back(i / 100.0);
            signal.values.push_back(std::sin(i / 50.0));
        }
        test::writeSignal(file, QStringLiteral("DataAcquisition/FiberPhotometry/Signals/Series1/Biosensor"),
                          signal);

        view.setMessagePresenter([this](const QString& message) { messages << message; });
        view.resize(1200, 800);
        view.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&view));
        view.setFile(file);
        ASSERT_TRUE(waitFor([this] { return view.videoPanel()->shownFrame() == 0; }));
    }

    test::TempDir dir;
    QString file = dir.file(QStringLiteral("session.orvel"));
    BehaviorView view;
    QStringList messages;
};

} // namespace

TEST_F(BehaviorViewTest, TheSliderShowsItsFrameAndMovesTheSignalsCursor)
{
    BehaviorVideoPanel* video = view.videoPanel();
    EXPECT_EQ(view.videoBox()->currentText(), QStringLiteral("DataConverted/Camera/Video/Series1/Video1"));
    EXPECT_EQ(video->frameCount(), Frames);
    EXPECT_EQ(video->view()->imageSize(), QSize(videoSize.width, videoSize.height));
    ASSERT_EQ(view.signalsPanel()->plotWidget()->signalCount(), 1);
    EXPECT_EQ(view.signalsPanel()->cursorTime(), 0.0);

    // Frame 30 shows the disc at (80, 60): dark there, the floor where frame 0 had it.
    video->slider()->setValue(30);
    ASSERT_TRUE(waitFor([video] { return video->shownFrame() == 30; }));
    EXPECT_LT(video->view()->pixelValue(80, 60), 80);
    EXPECT_GT(video->view()->pixelValue(20, 60), 160);
    EXPECT_DOUBLE_EQ(view.signalsPanel()->cursorTime(), 3.0);
    EXPECT_EQ(video->timeLabel()->text(), QStringLiteral("3.00 s  (frame 30 / 59)"));
    EXPECT_EQ(video->trail()->current(), 30);

    EXPECT_TRUE(isTrailRed(*video->view(), discAt(30)));

    // Frame 31 has no tracked position: no disc is drawn and no line runs towards (-1, -1),
    // but the cursor moves on.
    video->slider()->setValue(31);
    ASSERT_TRUE(waitFor([video] { return video->shownFrame() == 31; }));
    EXPECT_EQ(video->trail()->current(), 31);
    EXPECT_FALSE(isTrailRed(*video->view(), discAt(31)));
    for (const cv::Point& towardsCorner : {cv::Point(40, 30), cv::Point(60, 45)})
        EXPECT_FALSE(isTrailRed(*video->view(), towardsCorner));
    EXPECT_DOUBLE_EQ(view.signalsPanel()->cursorTime(), 3.1);

    // A click on the signals at 4.26 s shows the nearest frame, 43, taken at 4.3 s.
    emit view.signalsPanel()->timeClicked(4.26);
    EXPECT_EQ(video->currentFrame(), 43);
    ASSERT_TRUE(waitFor([video] { return video->shownFrame() == 43; }));
    EXPECT_LT(video->view()->pixelValue(discAt(43).x, 60), 80);
    EXPECT_DOUBLE_EQ(view.signalsPanel()->cursorTime(), 4.3);

    // The file read again (as after a run) keeps the frame.
    view.setFile(file);
    EXPECT_EQ(video->currentFrame(), 43);
    ASSERT_TRUE(waitFor([video] { return video->shownFrame() == 43; }));
}

TEST_F(BehaviorViewTest, PlayingGoesForwardFrameByFrameAndStopsAtTheEnd)
{
    BehaviorVideoPanel* video = view.videoPanel();
    video->setFrame(50);
    std::vector<int> frames;
    QObject::connect(video, &BehaviorVideoPanel::frameChanged, &view,
                     [&frames](int frame) { frames.push_back(frame); });
    video->playButton()->click();
    EXPECT_TRUE(video->isPlaying());
    ASSERT_TRUE(waitFor([video] { return !video->isPlaying(); }));
    EXPECT_EQ(video->currentFrame(), Frames - 1);
    EXPECT_FALSE(video->playButton()->isChecked());
    ASSERT_FALSE(frames.empty());
    EXPECT_TRUE(std::is_sorted(frames.begin(), frames.end()));
    EXPECT_EQ(frames.back(), Frames - 1);
    ASSERT_TRUE(waitFor([video] { return video->shownFrame() == Frames - 1; }));
    // Played again from the end, it starts over.
    video->playButton()->click();
    EXPECT_EQ(video->currentFrame(), 0);
    video->playButton()->click();
    EXPECT_FALSE(video->isPlaying());
}

TEST_F(BehaviorViewTest, MeasuresNeedsAFinishedArenaThenRunsOnTheRegionsDrawn)
{
    ZarviGraphicsView& canvas = *view.videoPanel()->view();
    BehaviorRegionsPanel* regions = view.regionsPanel();
    view.findChild<QComboBox*>(QStringLiteral("cb_arenaShape"))->setCurrentText(QStringLiteral("Polygon"));
    regions->drawButton(regions->arenaHandler())->click();
    ASSERT_EQ(canvas.activeHandler(), regions->arenaHandler());
    for (const QPointF& vertex : {QPointF(10, 10), QPointF(150, 10), QPointF(150, 110)})
        click(canvas, vertex);

    // The polygon is not closed yet: no arena, and the operation does not open.
    EXPECT_EQ(view.openOperation(BD::MeasuresOperation), nullptr);
    EXPECT_EQ(messages, QStringList{BD::arenaMissingMessage()});

    click(canvas, QPointF(10, 110));
    click(canvas, QPointF(10, 110), true);
    regions->drawButton(regions->zonesHandler())->click();
    EXPECT_EQ(canvas.activeHandler(), regions->zonesHandler());
    drag(canvas, QPointF(70, 40), QPointF(100, 80));
    ASSERT_EQ(regions->zonesHandler()->rois().size(), 1u);

    // Both were stored on the video's link as they were finished.
    BehaviorRegions stored;
    {
        HDF5Reader_V6 reader;
        ASSERT_GE(reader.open(file), 0);
        QString error;
        ASSERT_TRUE(BehaviorRegionStore::read(reader, view.videoBox()->currentText(), stored, error));
    }
    ASSERT_TRUE(stored.arena.has_value());
    EXPECT_EQ(stored.arena->points, (std::vector<cv::Point>{{10, 10}, {150, 10}, {150, 110}, {10, 110}}));
    ASSERT_EQ(stored.zones.size(), 1u);
    EXPECT_EQ(stored.zones[0].label(), QStringLiteral("Zone1"));
    EXPECT_EQ(stored.zones[0].points, (std::vector<cv::Point>{{70, 40}, {100, 80}}));

    OperationDialog* dialog = view.openOperation(BD::MeasuresOperation);
    ASSERT_NE(dialog, nullptr);
    auto* measures = qobject_cast<MeasuresView*>(dialog->view());
    ASSERT_NE(measures, nullptr);
    EXPECT_EQ(measures->datapaths(), QStringList{view.coordinatesBox()->currentData().toString()});
    EXPECT_TRUE(measures->arenaValidation()->isHidden());
    QSignalSpy finished(measures, &AbstractOperationView::sendProcessFinished);
    ASSERT_TRUE(measures->run());
    ASSERT_TRUE(finished.wait(60000));
    EXPECT_TRUE(finished.first().at(2).toStringList().isEmpty())
        << finished.first().at(2).toString().toStdString();
    // The disc crosses the zone's x from 70 to 100: frames 25 to 40 in it, one visit.
    HDF5Reader_V6 reader;
    ASSERT_GE(reader.open(file), 0);
    const hid_t events =
        reader.openDataset(reader.fileId(), QStringLiteral("DataBehavior/Camera/Events/Series1/Zone1"));
    ASSERT_GE(events, 0);
    std::vector<double> visits;
    ASSERT_TRUE(reader.read(events, visits));
    reader.closeDataset(events);
    ASSERT_EQ(visits.size(), 2u);
    EXPECT_NEAR(visits[0], 2.5, 1e-9);
    EXPECT_NEAR(visits[1], 4.1, 1e-9);
    dialog->close();
}
