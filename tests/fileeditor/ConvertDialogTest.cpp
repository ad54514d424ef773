#include "ConvertTestSupport.h"
#include "RecordingTestFiles.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QProgressDialog>
#include <QRadioButton>
#include <QSpinBox>
#include <QThread>
#include <QTimer>

#include "datafile/HDF5Writer_V6.h"
#include "datafile/ImageFrameWriter.h"
#include "datafile/SignalDataset.h"
#include "definitions/ZarviMainDefinitions.h"
#include "fileeditor/ConvertDialog.h"
#include "fileeditor/CsvColumnPreview.h"
#include "fileeditor/ExportDialog.h"
#include "fileeditor/TiffStackReader.h"
#include "fileeditor/TiffStackWriter.h"
#include "framework/BackgroundJob.h"

#include <xlsxwriter.h>

namespace zarvi {
namespace {

template <typename Widget> Widget* child(QObject& parent, const char* name)
{
    Widget* widget = parent.findChild<Widget*>(QString::fromLatin1(name));
    EXPECT_NE(widget, nullptr) << name;
    return widget;
}

struct Shown
{
    QStringList titles;
    QStringList messages;
    std::vector<int> icons;
    MessagePresenter presenter()
    {
        return [this](const QString& title, const QString& message, int icon) {
            titles << title;
            messages << message;
            icons.push_back(icon);
        };
    }
};

TEST(ConvertDialog, BuildsRequestFromWidgetsAndConvertsOffTheGuiThread)
{
    test::TempDir dir;
    const QString csv = dir.file(QStringLiteral("table.csv"));
    test::writeText(csv, "ms,Green,Lick\n0,1,10\n500,2,\n1000,3,\n");
    const QString file = dir.file(QStringLiteral("new.orvel"));

    ConvertDialog dialog(QString(), nullptr);
    child<QComboBox>(dialog, "cb_sourceType")->setCurrentIndex(ConvertDialog::Spreadsheet);
    child<QLineEdit>(dialog, "le_source")->setText(csv);
    child<QLineEdit>(dialog, "le_device")->setText(QStringLiteral("Rig"));
    child<QSpinBox>(dialog, "sb_timeColumn")->setValue(1);
    child<QComboBox>(dialog, "cb_timeUnit")->setCurrentIndex(1);
    child<QLineEdit>(dialog, "le_eventColumns")->setText(QStringLiteral("3"));
    child<QCheckBox>(dialog, "cb_nextSeries")->setChecked(false);
    child<QSpinBox>(dialog, "sb_series")->setValue(2);
    EXPECT_TRUE(child<QRadioButton>(dialog, "rb_newFile")->isChecked());
    child<QLineEdit>(dialog, "le_target")->setText(file);

    QString problem;
    const std::optional<ConversionRequest> request = dialog.buildRequest(problem);
    ASSERT_TRUE(request) << problem.toStdString();
    const auto* table = std::get_if<SpreadsheetConversionConfig>(&*request);
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->sourcePath, csv);
    EXPECT_EQ(table->timeColumn, 0);
    EXPECT_EQ(table->timeUnit, TimeUnit::Milliseconds);
    EXPECT_EQ(table->eventColumns, std::vector<int>{2});
    EXPECT_EQ(table->destination.filepath, file);
    EXPECT_EQ(table->destination.device, QStringLiteral("Rig"));
    EXPECT_EQ(table->destination.series, 2);

    Shown shown;
    dialog.setMessagePresenter(shown.presenter());
    ASSERT_TRUE(dialog.convert()) << shown.messages.join(' ').toStdString();
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(dialog.convertedFile(), file);
    EXPECT_EQ(shown.titles, QStringList{QStringLiteral("Conversion")});
    EXPECT_EQ(test::storedValues(file, QStringLiteral("DataConverted/Rig/Signals/Series2/Green/Time")),
              (std::vector<double>{0.0, 0.5, 1.0}));
    EXPECT_EQ(test::storedValues(file, QStringLiteral("DataConverted/Rig/Events/Series2/Lick")),
              std::vector<double>{0.01});

