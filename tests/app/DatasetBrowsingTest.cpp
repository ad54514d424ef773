#include "GuiTestSupport.h"

#include "app/MainWindow.h"
#include "app/browser/AttributesTable.h"
#include "app/browser/DataFileTreeWidget.h"
#include "app/browser/ImageStackWidget.h"
#include "app/browser/SignalPlotWidget.h"
#include "app/plugins/DataFileEditing.h"
#include "app/plugins/DatasetPlugin.h"
#include "app/plugins/ExperimentPlugin.h"
#include "common/TempDir.h"
#include "datafile/HDF5Reader_V6.h"
#include "datafile/SignalDataset.h"
#include "framework/FileAccessLock.h"

#include <QAction>
#include <QFile>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QTabWidget>
#include <QToolButton>

#include <qcustomplot.h>

#include <cmath>

#include <gtest/gtest.h>

using namespace zarvi;
using zarvi::test::TempDir;

namespace {

const QString rawGroup = QStringLiteral("DataAcquisition/Dev/Signals/Series1/S1");
const QString rawPath = rawGroup + QStringLiteral("/Signal");
const QString processedGroup = QStringLiteral("DataProcessed/Dev/Signals/Series1/FilteredSignals1/S1");
const QString processedPath = processedGroup + QStringLiteral("/Signal");
const QString stackGroup = QStringLiteral("DataAcquisition/Scope/Images/Series1/Cam");
const QString stackPath = stackGroup + QStringLiteral("/ImageStack");

// Pixel (y, x) of frame k holds 1000 k + 10 y + x: every value says where it came from.
std::uint16_t pixelValue(int k, int y, int x)
{
    return static_cast<std::uint16_t>(1000 * k + 10 * y + x);
}

bool writeBrowsingFile(const QString& path)
{
    HDF5Writer_V6 writer;
    if (writer.create(path) < 0)
        return false;
    Signal raw;
    for (int i = 0; i < 1000; ++i) {
        raw.time.push_back(i * 0.001);
        raw.values.push_back(std::sin(i * 0.01));
    }
    raw.unit = QStringLiteral("V");
    Signal filtered = raw;
    for (double& v : filtered.values)
        v *= 0.5;
    QString error;
    if (!SignalDataset::write(writer, rawGroup, raw, {}, error) ||
        !SignalDataset::write(
            writer, processedGroup, filtered,
            {{"Operations", "Filter"}, {"LowCutoffFrequency", 2.5}, {"SourceDatapath", rawPath}}, error))
        return false;

    const hid_t group = writer.createGroupPath(writer.fileId(), stackGroup);
    const hid_t stack = writer.createImageStack(group, "ImageStack", 4, 5, 28, 12, 0);
    std::vector<std::uint16_t> frame(20);
    for (int k = 0; k < 3; ++k) {
        for (int y = 0; y < 4; ++y)
            for (int x = 0; x < 5; ++x)
                frame[static_cast<std::size_t>(y * 5 + x)] = pixelValue(k, y, x);
        if (!writer.append(stack, frame.data(), {4, 5, 1}))
            return false;
    }
    const hid_t time = writer.create1D(group, ElementKind::Float64, "Time", 3);
    const double times[] = {0.0, 0.05, 0.1};
    const bool ok = writer.append(time, times, {3});
    writer.closeDataset(time);
    writer.closeDataset(stack);
    writer.closeGroup(group);
    writer.closeFile();
    return ok;
}

// The rows of the attributes table as "key=value", sections as "[title]".
QStringList tableRows(const AttributesTable& table)
{
    QStringList rows;
    for (int r = 0; r < table.rowCount(); ++r) {
        const QTableWidgetItem* value = table.item(r, 1);
        rows << (value ? table.item(r, 0)->text() + QLatin1Char('=') + value->text()
                       : QLatin1Char('[') + table.item(r, 0)->text() + QLatin1Char(']'));
    }
    return rows;
}

} // namespace

