#pragma once

#include "roi/ZarviGraphicsView.h"

#include <QApplication>
#include <QMouseEvent>
#include <QTest>

#include <vector>

namespace zarvi::test {

/// A ZarviGraphicsView shown offscreen with a frame whose pixel (x, y) holds
/// 1000 + x + 100 y, sized so that one image pixel spans `zoom` screen pixels, and real mouse
/// events sent to its viewport at scene positions. (QTest's button-less move would move the
/// system cursor instead of sending an event, so every event is sent here alike.)
class RoiCanvas
{
public:
    explicit RoiCanvas(int width = 40, int height = 30, int zoom = 10)
    {
        std::vector<std::uint16_t> frame(static_cast<std::size_t>(width) * height);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                frame[static_cast<std::size_t>(y) * width + x] = static_cast<std::uint16_t>(valueAt(x, y));
        view.setFrame(std::move(frame), width, height, 16);
        view.resize(width * zoom, height * zoom);
        view.show();
        static_cast<void>(QTest::qWaitForWindowExposed(&view));
    }

    static int valueAt(int x, int y) { return 1000 + x + 100 * y; }

    QPoint at(double x, double y) const { return view.mapFromScene(QPointF(x, y)); }
    void press(double x, double y)
    {
        send(QEvent::MouseButtonPress, at(x, y), Qt::LeftButton, Qt::LeftButton);
    }
    /// A move with the left button held.
    void drag(double x, double y) { send(QEvent::MouseMove, at(x, y), Qt::NoButton, Qt::LeftButton); }
    /// A move with no button held.
    void hover(double x, double y) { send(QEvent::MouseMove, at(x, y), Qt::NoButton, Qt::NoButton); }
    void release(double x, double y)
    {
        send(QEvent::MouseButtonRelease, at(x, y), Qt::LeftButton, Qt::NoButton);
    }
    void click(double x, double y)
    {
        press(x, y);
        release(x, y);
    }
    /// The second click of a double-click, as the system delivers it: the double-click
    /// event in place of the press, then the release.
    void secondClick(double x, double y)
    {
        send(QEvent::MouseButtonDblClick, at(x, y), Qt::LeftButton, Qt::LeftButton);
        release(x, y);
    }
    void send(QEvent::Type type, const QPointF& viewportPos, Qt::MouseButton button, Qt::MouseButtons buttons)
    {
        QWidget* target = view.viewport();
        QMouseEvent event(type, viewportPos, target->mapToGlobal(viewportPos), button, buttons,
                          Qt::NoModifier);
        QApplication::sendEvent(target, &event);
    }

    ZarviGraphicsView view;
};

} // namespace zarvi::test
