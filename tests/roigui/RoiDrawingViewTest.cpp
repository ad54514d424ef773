// Drawing regions of interest with real mouse events on a real view: the drawing rule of
// each shape, positions rounded to pixels, and moves outside the image ignored.
#include "RoiCanvas.h"

#include "roi/AbstractROI.h"
#include "roi/CellsHandler.h"
#include "roi/LineROI.h"
#include "roi/PointROI.h"
#include "roi/PolygonROI.h"
#include "roi/RegionHandler.h"

#include <QGraphicsSimpleTextItem>
#include <QPainter>

#include <gtest/gtest.h>

#include <numbers>

using namespace zarvi;
using zarvi::test::RoiCanvas;

namespace {

std::vector<cv::Point> line(int x0, int y0, int x1, int y1)
{
    return {{x0, y0}, {x1, y1}};
}

} // namespace

TEST(RoiDrawing, LineKeepsToTheNearerAxisAndOnlyGoesRightOrDown)
{
    RoiCanvas canvas;
    RegionHandler handler(&canvas.view, {RoiKind::Line}, QStringLiteral("Calibration"));
    canvas.view.setActiveHandler(&handler);

    // Left of or above the start: the end does not move, before or after it left the start.
    canvas.press(10, 10);
    canvas.drag(5, 14);
    canvas.drag(14, 6);
    EXPECT_EQ(handler.drawing()->points(), QList<QPoint>({{10, 10}, {10, 10}}));
    canvas.drag(20, 10);
    canvas.drag(8, 20);
    canvas.drag(25, 9);
    canvas.release(25, 9);
    EXPECT_EQ(handler.region().points, line(10, 10, 20, 10));

    // (A press on the line would drag it: each case starts afresh.)
    // dx 26, dy 15: about 30 degrees below the horizontal, so horizontal, 26 pixels long.
    handler.clear();
    canvas.press(5, 5);
    canvas.drag(31, 20);
    canvas.release(31, 20);
    EXPECT_EQ(handler.region().points, line(5, 5, 31, 5));
    EXPECT_EQ(handler.rois().front()->measure(), 26.0);

    // dx 15, dy 26: about 60 degrees, so vertical.
    handler.clear();
    canvas.press(5, 2);
    canvas.drag(20, 28);
    canvas.release(20, 28);
    EXPECT_EQ(handler.region().points, line(5, 2, 5, 28));
    EXPECT_EQ(handler.rois().front()->measure(), 26.0);

    // Exactly 45 degrees keeps the cursor's point; the measure is the larger difference.
    handler.clear();
    canvas.press(5, 5);
    canvas.drag(17, 17);
    canvas.release(17, 17);
    EXPECT_EQ(handler.region().points, line(5, 5, 17, 17));
    EXPECT_EQ(handler.rois().front()->measure(), 12.0);
    ASSERT_EQ(handler.rois().size(), 1u);

    const LineROI calibration(40, 30);
    EXPECT_EQ(calibration.label(), QStringLiteral("Calibration"));
}

TEST(RoiDrawing, LineTicksRunAcrossItsEnds)
{
    RoiCanvas canvas;
    RegionHandler handler(&canvas.view, {RoiKind::Line}, QStringLiteral("Calibration"));
    canvas.view.setActiveHandler(&handler);

    // The scene rendered at 10 screen pixels per image pixel: image pixel p is centred on
    // screen pixel 10 p + 5. The line's pen is cyan; the frame is grey (red = green = blue).
    const auto isCyan = [&](double x, double y) {
        QImage image(400, 300, QImage::Format_RGB32);
        QPainter painter(&image);
        canvas.view.scene()->render(&painter, QRectF(0, 0, 400, 300), canvas.view.sceneRect());
        painter.end();
        const QColor c = image.pixelColor(qRound(10 * x + 5), qRound(10 * y + 5));
        return c.blue() - c.red() > 100;
    };

    // Horizontal: vertical ticks of +-5 pixels at x = 5 and x = 30.
    canvas.press(5, 15);
    canvas.drag(30, 17);
    canvas.release(30, 17);
    ASSERT_EQ(handler.region().points, line(5, 15, 30, 15));
    EXPECT_TRUE(isCyan(5, 11));
    EXPECT_TRUE(isCyan(30, 19));
    EXPECT_FALSE(isCyan(8, 11));
    EXPECT_FALSE(isCyan(5, 22));

    // Vertical: horizontal ticks at y = 4 and y = 25.
    canvas.press(20, 4);
    canvas.drag(21, 25);
    canvas.release(21, 25);
    ASSERT_EQ(handler.region().points, line(20, 4, 20, 25));
    EXPECT_TRUE(isCyan(16, 4));
    EXPECT_TRUE(isCyan(24, 25));
    EXPECT_FALSE(isCyan(16, 8));
    EXPECT_FALSE(isCyan(30, 4));
}

