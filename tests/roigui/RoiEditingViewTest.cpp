// Editing, naming, removing and exchanging regions of interest through their handlers, on a
// real view with real mouse and key events.
#include "RoiCanvas.h"

#include "roi/AbstractROI.h"
#include "roi/CellsHandler.h"
#include "roi/RegionHandler.h"

#include <gtest/gtest.h>

#include <memory>

using namespace zarvi;
using zarvi::test::RoiCanvas;

namespace {

using Points = std::vector<cv::Point>;

void drawRectangle(RoiCanvas& canvas, int x0, int y0, int x1, int y1)
{
    canvas.press(x0, y0);
    canvas.drag(x1, y1);
    canvas.release(x1, y1);
}

} // namespace

TEST(RoiEditing, AnInvalidDragIsRestoredExactlyFromTheStoredPoints)
{
    RoiCanvas canvas; // 40 x 30
    CellsHandler cells(&canvas.view);
    ASSERT_TRUE(cells.setShapeKind(RoiKind::Polygon));
    canvas.view.setActiveHandler(&cells);
    std::vector<RoiShape> changes;
    QObject::connect(&cells, &AbstractROIHandler::roiChanged,
                     [&](const RoiShape& s) { changes.push_back(s); });

    canvas.click(5, 5);
    canvas.click(15, 6);
    canvas.click(12, 14);
    canvas.secondClick(12, 14);
    ASSERT_EQ(cells.rois().size(), 1u);
    const AbstractROI& cell = *cells.rois()[0];

    // Dragged by whole pixels: 14.6 rounds to 15, so (10, 8) to (15, 9) to (20, 12) is (+10, +4).
    canvas.press(10, 8);
    canvas.drag(14.6, 9);
    canvas.drag(20, 12);
    canvas.release(20, 12);
    const Points moved = {{15, 9}, {25, 10}, {22, 18}};
    EXPECT_EQ(cells.shapes()[0].points, moved);
    ASSERT_EQ(changes.size(), 1u);
    EXPECT_EQ(changes[0].points, moved);
    EXPECT_TRUE(cell.isSelected());

    // Off the right edge: (+15, 0) puts a vertex at x = 40, outside; the release restores it.
    canvas.press(20, 12);
    canvas.drag(35, 12);
    EXPECT_EQ(cell.points(), QList<QPoint>({{30, 9}, {40, 10}, {37, 18}}));
    canvas.release(35, 12);
    EXPECT_EQ(cells.shapes()[0].points, moved);
    EXPECT_EQ(changes.size(), 1u);

    // Out and back in before the release is a valid edit: (+1, +1).
    canvas.press(20, 12);
    canvas.drag(35, 12);
    canvas.drag(21, 13);
    canvas.release(21, 13);
    EXPECT_EQ(cells.shapes()[0].points, Points({{16, 10}, {26, 11}, {23, 19}}));
    EXPECT_EQ(changes.size(), 2u);
}

TEST(RoiEditing, RemovingAndClearingGoThroughTheHandler)
{
    RoiCanvas canvas;
    CellsHandler cells(&canvas.view);
    canvas.view.setActiveHandler(&cells);
    std::vector<int> removed;
    QObject::connect(&cells, &AbstractROIHandler::roiRemoved,
                     [&](const RoiShape& s) { removed.push_back(s.number); });
    drawRectangle(canvas, 5, 5, 10, 10);
    drawRectangle(canvas, 20, 5, 25, 10);
    drawRectangle(canvas, 5, 20, 10, 25);

    // A click selects the second cell; Delete removes it alone.
    canvas.click(22, 7);
    EXPECT_TRUE(cells.rois()[1]->isSelected());
    EXPECT_FALSE(cells.rois()[0]->isSelected());
    QTest::keyClick(&canvas.view, Qt::Key_Delete);
    EXPECT_EQ(removed, std::vector<int>({2}));
    ASSERT_EQ(cells.rois().size(), 2u);
    EXPECT_EQ(canvas.view.scene()->items().size(), 1 + 2 * 2); // the frame, and each cell with its label

    // Escape drops a cell being drawn.
    canvas.press(30, 20);
    canvas.drag(35, 25);
    QTest::keyClick(&canvas.view, Qt::Key_Escape);
    canvas.release(35, 25);
    EXPECT_EQ(cells.rois().size(), 2u);

    cells.clear();
    EXPECT_EQ(removed, std::vector<int>({2, 3, 1}));
    EXPECT_EQ(canvas.view.scene()->items().size(), 1);
}

