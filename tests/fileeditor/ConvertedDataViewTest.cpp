#include "common/TempDir.h"

#include "app/MainWindow.h"
#include "app/browser/ImageStackWidget.h"
#include "app/browser/SignalPlotWidget.h"
#include "app/plugins/DatasetPlugin.h"
#include "fileeditor/SpreadsheetConverter.h"
#include "fileeditor/TiffStackConverter.h"
#include "fileeditor/TiffStackWriter.h"

#include <QFile>
#include <QTabWidget>

#include <gtest/gtest.h>

using namespace zarvi;

// What a user does right after converting: open the file and look at the data.
TEST(ConvertedData, OpensInTheImageAndSignalViewers)
{
    test::TempDir dir;
    const QString tiff = dir.file(QStringLiteral("stack.tif"));
    TiffStackWriter writer;
    ASSERT_TRUE(writer.open({tiff, 32, 24, 16, 3}));
    std::vector<std::uint16_t> frame(32 * 24);
    for (std::uint16_t k = 0; k < 3; ++k) {
        std::fill(frame.begin(), frame.end(), static_cast<std::uint16_t>(1000 * (k + 1)));
        ASSERT_TRUE(writer.writeFrame(frame));
    }
    ASSERT_TRUE(writer.finish());

    QFile csv(dir.file(QStringLiteral("table.csv")));
    ASSERT_TRUE(csv.open(QIODevice::WriteOnly));
    csv.write("Time,Green\n0,1\n0.1,2\n0.2,3\n0.3,4\n");
    csv.close();

    const QString file = dir.file(QStringLiteral("converted.orvel"));
    TiffStackConversionConfig stack;
    stack.sourcePath = tiff;
    stack.destination = {file, QStringLiteral("Scope"), QStringLiteral("Green")};
    stack.frameRate = 10.0;
    const ConversionResult stackResult = TiffStackConverter::convert(stack);
    ASSERT_TRUE(stackResult.ok()) << stackResult.error.toStdString();
    SpreadsheetConversionConfig table;
    table.sourcePath = csv.fileName();
    table.destination = {file, QStringLiteral("Rig"), QString()};
    const ConversionResult tableResult = SpreadsheetConverter::convert(table);
    ASSERT_TRUE(tableResult.ok()) << tableResult.error.toStdString();

    MainWindow window(nullptr);
    window.setMessageHandler([](const QString& text) { ADD_FAILURE() << text.toStdString(); });
    const FileOpenResult opened = window.openFile(file);
    ASSERT_EQ(opened.outcome, OpenOutcome::OpenedData);
    auto* plugin = qobject_cast<DatasetPlugin*>(window.tabs().plugin(opened.tabIndex));
    ASSERT_NE(plugin, nullptr);

    ASSERT_EQ(plugin->displayPaths({QStringLiteral("DataConverted/Scope/Images/Series1/Green/ImageStack")}),
              1);
    auto* stackView = qobject_cast<ImageStackWidget*>(plugin->viewTabs()->currentWidget());
    ASSERT_NE(stackView, nullptr);
    EXPECT_EQ(stackView->frameCount(), 3);
    ASSERT_TRUE(stackView->showFrame(2));
    EXPECT_EQ(stackView->frame().front(), 3000);

    ASSERT_EQ(plugin->displayPaths({QStringLiteral("DataConverted/Rig/Signals/Series1/Green/Signal")}), 1);
    auto* plot = qobject_cast<SignalPlotWidget*>(plugin->viewTabs()->currentWidget());
    ASSERT_NE(plot, nullptr);
    EXPECT_EQ(plot->signalCount(), 1);
}
