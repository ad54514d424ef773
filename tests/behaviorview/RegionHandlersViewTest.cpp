// The behaviour handlers driven by real mouse events on a real view: an arena only once
// finished, zones named by their numbers, the calibration scale and the animal's size.
#include "roigui/RoiCanvas.h"

#include "definitions/BehaviorViewDefinitions.h"
#include "roi/AbstractROI.h"
#include "roi/AnimalHandler.h"
#include "roi/ArenaHandler.h"
#include "roi/CalibrationHandler.h"
#include "roi/ZonesHandler.h"

#include <gtest/gtest.h>

using namespace zarvi;
using zarvi::test::RoiCanvas;

TEST(ArenaHandler, AnUnclosedPolygonIsNoArena)
{
    RoiCanvas canvas;
    ArenaHandler arena(&canvas.view);
    canvas.view.setActiveHandler(&arena);
    ASSERT_TRUE(arena.setShapeKind(RoiKind::Polygon));
    EXPECT_FALSE(arena.setShapeKind(RoiKind::Freehand));

    RoiShape shape;
    QString error;
    EXPECT_FALSE(arena.arena(shape, error));
    EXPECT_EQ(error, QStringLiteral("No Arena found. Draw Arena before moving forward.<br> For polygon type, "
                                    "please don't forget to finish drawing it by double-clicking."));

    // Three vertices clicked, not yet closed by a double-click: still none.
    canvas.click(5, 5);
    canvas.click(30, 5);
    canvas.click(30, 25);
    ASSERT_NE(arena.drawing(), nullptr);
    error.clear();
    EXPECT_FALSE(arena.arena(shape, error));
    EXPECT_EQ(error, BehaviorViewDefinitions::arenaMissingMessage());

    canvas.click(5, 25);
    canvas.secondClick(5, 25);
    error.clear();
    ASSERT_TRUE(arena.arena(shape, error)) << error.toStdString();
    EXPECT_EQ(shape.kind, RoiKind::Polygon);
    EXPECT_EQ(shape.points, (std::vector<cv::Point>{{5, 5}, {30, 5}, {30, 25}, {5, 25}}));
    EXPECT_EQ(arena.rois().front()->label(), QStringLiteral("Arena"));

    // A circle drawn next (away from the polygon, which a press would drag) replaces it.
    ASSERT_TRUE(arena.setShapeKind(RoiKind::Circle));
    canvas.press(35, 15);
    canvas.drag(38, 15);
    canvas.release(38, 15);
    ASSERT_TRUE(arena.arena(shape, error));
    EXPECT_EQ(shape.kind, RoiKind::Circle);
    EXPECT_EQ(arena.rois().size(), 1u);
}

TEST(ZonesHandler, ZonesAreNamedByTheirNumbers)
{
    RoiCanvas canvas;
    ZonesHandler zones(&canvas.view);
    canvas.view.setActiveHandler(&zones);
    auto drawRectangle = [&](double x0, double y0, double x1, double y1) {
        canvas.press(x0, y0);
        canvas.drag(x1, y1);
        canvas.release(x1, y1);
    };
    drawRectangle(2, 2, 8, 8);
    ASSERT_TRUE(zones.setShapeKind(RoiKind::Circle));
    canvas.press(20, 10);
    canvas.drag(24, 10);
    canvas.release(24, 10);
    ASSERT_EQ(zones.rois().size(), 2u);
    EXPECT_EQ(zones.rois()[0]->label(), QStringLiteral("Zone1"));
    EXPECT_EQ(zones.rois()[1]->label(), QStringLiteral("Zone2"));
    EXPECT_EQ(zones.shapes()[1].kind, RoiKind::Circle);

    // Zone1's number is not given again while Zone2 exists.
    zones.removeRoi(zones.rois()[0].get());
    ASSERT_TRUE(zones.setShapeKind(RoiKind::Rectangle));
    drawRectangle(2, 15, 9, 25);
    ASSERT_EQ(zones.rois().size(), 2u);
    EXPECT_EQ(zones.rois()[1]->label(), QStringLiteral("Zone3"));
    EXPECT_FALSE(zones.setShapeKind(RoiKind::Line));
}

TEST(CalibrationAndAnimal, ScaleFromTheLineAndSizeFromTheShape)
{
    RoiCanvas canvas;
    CalibrationHandler calibration(&canvas.view);
    canvas.view.setActiveHandler(&calibration);
    EXPECT_EQ(calibration.pixelsPerCentimetre(6.0), 0.0);
    // 30 pixels along 6 cm: 5 px/cm.
    canvas.press(5, 5);
    canvas.drag(35, 7);
    canvas.release(35, 7);
    EXPECT_EQ(calibration.lineLength(), 30.0);
    EXPECT_DOUBLE_EQ(calibration.pixelsPerCentimetre(6.0), 5.0);
    EXPECT_EQ(calibration.pixelsPerCentimetre(0.0), 0.0);
    EXPECT_EQ(calibration.rois().front()->label(), QStringLiteral("Calibration"));

    AnimalHandler animal(&canvas.view);
    canvas.view.setActiveHandler(&animal);
    EXPECT_EQ(animal.animalSize(), 0);
    // Corners (10, 12) and (17, 15): 8 by 4 pixels, so 8.
    canvas.press(10, 12);
    canvas.drag(17, 15);
    canvas.release(17, 15);
    EXPECT_EQ(animal.animalSize(), 8);
    EXPECT_EQ(animal.rois().front()->label(), QStringLiteral("Animal"));
}