TEST(RoiDrawing, RectangleStopsAtTheLastPixelInsideTheImage)
{
    RoiCanvas canvas; // 40 x 30: x from 1 to 39 and y from 1 to 29 lie strictly inside
    CellsHandler cells(&canvas.view);
    canvas.view.setActiveHandler(&cells);

    canvas.press(30, 20);
    canvas.drag(35, 25);
    canvas.drag(39.3, 29.3); // rounds to (39, 29), inside
    canvas.drag(39.7, 28);   // rounds to x = 40: outside
    canvas.drag(45, 35);
    canvas.release(45, 35);
    ASSERT_EQ(cells.rois().size(), 1u);
    EXPECT_EQ(cells.shapes()[0].points, line(30, 20, 39, 29));

    canvas.press(5, 5);
    canvas.drag(1, 2);
    canvas.drag(0, 0);
    canvas.drag(-3, 1);
    canvas.release(-3, 1);
    ASSERT_EQ(cells.rois().size(), 2u);
    EXPECT_EQ(cells.shapes()[1].points, line(5, 5, 1, 2));

    // A press outside the image, or a click without a drag, makes no ROI.
    canvas.press(40, 10);
    canvas.drag(30, 10);
    canvas.release(30, 10);
    canvas.click(20, 15);
    EXPECT_EQ(cells.rois().size(), 2u);
}

TEST(RoiDrawing, PolygonClosesOnDoubleClickWithoutRepeatingItsLastVertex)
{
    RoiCanvas canvas;
    CellsHandler cells(&canvas.view);
    ASSERT_TRUE(cells.setShapeKind(RoiKind::Polygon));
    canvas.view.setActiveHandler(&cells);
    int added = 0;
    QObject::connect(&cells, &AbstractROIHandler::roiAdded, [&](const RoiShape&) { ++added; });

    canvas.click(5, 5);
    canvas.hover(12, 5);
    canvas.click(20, 5);
    canvas.click(20, 20);
    canvas.secondClick(20, 20);
    ASSERT_EQ(cells.rois().size(), 1u);
    EXPECT_EQ(added, 1);
    EXPECT_EQ(cells.shapes()[0].points, std::vector<cv::Point>({{5, 5}, {20, 5}, {20, 20}}));
    EXPECT_EQ(cells.rois()[0]->measure(), 15.0 * 15.0 / 2.0);

    // A double-click away from the last vertex adds its point before closing.
    canvas.click(25, 5);
    canvas.click(35, 5);
    canvas.secondClick(30, 25);
    ASSERT_EQ(cells.rois().size(), 2u);
    EXPECT_EQ(cells.shapes()[1].points, std::vector<cv::Point>({{25, 5}, {35, 5}, {30, 25}}));
}

TEST(RoiDrawing, PolygonShowsTheHoverCursorOnlyOnceClosed)
{
    RoiCanvas canvas;
    PolygonROI polygon(40, 30);
    ASSERT_TRUE(polygon.startDrawing(QPointF(5, 5)));
    ASSERT_TRUE(polygon.addVertex(QPointF(30, 5)));
    ASSERT_TRUE(polygon.addVertex(QPointF(30, 25)));
    polygon.setState(AbstractROI::Idle);
    canvas.view.scene()->addItem(&polygon);
    canvas.hover(25, 10);
    EXPECT_EQ(polygon.state(), AbstractROI::Idle);
    EXPECT_FALSE(polygon.hasCursor());

    polygon.close(QPointF(30, 25));
    canvas.hover(26, 10);
    EXPECT_EQ(polygon.state(), AbstractROI::Hovered);
    EXPECT_EQ(polygon.cursor().shape(), Qt::SizeAllCursor);
    canvas.hover(38, 28);
    EXPECT_EQ(polygon.state(), AbstractROI::Idle);
    canvas.view.scene()->removeItem(&polygon);
}