TEST(DatasetBrowsing, TreeAttributesDisplaysAndDeletion)
{
    TempDir dir;
    const QString file = dir.file("browse.orvel");
    ASSERT_TRUE(writeBrowsingFile(file));
    MainWindow window(nullptr);
    QStringList messages;
    window.setMessageHandler([&](const QString& text) { messages << text; });
    const FileOpenResult opened = window.openFile(file);
    ASSERT_EQ(opened.outcome, OpenOutcome::OpenedData);
    auto* plugin = qobject_cast<DatasetPlugin*>(window.tabs().plugin(opened.tabIndex));
    ASSERT_NE(plugin, nullptr);
    QStringList status;
    QObject::connect(plugin, &AbstractPlugin::sendStatusMessage,
                     [&](const QString& text) { status << text; });

    // The tree: every level, with shape and element type of the datasets.
    DataFileTreeWidget* tree = plugin->fileTree();
    ASSERT_NE(tree->node(rawPath), nullptr);
    EXPECT_EQ(tree->node(rawPath)->dimensions, std::vector<hsize_t>({1000}));
    EXPECT_EQ(tree->node(stackPath)->dimensions, std::vector<hsize_t>({4, 5, 3}));
    EXPECT_EQ(tree->node(stackGroup)->kind, ObjectKind::Group);
    tree->selectPaths({rawPath});
    const QTreeWidgetItem* item = tree->selectedItems().value(0);
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(item->text(0), QStringLiteral("Signal"));
    EXPECT_EQ(item->text(1), QStringLiteral("[1000]"));
    EXPECT_EQ(item->text(2), QStringLiteral("float64"));

    // A result's parameters, then those of the input it was computed from.
    plugin->attributesTable()->showHistory(*tree, processedPath);
    const QStringList rows = tableRows(*plugin->attributesTable());
    const qsizetype source = rows.indexOf("[Source: " + rawPath + "]");
    EXPECT_EQ(rows.value(0), "[" + processedPath + "]");
    EXPECT_TRUE(rows.contains("Operations=\"Filter\""));
    EXPECT_TRUE(rows.contains("LowCutoffFrequency=2.5"));
    ASSERT_GT(source, 0);
    EXPECT_TRUE(rows.mid(source).contains("Unit=\"V\""));
    EXPECT_FALSE(rows.mid(source).contains("Operations=\"Filter\""));

    // A sensor group and a values dataset shown together in one plot.
    QTabWidget* views = plugin->viewTabs();
    const int pages = views->count();
    EXPECT_EQ(plugin->displayPaths({rawGroup, processedPath}), 1);
    auto* plot = qobject_cast<SignalPlotWidget*>(views->currentWidget());
    ASSERT_NE(plot, nullptr);
    ASSERT_EQ(plot->signalCount(), 2);
    EXPECT_EQ(plot->plot()->graph(0)->name(), QStringLiteral("S1 (V)"));
    EXPECT_EQ(plot->plot()->graph(1)->name(), QStringLiteral("FilteredSignals1/S1 (V)"));
    EXPECT_EQ(views->tabText(views->currentIndex()), QStringLiteral("Signals"));

    // The image stack, one frame at a time.
    EXPECT_EQ(plugin->displayPaths({stackGroup}), 1);
    auto* stack = qobject_cast<ImageStackWidget*>(views->currentWidget());
    ASSERT_NE(stack, nullptr);
    EXPECT_EQ(stack->frameCount(), 3);
    EXPECT_EQ(stack->frameHeight(), 4);
    EXPECT_EQ(stack->frameWidth(), 5);
    EXPECT_EQ(stack->currentFrame(), 0);
    ASSERT_TRUE(stack->showFrame(2));
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 5; ++x)
            EXPECT_EQ(stack->frame()[static_cast<std::size_t>(y * 5 + x)], pixelValue(2, y, x));
    stack->showPixel(3, 1);
    EXPECT_EQ(stack->pixelText(), QStringLiteral("x 3  y 1  value 2013"));
    // Frame 2 holds 2000..2034 once each: the 0.5th and 99.5th percentiles are its ends.
    EXPECT_EQ(stack->contrast().low, 2000);
    EXPECT_EQ(stack->contrast().high, 2034);
    stack->setAutoContrast(false);
    EXPECT_EQ(stack->contrast().low, 0);
    EXPECT_EQ(stack->contrast().high, 4095); // "BitCount" 12
    EXPECT_EQ(zarvi::test::openFileCount(), 0);

    // While an operation writes the file, nothing is read and the status says so.
    {
        const auto lock = FileAccessLock::lock(file);
        status.clear();
        EXPECT_FALSE(stack->showFrame(1));
        EXPECT_FALSE(plugin->reloadFile());
        EXPECT_EQ(status, QStringList({"File is busy", "File is busy"}));
        EXPECT_EQ(stack->currentFrame(), 2);
    }

    // Deletion asks first; a group and its member go together, and their display closes.
    QStringList questions;
    plugin->setConfirmHandler([&](const QString& question) {
        questions << question;
        return false;
    });
    EXPECT_FALSE(plugin->deletePaths({stackGroup, stackPath}));
    EXPECT_NE(tree->node(stackPath), nullptr);
    plugin->setConfirmHandler([&](const QString& question) {
        questions << question;
        return true;
    });
    EXPECT_TRUE(plugin->deletePaths({stackGroup, stackPath}));
    // Then it offers to compact the file, which runs with its progress dialog.
    ASSERT_EQ(questions.size(), 3);
    EXPECT_TRUE(questions[1].contains(stackGroup));
    EXPECT_FALSE(questions[1].contains(stackPath));
    EXPECT_EQ(questions[2], QStringLiteral("Compact the file now to reclaim the space of deleted data?"));
    EXPECT_TRUE(status.last().startsWith(QStringLiteral("File compacted: "))) << status.last().toStdString();
    EXPECT_EQ(tree->node(stackGroup), nullptr);
    EXPECT_NE(tree->node(rawPath), nullptr);
    zarvi::test::settle();
    EXPECT_EQ(views->count(), pages + 1);
    HDF5Reader_V6 reader;
    ASSERT_GE(reader.open(file), 0);
    EXPECT_FALSE(reader.exists(reader.fileId(), stackGroup));
    EXPECT_TRUE(reader.exists(reader.fileId(), rawPath));
    reader.closeFile();
    EXPECT_TRUE(messages.isEmpty());

    // The tool buttons switch the view area to its pages; the pipeline has its own place.
    auto* pipelineButton = plugin->findChild<QToolButton*>("tb_pipeline");
    auto* behaviorButton = plugin->findChild<QToolButton*>("tb_behavior");
    auto* pipelinePage = plugin->findChild<QWidget*>("w_pipeline");
    auto* behaviorPage = plugin->findChild<QWidget*>("w_behavior");
    ASSERT_TRUE(pipelineButton && behaviorButton && pipelinePage && behaviorPage);
    auto pipeline = std::make_unique<QLabel>("pipeline");
    QLabel* pipelineWidget = pipeline.get();
    plugin->setPipelineWidget(pipeline.release());
    EXPECT_EQ(pipelineWidget->parentWidget(), pipelinePage);
    pipelineButton->click();
    EXPECT_EQ(views->currentWidget(), pipelinePage);
    EXPECT_TRUE(pipelineButton->isChecked());
    behaviorButton->click();
    EXPECT_EQ(views->currentWidget(), behaviorPage);
    EXPECT_FALSE(pipelineButton->isChecked());
    EXPECT_TRUE(behaviorButton->isChecked());
    // Closing the last display returns to the page last chosen.
    views->setCurrentIndex(views->count() - 1);
    EXPECT_FALSE(behaviorButton->isChecked());
    emit views->tabCloseRequested(views->count() - 1);
    EXPECT_EQ(views->count(), pages);
    EXPECT_EQ(views->currentWidget(), behaviorPage);
}

