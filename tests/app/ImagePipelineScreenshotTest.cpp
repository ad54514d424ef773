#include "GuiTestSupport.h"

#include "app/ApplicationStartup.h"
#include "app/MainWindow.h"
#include "app/plugins/DatasetPipeline.h"
#include "app/plugins/DatasetPlugin.h"
#include "common/TempDir.h"
#include "datafile/DemoRecording.h"
#include "framework/DatasetSelector.h"
#include "framework/OperationDialog.h"
#include "image/ImagePipeline.h"
#include "image/ImageViewTestSupport.h"
#include "image/operations/removebackground/RemoveBackgroundView.h"
#include "image/operations/roisignals/ROISignalsView.h"
#include "roi/CellsHandler.h"

#include <QListWidget>

#include <gtest/gtest.h>

using namespace zarvi;

// The image pipeline as a user meets it on the demo recording: the stack selected, three
// cells drawn on the ROI Signals preview, saved and run, and a background region drawn on
// the Remove Background preview; the window and both dialogs are saved as pictures.
TEST(ImagePipelineScreenshot, CellsDrawnOnTheDemoStackGiveSignalsAndABackgroundPreview)
{
    test::TempDir dir;
    const QString file = dir.file("demo.orvel");
    DemoTruth truth;
    QString error;
    ASSERT_TRUE(DemoRecording::write(file, DemoSettings{}, truth, error)) << error.toStdString();

    ApplicationStartup startup(*qApp, {dir.file("zarvi_Temp"), [](const QString&) {}});
    ASSERT_TRUE(startup.prepare());
    MainWindow* window = startup.showMainWindow();
    ASSERT_NE(window, nullptr);
    window->showNormal();
    window->resize(1600, 1000);
    const FileOpenResult opened = window->openFile(file);
    ASSERT_EQ(opened.outcome, OpenOutcome::OpenedData);
    auto* plugin = qobject_cast<DatasetPlugin*>(window->tabs().plugin(opened.tabIndex));
    ASSERT_NE(plugin, nullptr);

    plugin->pipeline()->selector()->select({truth.imageStackPath});
    auto* pipeline = qobject_cast<ImagePipeline*>(plugin->pipeline()->currentPipeline());
    ASSERT_NE(pipeline, nullptr) << "an image stack selected offers the image pipeline";
    for (const char* name :
         {"Binning", "Crop", "Temporal Downsample", "Discard Frames", "Split Images in Series",
          "Remove Background", "Stack Projection", "ROI Signals"})
        EXPECT_TRUE(pipeline->operationNames().contains(QString::fromLatin1(name))) << name;
    test::settle(100);
    EXPECT_TRUE(window->grab().save(QStringLiteral(ZARVI_TEST_BINARY_DIR "/image-pipeline.png")));

    OperationDialog* cellsDialog = pipeline->openOperation(QStringLiteral("ROI Signals"));
    ASSERT_NE(cellsDialog, nullptr);
    auto* cells = qobject_cast<ROISignalsView*>(cellsDialog->view());
    ASSERT_NE(cells, nullptr);
    QStringList messages;
    cells->setMessagePresenter(
        [&messages](const QString&, const QString& message, const QString&, int) { messages << message; });
    ASSERT_TRUE(QTest::qWaitForWindowExposed(cellsDialog));
    ASSERT_TRUE(test::previewSettled(*cells));
    ZarviGraphicsView* input = cells->preview()->inputView();
    ASSERT_EQ(input->imageSize(), QSize(truth.stackWidth, truth.stackHeight));
    test::dragMouse(*input, {40, 40}, {70, 64});
    test::dragMouse(*input, {120, 100}, {150, 130});
    test::dragMouse(*input, {180, 170}, {215, 200});
    ASSERT_EQ(cells->cellsHandler()->rois().size(), 3u);
    QSignalSpy stored(cells, &ROISignalsView::storeUpdated);
    cells->saveCells();
    ASSERT_TRUE(stored.wait(20000));
    EXPECT_TRUE(stored.first().first().toBool());
    EXPECT_EQ(test::child<QListWidget>(*cells, "lw_rois")->count(), 3);
    test::settle(100);
    EXPECT_TRUE(cellsDialog->grab().save(QStringLiteral(ZARVI_TEST_BINARY_DIR "/image-roi-signals.png")));
    const QStringList errors = test::runToEnd(*cells);
    EXPECT_TRUE(errors.isEmpty()) << errors.join(' ').toStdString();
    EXPECT_TRUE(messages.isEmpty()) << messages.join(' ').toStdString();
    cellsDialog->close();

    OperationDialog* backgroundDialog = pipeline->openOperation(QStringLiteral("Remove Background"));
    ASSERT_NE(backgroundDialog, nullptr);
    auto* background = qobject_cast<RemoveBackgroundView*>(backgroundDialog->view());
    ASSERT_NE(background, nullptr);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(backgroundDialog));
    ASSERT_TRUE(test::previewSettled(*background));
    test::dragMouse(*background->preview()->inputView(), {5, 5}, {40, 30});
    ASSERT_TRUE(test::previewSettled(*background));
    EXPECT_EQ(background->preview()->outputView()->imageSize(), QSize(truth.stackWidth, truth.stackHeight));
    test::settle(100);
    EXPECT_TRUE(
        backgroundDialog->grab().save(QStringLiteral(ZARVI_TEST_BINARY_DIR "/image-remove-background.png")));
    backgroundDialog->close();
    EXPECT_EQ(test::openFileCount(), 0);
}
