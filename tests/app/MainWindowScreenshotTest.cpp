#include "GuiTestSupport.h"

#include "app/ApplicationStartup.h"
#include "app/MainWindow.h"
#include "app/browser/AttributesTable.h"
#include "app/browser/DataFileTreeWidget.h"
#include "app/browser/ImageStackWidget.h"
#include "app/browser/SignalPlotWidget.h"
#include "app/plugins/DatasetPipeline.h"
#include "app/plugins/DatasetPlugin.h"
#include "common/TempDir.h"
#include "datafile/DemoRecording.h"
#include "framework/DatasetSelector.h"

#include <QDir>
#include <QTabWidget>

#include <qcustomplot.h>

#include <gtest/gtest.h>

using namespace zarvi;
using zarvi::test::TempDir;

// The whole program offscreen on the demo recording: start-up, opening, a
// signal plot and the image stack; the window is saved as a picture to look at.
TEST(MainWindowScreenshot, DemoRecordingWithSignalAndImageStack)
{
    TempDir dir;
    const QString file = dir.file("demo.orvel");
    DemoTruth truth;
    QString error;
    ASSERT_TRUE(DemoRecording::write(file, DemoSettings{}, truth, error)) << error.toStdString();

    ApplicationStartup startup(*qApp, {dir.file("zarvi_Temp"), [](const QString&) {}});
    ASSERT_TRUE(startup.prepare());
    MainWindow* window = startup.showMainWindow();
    ASSERT_NE(window, nullptr);
    QStringList messages;
    window->setMessageHandler([&](const QString& text) { messages << text; });
    // The offscreen screen is small; a typical desktop size gives a useful picture.
    window->showNormal();
    window->resize(1600, 1000);

    const FileOpenResult opened = window->openFile(file);
    ASSERT_EQ(opened.outcome, OpenOutcome::OpenedData);
    auto* plugin = qobject_cast<DatasetPlugin*>(window->tabs().plugin(opened.tabIndex));
    ASSERT_NE(plugin, nullptr);
    EXPECT_EQ(window->ui().tw_files->tabText(opened.tabIndex), QStringLiteral("Data (demo.orvel)"));

    EXPECT_EQ(plugin->displayPaths({truth.imageStackPath}), 1);
    auto* stack = qobject_cast<ImageStackWidget*>(plugin->viewTabs()->currentWidget());
    ASSERT_NE(stack, nullptr);
    EXPECT_EQ(stack->frameCount(), truth.stackFrames);
    EXPECT_EQ(stack->frameWidth(), truth.stackWidth);
    ASSERT_TRUE(stack->showFrame(truth.stackFrames / 2));
    EXPECT_GT(*std::max_element(stack->frame().begin(), stack->frame().end()), 0);

    plugin->fileTree()->selectPaths({truth.biosensorPath});
    plugin->attributesTable()->showHistory(*plugin->fileTree(), truth.biosensorPath);
    EXPECT_EQ(plugin->displayPaths({truth.biosensorPath}), 1);
    auto* plot = qobject_cast<SignalPlotWidget*>(plugin->viewTabs()->currentWidget());
    ASSERT_NE(plot, nullptr);
    ASSERT_EQ(plot->signalCount(), 1);
    zarvi::test::settle(200);
    // 600 000 samples are drawn as at most two points per pixel column.
    const auto samples = static_cast<int>(truth.photometryRate * truth.photometryDuration);
    EXPECT_GT(plot->drawnPointCount(0), 100);
    EXPECT_LE(plot->drawnPointCount(0), 2 * plot->plot()->width() + 2);
    EXPECT_LT(plot->drawnPointCount(0), samples / 100);
    EXPECT_EQ(zarvi::test::openFileCount(), 0);
    EXPECT_TRUE(messages.isEmpty());

    const QString signalShot = QStringLiteral(ZARVI_TEST_BINARY_DIR "/main-window.png");
    EXPECT_TRUE(window->grab().save(signalShot));
    plugin->viewTabs()->setCurrentWidget(stack);
    zarvi::test::settle(100);
    EXPECT_TRUE(window->grab().save(QStringLiteral(ZARVI_TEST_BINARY_DIR "/main-window-stack.png")));
    EXPECT_TRUE(QFileInfo(signalShot).size() > 0);

    // The processing page: checking the two photometry signals offers the signal operations.
    plugin->pipeline()->selector()->select({truth.isosbesticPath, truth.biosensorPath});
    ASSERT_NE(plugin->pipeline()->currentPipeline(), nullptr);
    EXPECT_TRUE(plugin->pipeline()->currentPipeline()->operationNames().contains(
        QStringLiteral("Photometry deltaF/F")));
    QMetaObject::invokeMethod(plugin->findChild<QObject*>(QStringLiteral("tb_pipeline")), "click");
    zarvi::test::settle(100);
    EXPECT_TRUE(window->grab().save(QStringLiteral(ZARVI_TEST_BINARY_DIR "/main-window-pipeline.png")));
    startup.shutdown();
}