TEST(DatasetBrowsing, TheTreeMenuRenamesAResultAndRefusesBadNames)
{
    TempDir dir;
    const QString file = dir.file("rename.orvel");
    ASSERT_TRUE(writeBrowsingFile(file));
    MainWindow window(nullptr);
    auto* plugin = qobject_cast<DatasetPlugin*>(window.tabs().plugin(window.openFile(file).tabIndex));
    ASSERT_NE(plugin, nullptr);
    QStringList messages;
    plugin->setMessageHandler([&](const QString& text) { messages << text; });
    QStringList status;
    QObject::connect(plugin, &AbstractPlugin::sendStatusMessage,
                     [&](const QString& text) { status << text; });
    QStringList names{QStringLiteral(""), QStringLiteral("a/b"), QStringLiteral("Lowpass")};
    QStringList labels;
    plugin->editing()->setNameAsker(
        [&](const QString& label, const QString& current) -> std::optional<QString> {
            labels << label + QLatin1Char('|') + current;
            return names.takeFirst();
        });
    DataFileTreeWidget* tree = plugin->fileTree();
    const QString result = QStringLiteral("DataProcessed/Dev/Signals/Series1/FilteredSignals1");
    const QString renamed = QStringLiteral("DataProcessed/Dev/Signals/Series1/Lowpass");

    // Only a result can be renamed, and not the datasets found by their names.
    for (const QString& path : {rawGroup, processedPath, QStringLiteral("DataProcessed")})
        EXPECT_FALSE(tree->makeContextMenu(path)->findChild<QAction*>("actionRename")->isEnabled())
            << path.toStdString();
    const auto triggerRename = [&] {
        const std::unique_ptr<QMenu> menu = tree->makeContextMenu(result);
        QAction* rename = menu->findChild<QAction*>("actionRename");
        ASSERT_TRUE(rename && rename->isEnabled());
        rename->trigger();
    };
    triggerRename();
    triggerRename();
    EXPECT_EQ(messages, QStringList({"The new name is empty.", "A name cannot contain <b>/</b>."}));
    EXPECT_NE(tree->node(result), nullptr);
    triggerRename();
    EXPECT_EQ(labels.first(), QStringLiteral("New name of <b>%1</b>:|FilteredSignals1").arg(result));
    EXPECT_EQ(tree->node(result), nullptr);
    ASSERT_NE(tree->node(renamed + QStringLiteral("/S1/Signal")), nullptr);
    EXPECT_EQ(tree->selectedPaths(), QStringList({renamed}));
    EXPECT_EQ(status.last(), QStringLiteral("Renamed %1 to %2").arg(result, renamed));
    EXPECT_EQ(messages.size(), 2);
}

