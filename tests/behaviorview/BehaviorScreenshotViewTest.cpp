// The behaviour page as a user sees it, saved as a picture to look at: a 640 x 480 video
// of an animal in a round arena, its tracked trail, the arena, a zone and the calibration
// stored on the link, and two signals below.
#include "BehaviorTestFiles.h"
#include "common/TempDir.h"

#include "app/behavior/BehaviorPathPlots.h"
#include "app/behavior/BehaviorSignalsPanel.h"
#include "app/behavior/BehaviorVideoPanel.h"
#include "app/behavior/BehaviorView.h"
#include "app/browser/SignalPlotWidget.h"
#include "behavior/BehaviorRegions.h"
#include "definitions/BehaviorViewDefinitions.h"
#include "framework/FigureExport.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QTest>

#include <opencv2/imgproc.hpp>
#include <qcustomplot.h>

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

using namespace zarvi;

namespace {

constexpr int Frames = 300;
constexpr double Rate = 30.0;
const cv::Point arenaCentre(320, 240);
constexpr int arenaRadius = 220;

/// A figure of eight inside the arena, one lap in 10 s.
cv::Point animalAt(int k)
{
    const double phase = 2.0 * std::numbers::pi * k / Frames;
    return {static_cast<int>(std::lround(320 + 150 * std::sin(phase))),
            static_cast<int>(std::lround(240 + 110 * std::sin(2 * phase)))};
}

void drawFrame(int k, cv::Mat& frame)
{
    frame.setTo(cv::Scalar(70, 62, 58));
    cv::circle(frame, arenaCentre, arenaRadius, cv::Scalar(214, 218, 222), cv::FILLED, cv::LINE_AA);
    cv::circle(frame, arenaCentre, arenaRadius, cv::Scalar(120, 120, 120), 3, cv::LINE_AA);
    const cv::Point p = animalAt(k);
    const cv::Point ahead = animalAt(k + 1) - p;
    cv::ellipse(frame, p, cv::Size(16, 9), std::atan2(ahead.y, ahead.x) * 180.0 / std::numbers::pi, 0, 360,
                cv::Scalar(40, 36, 34), cv::FILLED, cv::LINE_AA);
}

} // namespace

TEST(BehaviorViewScreenshot, VideoTrailArenaZoneAndSignals)
{
    test::TempDir dir;
    const QString file = dir.file(QStringLiteral("session.orvel"));
    test::writeLinkedVideo(file, dir.file(QStringLiteral("openfield.avi")), cv::Size(640, 480), Frames, Rate,
                           drawFrame);
    std::vector<cv::Point> positions;
    std::vector<double> time;
    const RoiShape zone{RoiKind::Rectangle, {{380, 120}, {520, 260}}, 1, QStringLiteral("Zone1")};
    for (int k = 0; k < Frames; ++k) {
        // The tracking lost the animal for a few frames.
        positions.push_back(k >= 170 && k < 176 ? cv::Point(-1, -1) : animalAt(k));
        time.push_back(k / Rate);
    }
    test::writeCoordinates(file, QStringLiteral("DataBehavior/Camera/Coordinates/Series1/Coordinates1"),
                           positions, time);
    Signal biosensor, isosbestic;
    biosensor.unit = isosbestic.unit = QStringLiteral("V");
    for (int i = 0; i < 1000; ++i) {
        const double t = i / 100.0;
        const cv::Point p = animalAt(static_cast<int>(t * Rate));
        const bool inZone = p.x >= 380 && p.x <= 520 && p.y >= 120 && p.y <= 260;
        isosbestic.time.push_back(t);
        biosensor.time.push_back(t);
        isosbestic.values.push_back(1.0 + 0.01 * std::sin(7.0 * t));
        biosensor.values.push_back(1.2 + (inZone ? 0.15 : 0.0) + 0.02 * std::sin(3.0 * t));
    }
    test::writeSignal(file, QStringLiteral("DataAcquisition/FiberPhotometry/Signals/Series1/Isosbestic"),
                      isosbestic);
    test::writeSignal(file, QStringLiteral("DataAcquisition/FiberPhotometry/Signals/Series1/Biosensor"),
                      biosensor);
    {
        BehaviorRegions regions;
        regions.arena = RoiShape{RoiKind::Circle,
                                 {arenaCentre, arenaCentre + cv::Point(arenaRadius, 0)},
                                 1,
                                 BehaviorViewDefinitions::arenaName()};
        regions.zones = {zone};
        regions.calibration = RoiShape{RoiKind::Line, {{100, 470}, {540, 470}}, 1, QString()};
        regions.calibrationCentimetres = 44.0;
        HDF5Writer_V6 writer;
        ASSERT_GE(writer.open(file), 0);
        QString error;
        ASSERT_TRUE(BehaviorRegionStore::write(
            writer, QStringLiteral("DataConverted/Camera/Video/Series1/Video1"), regions, error))
            << error.toStdString();
    }

    BehaviorView view;
    view.resize(1600, 1000);
    view.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&view));
    view.setFile(file);
    BehaviorVideoPanel* video = view.videoPanel();
    ASSERT_TRUE(QTest::qWaitFor([video] { return video->shownFrame() == 0; }, 60000));
    video->setFrame(200);
    ASSERT_TRUE(QTest::qWaitFor([video] { return video->shownFrame() == 200; }, 60000));
    EXPECT_EQ(view.signalsPanel()->plotWidget()->signalCount(), 2);
    QTest::qWait(200);

    const QImage shot = view.grab().toImage();
    EXPECT_EQ(shot.size(), QSize(1600, 1000));
    const QString path = QStringLiteral(ZARVI_TEST_BINARY_DIR "/tests/behaviorview/behavior-view.png");
    ASSERT_TRUE(QDir().mkpath(QFileInfo(path).absolutePath()));
    EXPECT_TRUE(shot.save(path));

    // The occupancy heat map, in place of the trajectory.
    view.pathPlots()->setCurrentIndex(1);
    QTest::qWait(100);
    EXPECT_TRUE(view.grab().save(
        QStringLiteral(ZARVI_TEST_BINARY_DIR "/tests/behaviorview/behavior-view-occupancy.png")));

    // Both plots save as figures, with the equal scale kept at the figure's size.
    for (QCustomPlot* plot : {view.pathPlots()->trajectoryPlot(), view.pathPlots()->occupancyPlot()}) {
        ASSERT_EQ(plot->actions().size(), 1);
        EXPECT_EQ(plot->actions().front()->text(), QStringLiteral("Export Figure..."));
        FigureExport::Options options;
        options.path = dir.file(plot->objectName() + QStringLiteral(".png"));
        options.pixels = QSize(900, 600);
        QString error;
        ASSERT_TRUE(FigureExport::write(plot, options, error)) << error.toStdString();
        EXPECT_EQ(QImage(options.path).size(), QSize(900, 600));
    }
}
