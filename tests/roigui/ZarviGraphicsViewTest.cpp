// The frame view: fitting, wheel zoom around the cursor, middle-button pan, and the pixel
// under the cursor, with real events on a real view.
#include "RoiCanvas.h"

#include "roi/CellsHandler.h"

#include <QWheelEvent>

#include <gtest/gtest.h>

#include <array>

using namespace zarvi;
using zarvi::test::RoiCanvas;

namespace {

void turnWheel(ZarviGraphicsView& view, const QPointF& where, int eighthsOfDegree)
{
    QWheelEvent wheel(where, view.viewport()->mapToGlobal(where), QPoint(), QPoint(0, eighthsOfDegree),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(view.viewport(), &wheel);
}

} // namespace

TEST(ZarviGraphicsView, FitsTheFrameUntilTheWheelZoomsAroundTheCursor)
{
    RoiCanvas canvas(40, 30, 10); // a view of 400 x 300
    ZarviGraphicsView& view = canvas.view;
    EXPECT_DOUBLE_EQ(view.zoom(), 10.0);
    view.resize(200, 300);
    EXPECT_DOUBLE_EQ(view.zoom(), 5.0); // min(200 / 40, 300 / 30)
    view.resize(400, 300);
    ASSERT_DOUBLE_EQ(view.zoom(), 10.0);

    // One notch in: 10 * 1.25; pixel (12, 9) stays under the cursor (within a screen pixel).
    const QPointF where = canvas.at(12, 9);
    turnWheel(view, where, 120);
    EXPECT_DOUBLE_EQ(view.zoom(), 12.5);
    EXPECT_NEAR(view.scenePosition(where).x(), 12.0, 1 / 12.5);
    EXPECT_NEAR(view.scenePosition(where).y(), 9.0, 1 / 12.5);

    // The middle button drags the picture: 50 screen pixels left shows 4 pixels further right.
    const QPointF centre(200, 150);
    const QPointF before = view.scenePosition(centre);
    canvas.send(QEvent::MouseButtonPress, centre, Qt::MiddleButton, Qt::MiddleButton);
    canvas.send(QEvent::MouseMove, centre - QPointF(50, 0), Qt::NoButton, Qt::MiddleButton);
    canvas.send(QEvent::MouseButtonRelease, centre - QPointF(50, 0), Qt::MiddleButton, Qt::NoButton);
    EXPECT_NEAR(view.scenePosition(centre).x() - before.x(), 4.0, 1 / 12.5);
    EXPECT_NEAR(view.scenePosition(centre).y(), before.y(), 1 / 12.5);

    // Two notches out: 12.5 / 1.25^2. Once zoomed, a resize keeps the zoom.
    turnWheel(view, where, -240);
    EXPECT_DOUBLE_EQ(view.zoom(), 8.0);
    view.resize(300, 300);
    EXPECT_DOUBLE_EQ(view.zoom(), 8.0);
    view.fitToView();
    EXPECT_DOUBLE_EQ(view.zoom(), 7.5);
}

TEST(ZarviGraphicsView, ReportsThePixelUnderTheCursor)
{
    RoiCanvas canvas(40, 30, 10);
    ZarviGraphicsView& view = canvas.view;
    view.resize(500, 300); // zoom 10: the frame spans x 50 to 450 of the view
    std::array<int, 3> last = {0, 0, 0};
    int reports = 0;
    QObject::connect(&view, &ZarviGraphicsView::pixelHovered, [&](int x, int y, int value) {
        last = {x, y, value};
        ++reports;
    });

    canvas.hover(7, 3);
    EXPECT_EQ(last, (std::array<int, 3>{7, 3, RoiCanvas::valueAt(7, 3)}));
    // Pixel (x, y) covers x - 0.5 to x + 0.5.
    canvas.hover(7.4, 2.6);
    EXPECT_EQ(last, (std::array<int, 3>{7, 3, 1307}));
    canvas.hover(39.4, 29.4);
    EXPECT_EQ(last, (std::array<int, 3>{39, 29, 1000 + 39 + 2900}));
    canvas.send(QEvent::MouseMove, QPointF(20, 150), Qt::NoButton, Qt::NoButton);
    EXPECT_EQ(last, (std::array<int, 3>{-1, -1, -1}));
    canvas.hover(0, 0);
    EXPECT_EQ(last, (std::array<int, 3>{0, 0, 1000}));
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(view.viewport(), &leave);
    EXPECT_EQ(last, (std::array<int, 3>{-1, -1, -1}));

    // Still reported while a handler draws.
    CellsHandler cells(&view);
    view.setActiveHandler(&cells);
    canvas.press(5, 5);
    const int before = reports;
    canvas.drag(12, 8);
    EXPECT_EQ(reports, before + 1);
    EXPECT_EQ(last, (std::array<int, 3>{12, 8, 1812}));
    canvas.release(12, 8);
    EXPECT_EQ(cells.rois().size(), 1u);
}
