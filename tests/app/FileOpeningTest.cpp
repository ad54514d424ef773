#include "GuiTestSupport.h"

#include "app/FileCheck.h"
#include "app/MainWindow.h"
#include "app/plugins/DatasetPlugin.h"
#include "app/plugins/ExperimentPlugin.h"
#include "common/TempDir.h"
#include "datafile/FileClassifier.h"
#include "datafile/HDF5Reader_V6.h"
#include "framework/FileAccessLock.h"

#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFile>
#include <QLabel>
#include <QMimeData>
#include <QTabWidget>
#include <QTimer>

#include <gtest/gtest.h>

using namespace zarvi;
using zarvi::test::TempDir;
using zarvi::test::writeFileWithRootGroups;

namespace {

const QString unrecognized = QStringLiteral("File type is unrecognized.<br>Please load a file that was "
                                            "created with ONS or zarvi, otherwise please use "
                                            "Convert operation.");

/// A main window whose message boxes are recorded instead of shown.
struct RecordingWindow
{
    RecordingWindow()
    {
        window.setMessageHandler([this](const QString& text) { messages << text; });
    }
    QTabWidget* tabs() const { return window.ui().tw_files; }

    MainWindow window{nullptr};
    QStringList messages;
};

} // namespace

TEST(FileOpening, ClassificationDecidesThePlugin)
{
    TempDir dir;
    RecordingWindow w;
    const QString both = dir.file("both.orvel");
    const QString raw = dir.file("raw.orvel");
    const QString rawAndProcessed = dir.file("rawAndProcessed.orvel");
    const QString processed = dir.file("processed.orvel");
    const QString analyzed = dir.file("analyzed.orvel");
    const QString configuration = dir.file("configuration.orvel");
    const QString text = dir.file("text.orvel");
    ASSERT_TRUE(writeFileWithRootGroups(both, {"DataAcquisition", "ExperimentDesign"}));
    ASSERT_TRUE(writeFileWithRootGroups(raw, {"DataAcquisition"}));
    ASSERT_TRUE(writeFileWithRootGroups(rawAndProcessed, {"DataConverted", "DataProcessed"}));
    ASSERT_TRUE(writeFileWithRootGroups(processed, {"DataProcessed"}));
    ASSERT_TRUE(writeFileWithRootGroups(analyzed, {"DataAnalyzed"}));
    ASSERT_TRUE(writeFileWithRootGroups(configuration, {"Configurations"}));
    QFile plain(text);
    ASSERT_TRUE(plain.open(QFile::WriteOnly));
    plain.write("not a data file\n");
    plain.close();

    // The experiment description wins over the data.
    FileOpenResult result = w.window.openFile(both);
    EXPECT_EQ(result.outcome, OpenOutcome::OpenedExperiment);
    EXPECT_EQ(w.tabs()->tabText(result.tabIndex), QStringLiteral("Experiment (both.orvel)"));
    EXPECT_NE(qobject_cast<ExperimentPlugin*>(w.tabs()->widget(result.tabIndex)), nullptr);
    EXPECT_EQ(w.tabs()->currentIndex(), result.tabIndex);
    EXPECT_EQ(w.window.ui().lb_mode->text(), QStringLiteral("Experiment"));

    for (const QString& data : {raw, rawAndProcessed}) {
        result = w.window.openFile(data);
        EXPECT_EQ(result.outcome, OpenOutcome::OpenedData);
        EXPECT_EQ(w.tabs()->tabText(result.tabIndex),
                  QStringLiteral("Data (%1)").arg(QFileInfo(data).fileName()));
        EXPECT_NE(qobject_cast<DatasetPlugin*>(w.tabs()->widget(result.tabIndex)), nullptr);
        EXPECT_EQ(w.tabs()->currentIndex(), result.tabIndex);
    }
    EXPECT_EQ(w.window.ui().lb_mode->text(), QStringLiteral("Dataset"));
    EXPECT_TRUE(w.messages.isEmpty());

    // Results without raw or converted data, configurations and non-HDF5 files are refused.
    for (const QString& refused : {processed, analyzed, configuration, text}) {
        result = w.window.openFile(refused);
        EXPECT_EQ(result.outcome, OpenOutcome::Refused) << refused.toStdString();
        EXPECT_EQ(result.message, unrecognized);
    }
    EXPECT_EQ(w.messages, QStringList(4, unrecognized));
    EXPECT_EQ(w.tabs()->count(), 3);
    // The GUI keeps no file open between reads.
    EXPECT_EQ(zarvi::test::openFileCount(), 0);
}