TEST(DatasetBrowsing, AFailedCompactionIsReportedWithItsTitle)
{
    TempDir dir;
    const QString file = dir.file("notes.orvel");
    {
        QFile text(file);
        ASSERT_TRUE(text.open(QIODevice::WriteOnly));
        text.write("no data file");
    }
    QWidget parent;
    DataFileEditing editing(&parent, [](const QString&) {});
    QStringList shown;
    editing.setMessagePresenter([&](const QString& title, const QString& message, int icon) {
        shown << title << message << QString::number(icon);
    });
    EXPECT_FALSE(editing.compact(file));
    EXPECT_EQ(shown, QStringList({"Error File Repacking", "Failed to repack file <b>notes.orvel</b>.",
                                  QString::number(QMessageBox::Critical)}));
}

TEST(DatasetBrowsing, ReloadShowsNewDataAndKeepsTheView)
{
    TempDir dir;
    const QString file = dir.file("reload.orvel");
    ASSERT_TRUE(writeBrowsingFile(file));
    MainWindow window(nullptr);
    auto* plugin = qobject_cast<DatasetPlugin*>(window.tabs().plugin(window.openFile(file).tabIndex));
    ASSERT_NE(plugin, nullptr);
    DataFileTreeWidget* tree = plugin->fileTree();
    tree->selectPaths({processedPath});
    tree->collapseAll();
    ASSERT_FALSE(tree->selectedItems().isEmpty());
    tree->selectedItems().first()->parent()->setExpanded(true);

    // What an operation run adds to the file.
    {
        HDF5Writer_V6 writer;
        ASSERT_GE(writer.open(file), 0);
        Signal smoothed{{0.0, 1.0}, {2.0, 3.0}, {}};
        QString error;
        ASSERT_TRUE(SignalDataset::write(writer, "DataProcessed/Dev/Signals/Series1/SmoothedSignals1/S1",
                                         smoothed, {}, error));
        writer.closeFile();
    }
    ASSERT_TRUE(plugin->reloadFile());
    EXPECT_NE(tree->node("DataProcessed/Dev/Signals/Series1/SmoothedSignals1/S1/Signal"), nullptr);
    EXPECT_EQ(tree->selectedPaths(), QStringList({processedPath}));
    EXPECT_TRUE(tree->selectedItems().first()->parent()->isExpanded());
}

TEST(DatasetBrowsing, ExperimentPluginShowsTheExperimentDescription)
{
    TempDir dir;
    const QString file = dir.file("experiment.orvel");
    {
        HDF5Writer_V6 writer;
        ASSERT_GE(writer.create(file), 0);
        const hid_t animals = writer.createGroupPath(writer.fileId(), "ExperimentDesign/Animals");
        ASSERT_TRUE(writer.writeAttribute(animals, "Count", 3));
        writer.closeGroup(animals);
        writer.closeGroup(writer.createGroup(writer.fileId(), "DataAcquisition"));
        writer.closeFile();
    }
    MainWindow window(nullptr);
    const FileOpenResult opened = window.openFile(file);
    ASSERT_EQ(opened.outcome, OpenOutcome::OpenedExperiment);
    auto* plugin = qobject_cast<ExperimentPlugin*>(window.tabs().plugin(opened.tabIndex));
    ASSERT_NE(plugin, nullptr);
    ASSERT_EQ(plugin->fileTree()->topLevelItemCount(), 1);
    EXPECT_EQ(plugin->fileTree()->topLevelItem(0)->text(0), QStringLiteral("ExperimentDesign"));
    EXPECT_EQ(plugin->fileTree()->node("DataAcquisition"), nullptr);
    plugin->fileTree()->setCurrentItem(plugin->fileTree()->topLevelItem(0)->child(0));
    EXPECT_TRUE(tableRows(*plugin->attributesTable()).contains("Count=3"));
}
