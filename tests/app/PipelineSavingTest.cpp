#include "GuiTestSupport.h"

#include "app/MainWindow.h"
#include "app/browser/DataFileTreeWidget.h"
#include "app/plugins/DatasetPlugin.h"
#include "app/plugins/PipelineSaving.h"
#include "common/TempDir.h"
#include "datafile/DemoRecording.h"
#include "framework/OperationRunner.h"
#include "framework/PipelineFile.h"
#include "framework/PipelineSummaryDialog.h"

#include <QAction>
#include <QFile>
#include <QLabel>
#include <QMenu>
#include <QPushButton>

#include <gtest/gtest.h>

using namespace zarvi;

TEST(PipelineSaving, TheTreeMenuSavesTheStepsOfAResultAfterShowingThem)
{
    test::TempDir dir;
    const QString file = dir.file(QStringLiteral("saving.orvel"));
    DemoSettings settings;
    settings.photometryDuration = 5.0;
    settings.stackHeight = settings.stackWidth = 16;
    settings.stackFrames = settings.videoFrames = 2;
    DemoTruth truth;
    QString error;
    ASSERT_TRUE(DemoRecording::write(file, settings, truth, error)) << error.toStdString();
    const QVariantMap decimation{{"Operations", "Decimation"}, {"DecimationFactor", 10}};
    const QVariantMap smoothing{{"Operations", "Smooth Signals"},
                                {"SmoothMethod", "Running Average"},
                                {"SmoothTimeFrame(sec)", 0.05}};
    OperationRunner runner;
    const RunResult smoothed =
        runner.runPipeline({decimation, smoothing}, file, {truth.isosbesticPath, truth.biosensorPath});
    ASSERT_TRUE(smoothed.succeeded()) << smoothed.errors.join('\n').toStdString();
    const QString result = smoothed.datapaths.last().section('/', 0, -2); // the sensor group

    MainWindow window(nullptr);
    auto* plugin = qobject_cast<DatasetPlugin*>(window.tabs().plugin(window.openFile(file).tabIndex));
    ASSERT_NE(plugin, nullptr);
    QStringList messages, status, shown;
    plugin->setMessageHandler([&](const QString& text) { messages << text; });
    QObject::connect(plugin, &AbstractPlugin::sendStatusMessage,
                     [&](const QString& text) { status << text; });
    bool accept = false;
    plugin->pipelineSaving()->setSummaryPresenter([&](PipelineSummaryDialog& dialog) {
        shown << dialog.stepsLabel()->text() + QLatin1Char('|') + dialog.datasetsLabel()->text();
        (accept ? dialog.acceptButton() : dialog.cancelButton())->click();
        return dialog.result() == QDialog::Accepted;
    });
    int asked = 0;
    plugin->pipelineSaving()->setFileAsker([&] {
        ++asked;
        return dir.file(QStringLiteral("chain"));
    });
    DataFileTreeWidget* tree = plugin->fileTree();
    const auto saveEnabled = [&](const QString& path) {
        const std::unique_ptr<QMenu> menu = tree->makeContextMenu(path);
        return menu->findChild<QAction*>(QStringLiteral("actionSavePipeline"))->isEnabled();
    };
    const auto triggerSave = [&] {
        const std::unique_ptr<QMenu> menu = tree->makeContextMenu(result);
        menu->findChild<QAction*>(QStringLiteral("actionSavePipeline"))->trigger();
    };
    // Raw data and plain groups record no run.
    for (const QString& path : {truth.biosensorPath, QStringLiteral("DataProcessed")})
        EXPECT_FALSE(saveEnabled(path)) << path.toStdString();
    ASSERT_TRUE(saveEnabled(result));

    triggerSave();
    EXPECT_EQ(asked, 0);
    const QString summary = QStringLiteral("1. Decimation — DecimationFactor = 10<br>"
                                           "2. Smooth Signals — SmoothMethod = Running Average, "
                                           "SmoothTimeFrame(sec) = 0.05|<b>%1</b>")
                                .arg(truth.biosensorPath);
    EXPECT_EQ(shown, QStringList{summary});

    accept = true;
    triggerSave();
    EXPECT_EQ(asked, 1);
    const QString saved = dir.file(QStringLiteral("chain.json"));
    QList<QVariantMap> steps;
    ASSERT_TRUE(PipelineFile::read(saved, steps, error)) << error.toStdString();
    EXPECT_EQ(steps, (QList<QVariantMap>{decimation, smoothing}));
    EXPECT_EQ(status.last(), QStringLiteral("Pipeline saved to %1").arg(saved));
    EXPECT_TRUE(messages.isEmpty());
}