TEST(FileOpening, SamePathReusesTheTab)
{
    TempDir dir;
    RecordingWindow w;
    const QString path = dir.file("data.orvel");
    ASSERT_TRUE(writeFileWithRootGroups(path, {"DataConverted"}));
    ASSERT_TRUE(writeFileWithRootGroups(dir.file("other.orvel"), {"DataConverted"}));

    const FileOpenResult first = w.window.openFile(path);
    ASSERT_EQ(first.outcome, OpenOutcome::OpenedData);
    w.window.openFile(dir.file("other.orvel"));
    ASSERT_EQ(w.tabs()->count(), 2);
    ASSERT_NE(w.tabs()->currentIndex(), first.tabIndex);

    // The same file by another spelling of its path.
    ASSERT_TRUE(QDir(dir.path()).mkdir("sub"));
    const FileOpenResult again = w.window.openFile(dir.path() + QStringLiteral("/./sub/../data.orvel"));
    EXPECT_EQ(again.outcome, OpenOutcome::SelectedExisting);
    EXPECT_EQ(again.tabIndex, first.tabIndex);
    EXPECT_EQ(w.tabs()->currentIndex(), first.tabIndex);
    EXPECT_EQ(w.tabs()->count(), 2);

    // While an operation writes the file it is not read; its open tab is still selected.
    {
        const auto lock = FileAccessLock::lock(path);
        w.window.openFile(dir.file("other.orvel"));
        EXPECT_EQ(w.window.openFile(path).outcome, OpenOutcome::SelectedExisting);
        const auto otherLock = FileAccessLock::lock(dir.file("other.orvel"));
        w.window.closeTab(w.window.tabs().indexOf(dir.file("other.orvel")));
        const FileOpenResult busy = w.window.openFile(dir.file("other.orvel"));
        EXPECT_EQ(busy.outcome, OpenOutcome::Busy);
        EXPECT_EQ(busy.message, QStringLiteral("File is busy"));
    }
    EXPECT_EQ(w.tabs()->count(), 1);
    EXPECT_TRUE(w.messages.isEmpty());
}

TEST(FileOpening, DroppedFilesOpen)
{
    TempDir dir;
    RecordingWindow w;
    ASSERT_TRUE(writeFileWithRootGroups(dir.file("a.orvel"), {"DataAcquisition"}));
    ASSERT_TRUE(writeFileWithRootGroups(dir.file("b.orvel"), {"ExperimentDesign"}));
    QMimeData mime;
    mime.setUrls({QUrl::fromLocalFile(dir.file("a.orvel")), QUrl::fromLocalFile(dir.file("b.orvel"))});

    QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&w.window, &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&w.window, &drop);
    ASSERT_EQ(w.tabs()->count(), 2);
    EXPECT_EQ(w.tabs()->tabText(0), QStringLiteral("Data (a.orvel)"));
    EXPECT_EQ(w.tabs()->tabText(1), QStringLiteral("Experiment (b.orvel)"));

    // Something that is not a local file is not taken.
    QMimeData web;
    web.setUrls({QUrl("https://example.org/c.orvel")});
    QDragEnterEvent refused(QPoint(10, 10), Qt::CopyAction, &web, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&w.window, &refused);
    EXPECT_FALSE(refused.isAccepted());
}

TEST(FileOpening, PathWithoutSlashTitlesWithTheWholePath)
{
    EXPECT_EQ(FileClassifier::tabTitle(FileKind::Data, "plain.orvel"), QStringLiteral("Data (plain.orvel)"));
    EXPECT_EQ(FileClassifier::tabTitle(FileKind::Experiment, "plain.orvel"),
              QStringLiteral("Experiment (plain.orvel)"));

    TempDir dir;
    ASSERT_TRUE(writeFileWithRootGroups(dir.file("relative.orvel"), {"DataAcquisition"}));
    const QString previous = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(dir.path()));
    RecordingWindow w;
    const FileOpenResult result = w.window.openFile("relative.orvel");
    QDir::setCurrent(previous);
    ASSERT_EQ(result.outcome, OpenOutcome::OpenedData);
    EXPECT_EQ(w.tabs()->tabText(result.tabIndex), QStringLiteral("Data (relative.orvel)"));
    // The plug-in keeps the absolute path, so a later change of folder does not lose the file.
    EXPECT_EQ(QFileInfo(w.window.tabs().plugin(result.tabIndex)->filePath()).canonicalFilePath(),
              QFileInfo(dir.file("relative.orvel")).canonicalFilePath());
    EXPECT_TRUE(QFileInfo(w.window.tabs().plugin(result.tabIndex)->filePath()).isAbsolute());
}