TEST(RoiEditing, ShapesGoInAndComeOutAsRoiShapes)
{
    RoiCanvas canvas; // 40 x 30, no handler active: shapes can be added all the same
    CellsHandler cells(&canvas.view);
    QString error;
    const RoiShape circle{RoiKind::Circle, {{20, 15}, {23, 19}}, 7, QString()};
    ASSERT_TRUE(cells.addShape(circle, error)) << error.toStdString();
    ASSERT_EQ(cells.shapes().size(), 1u);
    EXPECT_EQ(cells.shapes()[0].points, circle.points);
    EXPECT_EQ(cells.shapes()[0].number, 7);
    EXPECT_EQ(cells.rois()[0]->label(), QStringLiteral("7"));

    // A taken or missing number gets the next one.
    ASSERT_TRUE(cells.addShape({RoiKind::Rectangle, {{2, 2}, {6, 6}}, 7, QString()}, error));
    ASSERT_TRUE(
        cells.addShape({RoiKind::Freehand, {{30, 2}, {35, 3}, {33, 8}}, 0, QStringLiteral("Glia")}, error));
    EXPECT_EQ(cells.shapes()[1].number, 8);
    EXPECT_EQ(cells.shapes()[2].number, 9);
    EXPECT_EQ(cells.shapes()[2].name, QStringLiteral("Glia"));

    EXPECT_FALSE(cells.addShape({RoiKind::Line, {{2, 2}, {6, 2}}, 0, QString()}, error));
    EXPECT_TRUE(error.contains(QStringLiteral("<b>Line</b>")));
    EXPECT_FALSE(cells.addShape({RoiKind::Rectangle, {{30, 20}, {40, 25}}, 0, QString()}, error));
    EXPECT_TRUE(error.contains(QStringLiteral("40 x 30")));
    EXPECT_FALSE(cells.addShape({RoiKind::Rectangle, {{5, 5}, {5, 20}}, 0, QString()}, error));
    EXPECT_TRUE(error.contains(QStringLiteral("no area")));
    EXPECT_FALSE(cells.addShape({RoiKind::Polygon, {{5, 5}, {9, 9}}, 0, QString()}, error));
    EXPECT_FALSE(cells.addShape({RoiKind::Polygon, {{5, 5}, {9, 9}, {13, 13}}, 0, QString()}, error));
    EXPECT_EQ(cells.rois().size(), 3u);
}

TEST(RoiEditing, TheOneRegionIsReplacedAndCanBeHeldSquare)
{
    RoiCanvas canvas;
    RegionHandler crop(&canvas.view, {RoiKind::Rectangle}, QStringLiteral("Crop"));
    canvas.view.setActiveHandler(&crop);
    int added = 0;
    int removed = 0;
    QObject::connect(&crop, &AbstractROIHandler::roiAdded, [&] { ++added; });
    QObject::connect(&crop, &AbstractROIHandler::roiRemoved, [&] { ++removed; });
    crop.setSquare(true);

    // The side is the smaller of |dx| and |dy|, taken from the press towards the cursor.
    drawRectangle(canvas, 5, 5, 20, 12);
    EXPECT_EQ(crop.region().points, Points({{5, 5}, {12, 12}}));
    EXPECT_EQ(crop.region().name, QStringLiteral("Crop"));
    drawRectangle(canvas, 30, 25, 26, 5);
    EXPECT_EQ(crop.region().points, Points({{30, 25}, {26, 21}}));
    EXPECT_EQ(crop.rois().size(), 1u);
    EXPECT_EQ(added, 2);
    EXPECT_EQ(removed, 1);

    // A stray click keeps the region; a locked handler draws nothing.
    canvas.click(5, 25);
    EXPECT_EQ(crop.region().points, Points({{30, 25}, {26, 21}}));
    crop.setLocked(true);
    drawRectangle(canvas, 5, 5, 15, 15);
    EXPECT_EQ(crop.region().points, Points({{30, 25}, {26, 21}}));

    // A polygon region counts only once closed.
    RegionHandler background(&canvas.view, {RoiKind::Polygon}, QString());
    canvas.view.setActiveHandler(&background);
    canvas.click(5, 5);
    canvas.click(15, 5);
    canvas.click(15, 15);
    EXPECT_FALSE(background.hasRegion());
    canvas.secondClick(15, 15);
    EXPECT_TRUE(background.hasRegion());
}

TEST(RoiEditing, OnlyTheActiveHandlerTakesTheMouse)
{
    RoiCanvas canvas;
    CellsHandler cells(&canvas.view);
    RegionHandler background(&canvas.view, {RoiKind::Rectangle, RoiKind::Circle}, QString());
    canvas.view.setActiveHandler(&cells);
    drawRectangle(canvas, 5, 5, 15, 15);
    canvas.view.setActiveHandler(&background);
    EXPECT_FALSE(cells.isActive());
    EXPECT_TRUE(background.isActive());

    // A press on the cell now begins the background region instead of dragging the cell.
    drawRectangle(canvas, 10, 10, 30, 25);
    EXPECT_EQ(background.region().points, Points({{10, 10}, {30, 25}}));
    EXPECT_EQ(cells.shapes()[0].points, Points({{5, 5}, {15, 15}}));

    canvas.view.clearActiveHandler();
    drawRectangle(canvas, 32, 5, 38, 10);
    EXPECT_EQ(cells.rois().size(), 1u);
    EXPECT_EQ(background.region().points, Points({{10, 10}, {30, 25}}));
}

TEST(RoiEditing, ViewAndHandlerMayEndInEitherOrder)
{
    // The view first: the handler keeps its ROIs, out of any scene.
    auto canvas = std::make_unique<RoiCanvas>();
    CellsHandler cells(&canvas->view);
    canvas->view.setActiveHandler(&cells);
    drawRectangle(*canvas, 5, 5, 15, 15);
    canvas.reset();
    ASSERT_EQ(cells.rois().size(), 1u);
    EXPECT_EQ(cells.rois()[0]->scene(), nullptr);
    EXPECT_EQ(cells.view(), nullptr);
    cells.clear();

    // The handler first: its ROIs leave the scene and the view forgets it.
    RoiCanvas other;
    {
        CellsHandler shortLived(&other.view);
        other.view.setActiveHandler(&shortLived);
        drawRectangle(other, 5, 5, 15, 15);
    }
    EXPECT_EQ(other.view.activeHandler(), nullptr);
    EXPECT_EQ(other.view.scene()->items().size(), 1);

    // A handler owned by its view goes with it.
    auto owner = std::make_unique<RoiCanvas>();
    auto* owned = new CellsHandler(&owner->view, &owner->view);
    owner->view.setActiveHandler(owned);
    drawRectangle(*owner, 5, 5, 15, 15);
    EXPECT_EQ(owned->rois().size(), 1u);
    owner.reset();
}