    // The same file is no longer new; a device name must be usable.
    EXPECT_FALSE(dialog.buildRequest(problem));
    EXPECT_EQ(
        problem,
        QStringLiteral("<b>%1</b> already exists; choose \"Existing file\" to convert into it.").arg(file));
    child<QRadioButton>(dialog, "rb_existingFile")->setChecked(true);
    child<QLineEdit>(dialog, "le_device")->setText(QStringLiteral("Images"));
    EXPECT_FALSE(dialog.buildRequest(problem));
    EXPECT_TRUE(problem.startsWith(QStringLiteral("The device name <b>Images</b> cannot be used")));
}

TEST(ConvertDialog, PreviewsTheFirstRowsWithTheRoleOfEachColumn)
{
    test::TempDir dir;
    const QString csv = dir.file(QStringLiteral("roles.csv"));
    test::writeText(csv, "Time,Green (V),Red,Cue\n0,1,2,0\n0.1,1,2,1\n0.2,1,2,1\n");
    ConvertDialog dialog(QString(), nullptr);
    child<QComboBox>(dialog, "cb_sourceType")->setCurrentIndex(ConvertDialog::Spreadsheet);
    child<QLineEdit>(dialog, "le_source")->setText(csv);
    child<QLineEdit>(dialog, "le_signalUnit")->setText(QStringLiteral("mV"));
    child<QLineEdit>(dialog, "le_triggerColumns")->setText(QStringLiteral("4:0.5"));
    const auto* preview = child<CsvColumnPreview>(dialog, "tw_columnPreview");
    ASSERT_EQ(preview->columnCount(), 4);
    EXPECT_EQ(preview->horizontalHeaderItem(1)->text(), "2: Green");
    EXPECT_EQ(preview->roleText(0), "Time");
    EXPECT_EQ(preview->roleText(1), "Signal (V)");
    EXPECT_EQ(preview->roleText(2), "Signal (mV)");
    EXPECT_EQ(preview->roleText(3), "Trigger, high above 0.5");
    // The role row, then the three data rows as written.
    ASSERT_EQ(preview->rowCount(), 4);
    EXPECT_EQ(preview->item(3, 0)->text(), "0.2");
    dialog.show();
    dialog.grab().save(QStringLiteral(ZARVI_TEST_BINARY_DIR "/convert-dialog.png")); // for people to look at
    child<QLineEdit>(dialog, "le_triggerColumns")->clear();
    child<QLineEdit>(dialog, "le_eventColumns")->setText(QStringLiteral("4"));
    EXPECT_EQ(preview->roleText(3), "Event times");

    child<QLineEdit>(dialog, "le_eventColumns")->clear();
    child<QLineEdit>(dialog, "le_triggerColumns")->setText(QStringLiteral("4:high"));
    EXPECT_EQ(preview->roleText(3), "Signal (mV)"); // the last roles that parsed
    child<QLineEdit>(dialog, "le_device")->setText(QStringLiteral("Rig"));
    child<QLineEdit>(dialog, "le_target")->setText(dir.file(QStringLiteral("new.orvel")));
    QString problem;
    EXPECT_FALSE(dialog.buildRequest(problem));
    EXPECT_EQ(problem, "Trigger columns are column numbers from 1, each with an optional threshold after a "
                       "colon, separated by commas, not <b>4:high</b>.");
}

TEST(ConvertDialog, ListsTheSheetsOfAWorkbookAndPreviewsTheChosenOne)
{
    test::TempDir dir;
    const QString workbook = dir.file(QStringLiteral("session.xlsx"));
    const QByteArray name = QFile::encodeName(workbook);
    lxw_workbook* book = workbook_new(name.constData());
    for (const char* sheetName : {"Baseline", "Session"}) {
        lxw_worksheet* sheet = workbook_add_worksheet(book, sheetName);
        worksheet_write_string(sheet, 0, 0, "Time", nullptr);
        worksheet_write_string(sheet, 0, 1, sheetName, nullptr);
        worksheet_write_number(sheet, 1, 0, 0.5, nullptr);
        worksheet_write_number(sheet, 1, 1, sheetName[0] == 'B' ? 1.0 : 2.0, nullptr);
    }
    ASSERT_EQ(workbook_close(book), LXW_NO_ERROR);
    const QString csv = dir.file(QStringLiteral("plain.csv"));
    test::writeText(csv, "Time,Green\n0,1\n");

    ConvertDialog dialog(QString(), nullptr);
    dialog.show();
    child<QComboBox>(dialog, "cb_sourceType")->setCurrentIndex(ConvertDialog::Spreadsheet);
    auto* sheets = child<QComboBox>(dialog, "cb_sheet");
    const auto* preview = child<CsvColumnPreview>(dialog, "tw_columnPreview");
    child<QLineEdit>(dialog, "le_source")->setText(csv);
    EXPECT_FALSE(sheets->isVisible());

    child<QLineEdit>(dialog, "le_source")->setText(workbook);
    EXPECT_TRUE(sheets->isVisible());
    ASSERT_EQ(sheets->count(), 2);
    EXPECT_EQ(sheets->itemText(1), "Session");
    EXPECT_EQ(preview->horizontalHeaderItem(1)->text(), "2: Baseline");
    sheets->setCurrentIndex(1);
    EXPECT_EQ(preview->horizontalHeaderItem(1)->text(), "2: Session");
    ASSERT_EQ(preview->rowCount(), 2);
    EXPECT_EQ(preview->item(1, 1)->text(), "2");

    child<QLineEdit>(dialog, "le_device")->setText(QStringLiteral("Rig"));
    child<QLineEdit>(dialog, "le_target")->setText(dir.file(QStringLiteral("new.orvel")));
    QString problem;
    const std::optional<ConversionRequest> request = dialog.buildRequest(problem);
    ASSERT_TRUE(request) << problem.toStdString();
    EXPECT_EQ(std::get<SpreadsheetConversionConfig>(*request).sheet, "Session");
}

TEST(ConvertDialog, ShowsVersionRefusalsAsWarningsAndKeepsVersion5CopiesNew)
{
    test::TempDir dir;
    const QString current = dir.file(QStringLiteral("current.orvel"));
    {
        HDF5Writer_V6 writer;
        ASSERT_GE(writer.create(current), 0);
    }
    ConvertDialog dialog(current, nullptr);
    EXPECT_TRUE(child<QRadioButton>(dialog, "rb_existingFile")->isChecked());
    child<QComboBox>(dialog, "cb_sourceType")->setCurrentIndex(ConvertDialog::Version5);
    EXPECT_FALSE(child<QRadioButton>(dialog, "rb_existingFile")->isEnabled());
    EXPECT_TRUE(child<QRadioButton>(dialog, "rb_newFile")->isChecked());
    child<QLineEdit>(dialog, "le_source")->setText(current);
    child<QLineEdit>(dialog, "le_target")->clear();

    Shown shown;
    dialog.setMessagePresenter(shown.presenter());
    EXPECT_FALSE(dialog.convert());
    EXPECT_EQ(shown.titles, QStringList{QStringLiteral("Orvel File V6 (*.orvel)")});
    EXPECT_EQ(shown.messages, QStringList{QStringLiteral(
                                  "The loaded file has the latest version (V6) -- no conversion required.")});
    EXPECT_EQ(shown.icons, std::vector<int>{QMessageBox::Warning});
}

TEST(ConvertDialog, ShowsWhatARecordingHoldsAndConvertsTheTickedStores)
{
    test::TempDir dir;
    using B = test::TdtBlockBuilder;
    B block(1000.0);
    block.streamFloat("x465", 1, 1000.0, 10.0f, {1.0f, 2.0f, 3.0f});
    block.epoch("PtC1", B::StrobeOn, 1000.25, 1.0);
    block.stop(1001.0);
    const QString folder = dir.file(QStringLiteral("Block-1"));
    ASSERT_TRUE(block.write(folder, QStringLiteral("b")));
    const QString file = dir.file(QStringLiteral("new.orvel"));

    ConvertDialog dialog(QString(), nullptr);
    dialog.show();
    child<QComboBox>(dialog, "cb_sourceType")->setCurrentIndex(ConvertDialog::Recording);
    EXPECT_TRUE(child<QWidget>(dialog, "gb_recording")->isVisible());
    EXPECT_FALSE(child<QWidget>(dialog, "gb_columns")->isVisible());
    child<QLineEdit>(dialog, "le_source")->setText(folder);
    // The block's stores are listed, all ticked, and what they hold is shown.
    auto* stores = child<QListWidget>(dialog, "lw_stores");
    ASSERT_EQ(stores->count(), 2);
    EXPECT_TRUE(stores->isVisible());
    EXPECT_EQ(stores->item(0)->text(), QStringLiteral("PtC1"));
    EXPECT_EQ(stores->item(1)->checkState(), Qt::Checked);
    auto* found = child<QLabel>(dialog, "lb_found");
    EXPECT_TRUE(found->text().contains(QStringLiteral("signal <b>x465</b>: 3 samples at 10 Hz")))
        << found->text().toStdString();
    EXPECT_TRUE(found->text().contains(QStringLiteral("events <b>PtC1</b>: 1")));
    // The device takes the format's name when none was typed.
    EXPECT_EQ(child<QLineEdit>(dialog, "le_device")->text(), QStringLiteral("TDT"));

    stores->item(0)->setCheckState(Qt::Unchecked);
    EXPECT_FALSE(found->text().contains(QStringLiteral("PtC1")));
    child<QLineEdit>(dialog, "le_target")->setText(file);
    QString problem;
    const std::optional<ConversionRequest> request = dialog.buildRequest(problem);
    ASSERT_TRUE(request) << problem.toStdString();
    const auto* recording = std::get_if<RecordingConversionConfig>(&*request);
    ASSERT_NE(recording, nullptr);
    EXPECT_EQ(recording->stores, QStringList{QStringLiteral("x465")});

    Shown shown;
    dialog.setMessagePresenter(shown.presenter());
    ASSERT_TRUE(dialog.convert()) << shown.messages.join(' ').toStdString();
    EXPECT_EQ(test::storedValues(file, QStringLiteral("DataConverted/TDT/Signals/Series1/x465/Time")),
              (std::vector<double>{0.0, 0.1, 0.2}));
    EXPECT_TRUE(test::pathExists(file, QStringLiteral("DataConverted/TDT/Signals")));
    EXPECT_FALSE(test::pathExists(file, QStringLiteral("DataConverted/TDT/Events")));

    // No store ticked is refused before anything is written.
    child<QRadioButton>(dialog, "rb_existingFile")->setChecked(true);
    stores->item(1)->setCheckState(Qt::Unchecked);
    EXPECT_FALSE(dialog.buildRequest(problem));
    EXPECT_EQ(problem, QStringLiteral("Choose at least one store to bring in."));
}

TEST(ConvertDialog, SaysWhyAFileIsNoRecording)
{
    test::TempDir dir;
    const QString ppd = dir.file(QStringLiteral("m1.ppd"));
    ASSERT_TRUE(test::writeBytes(ppd, test::ppdBytes(100, "2 colour continuous", {1e-4, 1e-4},
                                                     {{10, 20}, {30, 40}}, {{0, 1}, {0, 0}})));
    const QString text = dir.file(QStringLiteral("notes.txt"));
    test::writeText(text, "nothing to see\n");

    ConvertDialog dialog(QString(), nullptr);
    dialog.show();
    child<QComboBox>(dialog, "cb_sourceType")->setCurrentIndex(ConvertDialog::Recording);
    child<QLineEdit>(dialog, "le_source")->setText(ppd);
    auto* found = child<QLabel>(dialog, "lb_found");
    EXPECT_TRUE(found->text().contains(QStringLiteral("signal <b>AIN2</b>: 2 samples at 100 Hz")))
        << found->text().toStdString();
    EXPECT_TRUE(found->text().contains(QStringLiteral("events <b>DIO1</b>: 1")));
    EXPECT_FALSE(child<QListWidget>(dialog, "lw_stores")->isVisible());
    child<QLineEdit>(dialog, "le_source")->setText(text);
    EXPECT_FALSE(found->text().contains(QStringLiteral("signal")));
    EXPECT_TRUE(found->text().contains(QStringLiteral("notes.txt"))) << found->text().toStdString();
}

TEST(BackgroundJob, RunsWorkOffTheGuiThreadAndCancelsFromTheProgressDialog)
{
    test::TempDir dir;
    const QString stack = dir.file(QStringLiteral("stack.tif"));
    {
        TiffStackWriter writer;
        ASSERT_TRUE(writer.open(TiffStackWriterConfig{stack, 64, 64, 16, 400}));
        for (int k = 0; k < 400; ++k)
            ASSERT_TRUE(writer.writeFrame(test::testFrame(64, 64, k)));
        ASSERT_TRUE(writer.finish());
    }
    const QString file = dir.file(QStringLiteral("cancelled.orvel"));
    TiffStackConversionConfig config;
    config.sourcePath = stack;
    config.destination = ConversionDestination{file, QStringLiteral("Scope"), QStringLiteral("Cells"), 0};
    config.frameRate = 10.0;

    BackgroundJob job(ZarviMainDefinitions::progressTitle());
    QThread* worker = nullptr;
    ConversionResult result;
    bool sawProgress = false;
    QObject::connect(&job, &BackgroundJob::progressChanged, &job, [&](int percent) {
        // Cancel as the user would, once the frames are being written.
        if (percent >= 20 && !sawProgress) {
            sawProgress = true;
            emit job.progressDialog()->canceled();
        }
    });
    const bool completed = job.exec(QStringLiteral("Converting"), [&](Feedback& feedback) {
        worker = QThread::currentThread();
        // Slow the job down so that the cancel arrives while it runs.
        struct Slowed : Feedback
        {
            Feedback& target;
            explicit Slowed(Feedback& t) : target(t) {}
            bool isCanceled() const override
            {
                QThread::usleep(2000);
                return target.isCanceled();
            }
            void setProgress(int percent) override { target.setProgress(percent); }
        } slowed(feedback);
        result = TiffStackConverter::convert(config, &slowed);
    });
    EXPECT_FALSE(completed);
    EXPECT_TRUE(job.wasCanceled());
    EXPECT_NE(worker, QThread::currentThread());
    EXPECT_TRUE(sawProgress);
    EXPECT_TRUE(result.canceled);
    EXPECT_FALSE(QFileInfo::exists(file));
    EXPECT_EQ(job.progressDialog()->windowTitle(), QStringLiteral("Progress"));
    EXPECT_FALSE(job.progressDialog()->isVisible());
}

TEST(ExportDialog, ListsDatasetsChecksTheSelectionAndExportsAFrameRange)
{
    test::TempDir dir;
    const QString file = dir.file(QStringLiteral("data.orvel"));
    {
        HDF5Writer_V6 writer;
        ASSERT_GE(writer.create(file), 0);
        QString error;
        ASSERT_TRUE(SignalDataset::write(writer, QStringLiteral("DataAcquisition/Rig/Signals/Series1/Green"),
                                         Signal{{0.0, 1.0}, {3.0, 4.0}, QStringLiteral("V")}, {}, error));
        const hid_t group =
            writer.createGroupPath(writer.fileId(), QStringLiteral("DataAcquisition/Scope/Images/Series1/A"));
        ImageStackInfo geometry;
        geometry.height = 4;
        geometry.width = 5;
        ImageFrameWriter stack;
        ASSERT_TRUE(stack.create(writer, group, geometry, 8, {}, error)) << error.toStdString();
        for (int k = 0; k < 8; ++k)
            ASSERT_TRUE(stack.appendRaw(test::testFrame(5, 4, k).data(), 0.1 * k, error));
        stack.close();
        writer.closeGroup(group);
    }
    ExportDialog dialog(file, {QStringLiteral("DataAcquisition/Scope/Images/Series1/A")}, nullptr);
    auto* list = child<QListWidget>(dialog, "lw_datasets");
    ASSERT_EQ(list->count(), 2);
    EXPECT_EQ(list->item(0)->text(), QStringLiteral("DataAcquisition/Rig/Signals/Series1/Green/Signal"));
    EXPECT_EQ(list->item(0)->checkState(), Qt::Unchecked);
    EXPECT_EQ(list->item(1)->checkState(), Qt::Checked);
    EXPECT_EQ(child<QComboBox>(dialog, "cb_format")->currentIndex(), ExportDialog::Tiff);
    EXPECT_EQ(child<QSpinBox>(dialog, "sb_lastFrame")->value(), 8);
    child<QSpinBox>(dialog, "sb_firstFrame")->setValue(3);
    child<QSpinBox>(dialog, "sb_lastFrame")->setValue(5);
    const QString output = dir.file(QStringLiteral("range"));
    child<QLineEdit>(dialog, "le_output")->setText(output);

    QString problem;
    const std::optional<DataExportConfig> config = dialog.buildConfig(problem);
    ASSERT_TRUE(config) << problem.toStdString();
    EXPECT_EQ(config->datapaths,
              QStringList{QStringLiteral("DataAcquisition/Scope/Images/Series1/A/ImageStack")});
    EXPECT_EQ(config->outputPath, output + QStringLiteral(".tif"));
    EXPECT_EQ(config->firstFrame, 2u);
    EXPECT_EQ(config->frameCount, 3u);

    Shown shown;
    dialog.setMessagePresenter(shown.presenter());
    ASSERT_TRUE(dialog.exportData()) << shown.messages.join(' ').toStdString();
    EXPECT_EQ(dialog.exportedFile(), output + QStringLiteral(".tif"));
    TiffStackReader reader;
    ASSERT_EQ(reader.open(TiffStackReaderConfig{output + QStringLiteral(".tif")}).frameCount, 3u);

    // Choosing the signal instead switches back to a table.
    list->item(1)->setCheckState(Qt::Unchecked);
    list->item(0)->setCheckState(Qt::Checked);
    EXPECT_EQ(child<QComboBox>(dialog, "cb_format")->currentIndex(), ExportDialog::Csv);
    EXPECT_TRUE(child<QLineEdit>(dialog, "le_output")->text().endsWith(QStringLiteral(".csv")));
}

} // namespace
} // namespace zarvi