TEST(FileOpening, CreateMakesAnEmptyDataFileAndOpensIt)
{
    TempDir dir;
    RecordingWindow w;
    const FileOpenResult result = w.window.createFile(dir.file("new"));
    ASSERT_EQ(result.outcome, OpenOutcome::OpenedData);
    EXPECT_EQ(w.tabs()->tabText(result.tabIndex), QStringLiteral("Data (new.orvel)"));

    HDF5Reader_V6 reader;
    ASSERT_GE(reader.open(dir.file("new.orvel")), 0);
    EXPECT_EQ(reader.children(reader.fileId()), QStringList({"DataConverted"}));
    EXPECT_EQ(reader.readAttribute(reader.fileId(), "SoftwareName").toString(), QStringLiteral("zarvi"));
    reader.closeFile();

    // A file shown in a tab is not replaced under it.
    const FileOpenResult again = w.window.createFile(dir.file("new.orvel"));
    EXPECT_EQ(again.outcome, OpenOutcome::Refused);
    ASSERT_EQ(w.messages.size(), 1);
    EXPECT_TRUE(w.messages.first().contains(QStringLiteral("new.orvel")));
    EXPECT_EQ(w.tabs()->count(), 1);
}

TEST(FileOpening, FilesAreCheckedInAChildProcessThatMayCrash)
{
    TempDir dir;
    RecordingWindow w;
    w.window.tabs().setFileCheck(FileCheck(QStringLiteral(ZARVI_TEST_BINARY_DIR "/cli/zarvi-cli")));
    const QString raw = dir.file("raw.orvel");
    const QString text = dir.file("text.orvel");
    const QString cut = dir.file("cut.orvel");
    ASSERT_TRUE(writeFileWithRootGroups(raw, {"DataAcquisition"}));
    QFile plain(text);
    ASSERT_TRUE(plain.open(QFile::WriteOnly));
    plain.write("not a data file\n");
    plain.close();
    QFile whole(raw);
    ASSERT_TRUE(whole.open(QFile::ReadOnly));
    QFile part(cut);
    ASSERT_TRUE(part.open(QFile::WriteOnly));
    part.write(whole.read(whole.size() / 2));
    part.close();

    // Through the real check: the data file opens, the others are refused.
    FileOpenResult result = w.window.openFile(raw);
    EXPECT_EQ(result.outcome, OpenOutcome::OpenedData);
    for (const QString& refused : {text, cut}) {
        result = w.window.openFile(refused);
        EXPECT_EQ(result.outcome, OpenOutcome::Refused);
    }
    EXPECT_EQ(w.window.openFile(text).message, unrecognized);

    // A file the fuzzer found to crash the HDF5 library: the check dies, the file is
    // refused as damaged, and the window goes on with its open tab.
    const QString crashing = dir.file("crashing.orvel");
    ASSERT_TRUE(
        QFile::copy(QStringLiteral(ZARVI_LIBRARY_FAULTS "/vlen-string-global-heap-crash.bin"), crashing));
    w.messages.clear();
    result = w.window.openFile(crashing);
    EXPECT_EQ(result.outcome, OpenOutcome::Refused);
    EXPECT_EQ(result.message,
              QStringLiteral("The file <b>crashing.orvel</b> could not be read; it may be damaged."));
    EXPECT_EQ(w.messages, QStringList{result.message});
    ASSERT_EQ(w.tabs()->count(), 1);
    EXPECT_EQ(w.tabs()->tabText(0), QStringLiteral("Data (raw.orvel)"));
}

TEST(FileOpening, AHangingCheckIsStoppedWithoutFreezingTheWindow)
{
    TempDir dir;
    // A check program that never answers, as the library does on some damaged files.
    const QString program = dir.file("hanging-check");
    QFile script(program);
    ASSERT_TRUE(script.open(QFile::WriteOnly));
    script.write("#!/bin/sh\nexec sleep 30\n");
    script.close();
    script.setPermissions(script.permissions() | QFile::ExeOwner);
    const QString file = dir.file("raw.orvel");
    ASSERT_TRUE(writeFileWithRootGroups(file, {"DataAcquisition"}));

    // Timers (and with them painting) keep running while the check is waited for.
    int ticks = 0;
    QTimer tick;
    QObject::connect(&tick, &QTimer::timeout, [&ticks] { ++ticks; });
    tick.start(20);
    const FileClassification result = FileCheck(program, 600).classify(file);
    EXPECT_GT(ticks, 0);
    EXPECT_EQ(result.kind, FileKind::Unrecognized);
    EXPECT_EQ(result.message,
              QStringLiteral("The file <b>raw.orvel</b> could not be read; it may be damaged."));
    EXPECT_EQ(result.detail, QStringLiteral("the file check did not finish"));
}
