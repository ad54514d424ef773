#pragma once

#include "image/ImageOperationView.h"
#include "roi/ZarviGraphicsView.h"

#include <QApplication>
#include <QMouseEvent>
#include <QTest>

#include <gtest/gtest.h>

namespace zarvi::test {

/// Shows an image operation view offscreen at its opening size, on the datasets given,
/// and waits until its preview has shown the first frame.
inline void openView(ImageOperationView& view, const QString& file, const QStringList& datapaths)
{
    view.setupProcess(file, datapaths);
    view.resize(view.openingSize());
    view.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&view));
    ASSERT_TRUE(QTest::qWaitFor([&view] { return !view.preview()->isBusy(); }, 20000));
}

/// Waits until the preview has read and computed the current frame again.
inline bool previewSettled(const ImageOperationView& view)
{
    return QTest::qWaitFor([&view] { return !view.preview()->isBusy(); }, 20000);
}

/// Real mouse events on a view's viewport at image pixel positions (scene points), as the
/// user's hand gives them: a press, moves with the button held, and a release.
inline void dragOn(ZarviGraphicsView& view, const QPointF& from, const QPointF& to)
{
    const auto send = [&view](QEvent::Type type, const QPointF& scenePos, Qt::MouseButton button,
                              Qt::MouseButtons buttons) {
        QWidget* target = view.viewport();
        const QPointF position = view.mapFromScene(scenePos);
        QMouseEvent event(type, position, target->mapToGlobal(position), button, buttons, Qt::NoModifier);
        QApplication::sendEvent(target, &event);
    };
    send(QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
    send(QEvent::MouseMove, (from + to) / 2.0, Qt::NoButton, Qt::LeftButton);
    send(QEvent::MouseMove, to, Qt::NoButton, Qt::LeftButton);
    send(QEvent::MouseButtonRelease, to, Qt::LeftButton, Qt::NoButton);
}

} // namespace zarvi::test
