#pragma once

#include "ImageStackTestSupport.h"

#include "image/ImageFramePreview.h"
#include "image/ImageOperationView.h"
#include "roi/ZarviGraphicsView.h"

#include <QApplication>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

namespace zarvi::test {

/// `frames` frames of `width` x `height` pixels, pixel (x, y) of frame k holding
/// 1000 k + 10 y + x, so every value says where it came from.
inline std::vector<cv::Mat> numberedFrames(int frames, int width, int height)
{
    std::vector<cv::Mat> stack;
    for (int k = 0; k < frames; ++k) {
        cv::Mat frame(height, width, CV_16U);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                frame.at<std::uint16_t>(y, x) = static_cast<std::uint16_t>(1000 * k + 10 * y + x);
        stack.push_back(frame);
    }
    return stack;
}

template <typename Widget> Widget* child(const QWidget& view, const char* name)
{
    Widget* widget = view.findChild<Widget*>(QString::fromLatin1(name));
    EXPECT_NE(widget, nullptr) << name;
    return widget;
}

/// Sets the view up on `paths` of `file`, its messages collected in `messages` (a message box
/// would wait for a click).
inline void setUpView(AbstractOperationView& view, const QString& file, const QStringList& paths,
                      QStringList& messages)
{
    view.setMessagePresenter(
        [&messages](const QString&, const QString& message, const QString&, int) { messages << message; });
    view.setupProcess(file, paths);
}

/// Returns once the preview shows its frame, and its result as the fields are now.
inline void waitForPreview(const ImageOperationView& view)
{
    while (view.preview()->isBusy()) {
        QSignalSpy updated(view.preview(), &ImageFramePreview::previewUpdated);
        ASSERT_TRUE(updated.wait(60000));
    }
}

/// Shows the view offscreen at the size its dialog opens at, with its first frame drawn.
inline void showView(ImageOperationView& view)
{
    view.resize(view.openingSize());
    view.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&view));
    waitForPreview(view);
}

/// Sets the view up on `datapaths` of `file` and shows it with its first frame drawn.
inline void openView(ImageOperationView& view, const QString& file, const QStringList& datapaths)
{
    view.setupProcess(file, datapaths);
    showView(view);
}

/// Waits until the preview has read and computed the current frame again.
inline bool previewSettled(const ImageOperationView& view)
{
    return QTest::qWaitFor([&view] { return !view.preview()->isBusy(); }, 20000);
}

/// Runs the view and waits for the process; the errors it reported (none on success).
inline QStringList runToEnd(AbstractOperationView& view)
{
    QSignalSpy finished(&view, &AbstractOperationView::sendProcessFinished);
    EXPECT_TRUE(view.run());
    if (finished.isEmpty() && !finished.wait(60000))
        return {QStringLiteral("the run did not finish")};
    return finished.first().at(2).toStringList();
}

/// A real mouse event at a scene position of `view`, sent to its viewport as the system
/// sends it.
inline void sendMouse(ZarviGraphicsView& view, QEvent::Type type, const QPointF& scenePos,
                      Qt::MouseButton button, Qt::MouseButtons buttons)
{
    QWidget* target = view.viewport();
    const QPointF position = view.mapFromScene(scenePos);
    QMouseEvent event(type, position, target->mapToGlobal(position), button, buttons, Qt::NoModifier);
    QApplication::sendEvent(target, &event);
}

/// A left-button drag from one pixel to another, through the pixel halfway.
inline void dragMouse(ZarviGraphicsView& view, const QPointF& from, const QPointF& to)
{
    sendMouse(view, QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
    sendMouse(view, QEvent::MouseMove, (from + to) / 2, Qt::NoButton, Qt::LeftButton);
    sendMouse(view, QEvent::MouseMove, to, Qt::NoButton, Qt::LeftButton);
    sendMouse(view, QEvent::MouseButtonRelease, to, Qt::LeftButton, Qt::NoButton);
}

} // namespace zarvi::test