TEST(RoiDrawing, CircleAndFreehandFollowTheCursor)
{
    RoiCanvas canvas;
    CellsHandler cells(&canvas.view);
    canvas.view.setActiveHandler(&cells);

    // Centre (20, 15), rim (23, 19): radius 5 by the 3-4-5 triangle.
    ASSERT_TRUE(cells.setShapeKind(RoiKind::Circle));
    canvas.press(20, 15);
    canvas.drag(23, 19);
    canvas.release(23, 19);
    ASSERT_EQ(cells.rois().size(), 1u);
    EXPECT_EQ(cells.shapes()[0].points, line(20, 15, 23, 19));
    EXPECT_DOUBLE_EQ(cells.rois()[0]->measure(), 25.0 * std::numbers::pi);

    // Each new pixel joins the path; the same pixel twice and pixels outside do not.
    ASSERT_TRUE(cells.setShapeKind(RoiKind::Freehand));
    canvas.press(10, 10);
    canvas.drag(11.2, 10);
    canvas.drag(10.8, 10.3);
    canvas.drag(14, 10);
    canvas.drag(14, -2);
    canvas.drag(12, 14);
    canvas.release(12, 14);
    ASSERT_EQ(cells.rois().size(), 2u);
    EXPECT_EQ(cells.shapes()[1].points, std::vector<cv::Point>({{10, 10}, {11, 10}, {14, 10}, {12, 14}}));
    EXPECT_FALSE(cells.setShapeKind(RoiKind::Line));
}

TEST(RoiDrawing, PositionsRoundToTheNearestPixelHalvesAwayFromZero)
{
    EXPECT_EQ(AbstractROI::toPixel(QPointF(2.5, 3.5)), QPoint(3, 4));
    EXPECT_EQ(AbstractROI::toPixel(QPointF(2.49, 3.51)), QPoint(2, 4));
    EXPECT_EQ(AbstractROI::toPixel(QPointF(-2.5, -0.5)), QPoint(-3, -1));

    PointROI point(40, 30);
    ASSERT_TRUE(point.startDrawing(QPointF(2.5, 3.5)));
    EXPECT_EQ(point.points(), QList<QPoint>({{3, 4}}));
    // 0.5 rounds to pixel 1, inside; -0.4 rounds to pixel 0, on the border, refused.
    EXPECT_TRUE(point.drawTo(QPointF(0.5, 0.5)));
    EXPECT_EQ(point.points(), QList<QPoint>({{1, 1}}));
    EXPECT_FALSE(point.drawTo(QPointF(-0.4, 5)));
    EXPECT_EQ(point.points(), QList<QPoint>({{1, 1}}));
}

TEST(RoiDrawing, LabelsShowTheNameElseTheNumber)
{
    RoiCanvas canvas;
    CellsHandler cells(&canvas.view);
    canvas.view.setActiveHandler(&cells);
    for (int x : {5, 15, 25}) {
        canvas.press(x, 5);
        canvas.drag(x + 5, 10);
        canvas.release(x + 5, 10);
    }
    ASSERT_EQ(cells.rois().size(), 3u);
    const auto shownText = [](const AbstractROI& roi) {
        const auto* label = qgraphicsitem_cast<QGraphicsSimpleTextItem*>(roi.childItems().value(0));
        return label ? label->text() : QString();
    };
    EXPECT_EQ(shownText(*cells.rois()[0]), QStringLiteral("1"));
    EXPECT_EQ(shownText(*cells.rois()[2]), QStringLiteral("3"));
    EXPECT_TRUE(cells.setRoiName(cells.rois()[1].get(), QStringLiteral("Soma")));
    EXPECT_EQ(shownText(*cells.rois()[1]), QStringLiteral("Soma"));
    EXPECT_EQ(cells.shapes()[1].label(), QStringLiteral("Soma"));
    EXPECT_TRUE(cells.setRoiName(cells.rois()[1].get(), QString()));
    EXPECT_EQ(shownText(*cells.rois()[1]), QStringLiteral("2"));

    // A removed cell's number is not given to the next one.
    ASSERT_TRUE(cells.removeRoi(cells.rois()[0].get()));
    canvas.press(5, 20);
    canvas.drag(10, 25);
    canvas.release(10, 25);
    EXPECT_EQ(cells.rois().back()->number(), 4);

    PointROI point(40, 30);
    EXPECT_EQ(point.labelAnchor(), QPointF(0, 0));
    point.setAllPoints({{12, 9}});
    EXPECT_EQ(point.labelAnchor(), QPointF(7, 4));
}
