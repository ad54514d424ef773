// The perievent parameter view and the result views on real files, offscreen.
#include "PerieventTestFile.h"

#include "analysis/AnalysisOperationDialog.h"
#include "analysis/AnalysisPipeline.h"
#include "analysis/PerieventHeatMap.h"
#include "analysis/PerieventResultView.h"
#include "analysis/PerieventTracePlot.h"
#include "analysis/operations/perievents/PerieventPreview.h"
#include "analysis/operations/perievents/PerieventSideBox.h"
#include "analysis/operations/perievents/PerieventsView.h"
#include "app/browser/DataFileTreeWidget.h"
#include "app/plugins/DatasetPipeline.h"
#include "app/plugins/DatasetPlugin.h"
#include "datafile/SignalDataset.h"
#include "framework/BackgroundJob.h"
#include "framework/DatasetSelector.h"
#include "framework/OperationRunner.h"
#include "framework/OperationSettings.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFileInfo>
#include <QHeaderView>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTableWidget>
#include <QTest>

#include <qcustomplot.h>

#include <gtest/gtest.h>

#include <cmath>

using namespace zarvi;

namespace {

using D = AnalysisOperationDefinitions;
using FD = FileDefinitions;

class PerieventViewTest : public ::testing::Test
{
protected:
    // Each test starts from the declared defaults, whatever an earlier run remembered.
    PerieventViewTest() { OperationSettings::remember(D::Perievents, {}); }

    const DemoTruth& truth = test::PerieventDemo::instance().truth;
    test::TempDir dir;
    QString file = test::PerieventDemo::instance().copyTo(dir);

    template <typename T> static T* child(const QWidget& view, const char* name)
    {
        T* widget = view.findChild<T*>(QString::fromLatin1(name));
        EXPECT_NE(widget, nullptr) << name;
        return widget;
    }
};

TEST_F(PerieventViewTest, ControlsLabelsAndTheEventArraysOfTheFile)
{
    test::writeEventArray(file, truth.eventPath, QStringLiteral("Tone"), {30.0, 70.0}, 1);
    PerieventsView view;
    view.setupProcess(file, {truth.biosensorPath});
    ASSERT_TRUE(view.loadFileData());
    EXPECT_EQ(view.windowTitle(), "Perievents Parameters");
    for (const char* name : {"cb_event",           "cb_onoff",
                             "lb_onoff",           "w_onset",
                             "dsb_onWindowStart",  "dsb_onWindowEnd",
                             "tw_onStatistic",     "tb_onAdd",
                             "tb_onRemove",        "w_offset",
                             "dsb_offWindowStart", "dsb_offWindowEnd",
                             "tw_offStatistic",    "tb_offAdd",
                             "tb_offRemove",       "lw_statistics",
                             "lb_statistic",       "cb_normalize",
                             "dsb_normalizeStart", "dsb_normalizeEnd",
                             "cb_normalizeMethod", "cb_normalizeSource",
                             "cb_normalizeEvent",  "cb_selectEvents",
                             "cb_selectOption",    "sb_eventFirst",
                             "sb_eventLast",       "cb_timePeriod",
                             "cb_periodName",      "cb_resample",
                             "dsb_resampleFreq",   "cb_resampleMethod",
                             "lb_range",           "w_signal"})
        EXPECT_NE(view.findChild<QWidget*>(QString::fromLatin1(name)), nullptr) << name;

    EXPECT_TRUE(
        child<QLabel>(view, "lb_description")->text().contains(QString::fromUtf8("event\u2011centered")));
    EXPECT_EQ(child<QWidget>(view, "w_onset")->toolTip(),
              "Onset perievent parameters. Select perievent time frame and area under curve time frames.");
    EXPECT_EQ(
        child<QWidget>(view, "cb_onoff")->toolTip(),
        "If event array contains onsets and offsets, it is possible to calculate perievents before onset, "
        "or offset, or both.");
    EXPECT_EQ(child<QWidget>(view, "cb_normalize")->toolTip(), "Aligns signal chunks to the same zero level");
    EXPECT_TRUE(
        child<QWidget>(view, "dsb_normalizeStart")->toolTip().contains("perievent chunk.  If the time"));
    EXPECT_TRUE(child<QWidget>(view, "tb_onAdd")->toolTip() == "Add a row to statistic table.");
    const QStringList headers{"Name", "Start", "End"};
    auto* table = child<QTableWidget>(view, "tw_onStatistic");
    for (int c = 0; c < 3; ++c)
        EXPECT_EQ(table->horizontalHeaderItem(c)->text(), headers[c]);

    // The stimulus has offsets: every side is offered; the tone has none.
    auto* event = child<QComboBox>(view, "cb_event");
    auto* onoff = child<QComboBox>(view, "cb_onoff");
    ASSERT_EQ(event->count(), 2);
    EXPECT_EQ(event->itemText(0), "Stimulus");
    EXPECT_TRUE(onoff->isEnabled());
    QStringList sides;
    for (int i = 0; i < onoff->count(); ++i)
        sides << onoff->itemText(i);
    EXPECT_EQ(sides, QStringList({"Onset", "Offset", "Both", "Only Onsets", "Only Offsets"}));
    onoff->setCurrentText("Both");
    EXPECT_TRUE(view.offsetBox()->isEnabled());
    QVariantMap parameters = view.currentParameters();
    EXPECT_EQ(parameters.value(D::Onset), 1);
    EXPECT_EQ(parameters.value(D::Offset), 1);
    EXPECT_EQ(parameters.value(D::OffsetPerieventTimeFrame).toList(), QVariantList({-2.0, 5.0}));
    EXPECT_EQ(parameters.value(D::TimeFramesNames).toStringList(), QStringList({"Baseline", "Response"}));
    EXPECT_EQ(parameters.value(D::StatisticTimeFrames).toList(), QVariantList({-2.0, 0.0, 0.0, 2.0}));
    EXPECT_EQ(child<QLabel>(view, "lb_range")->text(), "Events between 2 and 294.999 sec");

    event->setCurrentText("Tone");
    EXPECT_FALSE(onoff->isEnabled());
    EXPECT_EQ(onoff->currentText(), "Onset");
    EXPECT_FALSE(view.offsetBox()->isEnabled());
    parameters = view.currentParameters();
    EXPECT_FALSE(parameters.contains(D::Onset));
    EXPECT_EQ(child<QSpinBox>(view, "sb_eventLast")->value(), 2);

    // The dialog opens at its default size.
    auto* dialog = new AnalysisOperationDialog(new PerieventsView); // deletes itself when closed
    dialog->show();
    EXPECT_EQ(dialog->size(), QSize(928, 720));
    EXPECT_EQ(dialog->windowTitle(), "Perievents Parameters");
    dialog->close();
}

TEST_F(PerieventViewTest, StatisticTableCheckPaintsFaultyCellsAndRefuses)
{
    PerieventsView view;
    view.setupProcess(file, {truth.biosensorPath});
    ASSERT_TRUE(view.loadFileData());
    QStringList messages;
    view.setMessagePresenter(
        [&](const QString&, const QString& message, const QString&, int) { messages << message; });

    // Window -2 .. 5: a frame ending at 6 and a frame whose start is not below its end.
    PerieventSideBox* box = view.onsetBox();
    box->cell(0, 2)->setText("6");
    box->addFrame("Late", 3.0, 1.0);
    EXPECT_FALSE(view.run());
    EXPECT_EQ(messages,
              QStringList({"Incorrect statistic time frames. Please verify that all the time frames are "
                           "well defined."}));
    EXPECT_EQ(box->cell(0, 2)->styleSheet(), "background-color: red;");
    EXPECT_EQ(box->cell(0, 1)->styleSheet(), "");
    EXPECT_EQ(box->cell(2, 1)->styleSheet(), "background-color: red;");
    EXPECT_EQ(box->cell(2, 2)->styleSheet(), "background-color: red;");
    EXPECT_EQ(box->cell(1, 0)->styleSheet(), "");

    // Corrected, the run goes through and writes its result.
    box->cell(0, 2)->setText("0");
    box->cell(2, 1)->setText("1");
    box->cell(2, 2)->setText("3");
    QSignalSpy finished(&view, &AbstractOperationView::sendProcessFinished);
    ASSERT_TRUE(view.run());
    ASSERT_TRUE(finished.wait(30000));
    EXPECT_EQ(box->cell(0, 2)->styleSheet(), "");
    const QStringList errors = finished.first().at(2).toStringList();
    ASSERT_TRUE(errors.isEmpty()) << errors.join(' ').toStdString();
    const test::RawDataset late =
        test::readRaw(file, "DataAnalyzed/FiberPhotometry/Signals/Series1/Perievents1/Biosensor/AUC");
    EXPECT_EQ(late.attributes.value(D::ColumnNames).toStringList(),
              QStringList({"Baseline", "Response", "Late"}));
}

TEST_F(PerieventViewTest, StatisticTableShowsItsColumnTitlesInFull)
{
    auto* view = new PerieventsView;
    view->setupProcess(file, {truth.biosensorPath});
    auto* dialog = new AnalysisOperationDialog(view);
    dialog->show();
    QCoreApplication::sendPostedEvents();
    for (const char* name : {"tw_onStatistic", "tw_offStatistic"}) {
        const auto* table = child<QTableWidget>(*view, name);
        const QHeaderView* header = table->horizontalHeader();
        for (int column = 0; column < table->columnCount(); ++column)
            EXPECT_GE(header->sectionSize(column),
                      header->fontMetrics().horizontalAdvance(table->horizontalHeaderItem(column)->text()))
                << name << " column " << column;
    }
    delete dialog;
}

TEST_F(PerieventViewTest, EnterInAStatisticCellConfirmsTheCellAndRunsNothing)
{
    auto* view = new PerieventsView;
    view->setupProcess(file, {truth.biosensorPath});
    ASSERT_TRUE(view->loadFileData());
    auto* dialog = new AnalysisOperationDialog(view);
    dialog->show();
    QLineEdit* cell = view->onsetBox()->cell(0, 2);
    cell->setFocus();
    cell->setText("0.5");
    QTest::keyClick(cell, Qt::Key_Return);
    QTest::keyClick(cell, Qt::Key_Enter);
    EXPECT_FALSE(view->isRunning());
    EXPECT_EQ(cell->text(), "0.5");
    delete dialog;
}

TEST_F(PerieventViewTest, PreviewIsTheChunkOfTheChosenEvent)
{
    PerieventsView view;
    view.setupProcess(file, {truth.biosensorPath});
    ASSERT_TRUE(view.loadFileData());
    child<QComboBox>(view, "cb_previewEvent")->setCurrentIndex(2);
    QSignalSpy computed(view.previewJob(), &BackgroundJob::finished);
    view.updatePreview();
    ASSERT_TRUE(computed.wait(20000));
    const PerieventPreview* preview = view.preview();
    EXPECT_EQ(preview->note(), "Select signal chunk for preview.");
    // Window -2 .. 5 at 1 kHz: about 7001 samples, from 2000 samples before the event's.
    EXPECT_NEAR(preview->shownPoints(), 7001, 2);
    Signal signal;
    QString error;
    {
        HDF5Reader_V6 reader;
        ASSERT_GE(reader.open(file), 0);
        ASSERT_TRUE(SignalDataset::read(reader, truth.biosensorPath, signal, error));
    }
    const auto sample = static_cast<std::size_t>(std::lround(truth.eventOnsets[2] * 1000.0));
    EXPECT_EQ(preview->plot()->graph(0)->data()->begin()->value, signal.values[sample - 2000]);

    // Normalised, the baseline [-2, -1] of the chunk averages 0.
    child<QCheckBox>(view, "cb_normalize")->setChecked(true);
    view.updatePreview();
    ASSERT_TRUE(computed.wait(20000));
    double baseline = 0.0;
    int count = 0;
    for (auto it = preview->plot()->graph(0)->data()->begin(); it != preview->plot()->graph(0)->data()->end();
         ++it)
        if (it->key <= -1.0) {
            baseline += it->value;
            ++count;
        }
    EXPECT_NEAR(baseline / count, 0.0, 1e-9);
}

TEST_F(PerieventViewTest, TheNextOpeningShowsTheLastRunsParameters)
{
    test::writeEventArray(file, truth.eventPath, QStringLiteral("Tone"), {30.0, 70.0}, 1);
    const QVariantMap last{{D::Event, QStringLiteral("Tone")},
                           {D::EventPath, truth.eventPath},
                           {D::PerieventTimeFrame, QVariantList{-3.0, 6.0}},
                           {D::StatisticTimeFrames, QVariantList{-3.0, 0.0, 1.0, 4.0}},
                           {D::TimeFramesNames, QStringList{"Before", "After"}},
                           {D::Statistics, QStringList{D::Mean, D::Maximum}},
                           {D::NormalizeWindow, QVariantList{-2.5, -0.5}},
                           {D::NormalizeMethod, D::StandardZScore},
                           {D::Resample, 1},
                           {D::ResampleFrequency, 50.0}};
    OperationSettings::remember(D::Perievents, last);
    PerieventsView view;
    view.setupProcess(file, {truth.biosensorPath});
    ASSERT_TRUE(view.loadFileData());
    EXPECT_EQ(child<QComboBox>(view, "cb_event")->currentText(), "Tone");
    EXPECT_EQ(child<QDoubleSpinBox>(view, "dsb_onWindowStart")->value(), -3.0);
    EXPECT_EQ(child<QDoubleSpinBox>(view, "dsb_onWindowEnd")->value(), 6.0);
    EXPECT_TRUE(child<QCheckBox>(view, "cb_normalize")->isChecked());
    EXPECT_EQ(child<QComboBox>(view, "cb_normalizeMethod")->currentText(), D::StandardZScore);
    EXPECT_TRUE(child<QCheckBox>(view, "cb_resample")->isChecked());
    const QVariantMap built = view.currentParameters();
    // What the view would run is what was remembered.
    for (auto it = last.begin(); it != last.end(); ++it)
        EXPECT_EQ(built.value(it.key()), it.value()) << it.key().toStdString();
}

TEST_F(PerieventViewTest, TheAnalysisPageChoosesItsOwnSignalsStartingFromTheProcessingChoice)
{
    DatasetPlugin plugin(QStringLiteral("zarvi"), QStringLiteral("2.0.8.1"), nullptr);
    ASSERT_TRUE(plugin.loadFile(file));
    DatasetSelector* processing = plugin.pipeline()->selector();
    DatasetSelector* analysis = plugin.analysis()->selector();
    processing->select({truth.biosensorPath});
    EXPECT_EQ(analysis->selectedPaths(), QStringList{truth.biosensorPath});
    // Another signal for the analyses leaves the processing choice as it was.
    analysis->select({truth.isosbesticPath});
    EXPECT_EQ(processing->selectedPaths(), QStringList{truth.biosensorPath});
    AbstractOperationView* view = plugin.analysis()->openOperation(D::Perievents)->view();
    EXPECT_EQ(view->datapaths(), QStringList{truth.isosbesticPath});
}

TEST_F(PerieventViewTest, AWindowLongerThanTheSignalIsSaidWithOneDurationEverywhere)
{
    PerieventsView view;
    QStringList messages;
    view.setMessagePresenter(
        [&](const QString&, const QString& message, const QString&, int) { messages << message; });
    view.setupProcess(file, {truth.biosensorPath});
    ASSERT_TRUE(view.loadFileData());

    // The duration the check uses: last time minus first time of the whole signal.
    Signal signal;
    QString error;
    {
        HDF5Reader_V6 reader;
        ASSERT_GE(reader.open(file), 0);
        ASSERT_TRUE(SignalDataset::read(reader, truth.biosensorPath, signal, error));
    }
    const double duration = signal.time.back() - signal.time.front();
    ASSERT_NEAR(duration, truth.photometryDuration, 0.01);
    const QString expected =
        QStringLiteral(
            "Impossible to calculate perievents, since the duration of the signal (%1) is shorter than "
            "the selected perievent window (-2 -- 400).")
            .arg(QString::number(duration, 'g', QLocale::FloatingPointShortest));

    view.onsetBox()->setWindow(-2.0, 400.0);
    // No range of events is offered: none fits.
    EXPECT_EQ(child<QLabel>(view, "lb_range")->text(), expected);

    QSignalSpy computed(view.previewJob(), &BackgroundJob::finished);
    view.updatePreview();
    ASSERT_TRUE(computed.wait(20000));
    EXPECT_EQ(view.preview()->note(), expected);

    QSignalSpy finished(&view, &AbstractOperationView::sendProcessFinished);
    ASSERT_TRUE(view.run());
    ASSERT_TRUE(finished.wait(30000));
    EXPECT_EQ(finished.first().at(2).toStringList(), QStringList{expected});
    EXPECT_EQ(messages, QStringList{expected});

    // A window that fits gives the range its events may lie in: [first + 2, last - 5].
    view.onsetBox()->setWindow(-2.0, 5.0);
    EXPECT_EQ(child<QLabel>(view, "lb_range")->text(),
              QStringLiteral("Events between %1 and %2 sec")
                  .arg(QString::number(signal.time.front() + 2.0, 'g', 10),
                       QString::number(signal.time.back() - 5.0, 'g', 10)));
}

TEST_F(PerieventViewTest, SavedResultOpensInTheResultViews)
{
    OperationRunner runner;
    const RunResult run = runner.run(test::demoParameters(truth), file, {truth.biosensorPath});
    ASSERT_TRUE(run.succeeded()) << run.errors.join(' ').toStdString();
    const test::RawDataset matrix = test::readRaw(file, run.datapaths[0]);

    PerieventResultView view;
    QString error;
    ASSERT_TRUE(view.load(
        file, QStringLiteral("DataAnalyzed/FiberPhotometry/Signals/Series1/Perievents1/Biosensor"), error))
        << error.toStdString();
    QCPColorMapData* cells = view.heatMap()->colorMap()->data();
    EXPECT_EQ(cells->keySize(), static_cast<int>(matrix.dimensions[1]));
    EXPECT_EQ(cells->valueSize(), static_cast<int>(matrix.dimensions[0]));
    EXPECT_EQ(cells->cell(10, 3), matrix.values[3 * matrix.dimensions[1] + 10]);
    EXPECT_EQ(view.heatMap()->plot()->xAxis->label(), "Time (sec)");
    EXPECT_EQ(view.heatMap()->plot()->yAxis->label(), "Trials");
    EXPECT_EQ(view.heatMap()->colorScale()->axis()->label(), "V");
    EXPECT_EQ(view.tracePlot()->meanGraph()->dataCount(), static_cast<int>(matrix.dimensions[1]));
    // Mean of column 0 over the trials, by hand.
    double mean = 0.0;
    for (std::size_t r = 0; r < matrix.dimensions[0]; ++r)
        mean += matrix.values[r * matrix.dimensions[1]] / static_cast<double>(matrix.dimensions[0]);
    EXPECT_NEAR(view.tracePlot()->meanGraph()->data()->begin()->value, mean, 1e-12);
    QTableWidget* table = view.statisticsTable();
    EXPECT_EQ(table->rowCount(), static_cast<int>(matrix.dimensions[0]));
    EXPECT_EQ(table->columnCount(), 4);
    EXPECT_EQ(table->horizontalHeaderItem(3)->text(), "Maximum Response");
    EXPECT_EQ(table->verticalHeaderItem(0)->text(), "Event1");

    const QString png = dir.file("heat.png"), pdf = dir.file("traces.pdf");
    EXPECT_TRUE(view.saveImage(png));
    view.tabs()->setCurrentIndex(1);
    EXPECT_TRUE(view.saveImage(pdf));
    EXPECT_GT(QFileInfo(png).size(), 0);
    EXPECT_GT(QFileInfo(pdf).size(), 0);
    // Saved as a figure: 1200 x 800 pixels on white, the plot on screen still dark.
    const QImage heat(png);
    heat.save(QStringLiteral(ZARVI_TEST_BINARY_DIR "/perievent-figure.png")); // for people to look at
    EXPECT_EQ(heat.size(), QSize(1200, 800));
    EXPECT_EQ(heat.pixelColor(0, 0), QColor(Qt::white));
    EXPECT_EQ(view.heatMap()->plot()->toPixmap(60, 40).toImage().pixelColor(0, 0),
              QColor(QStringLiteral("#302f2f")));
    EXPECT_EQ(view.heatMap()->colorScale()->axis()->labelColor(), QColor(QStringLiteral("#cccccc")));
    QStringList written;
    EXPECT_EQ(view.exportCsv(dir.file("trials.csv"), written), QString());
    EXPECT_EQ(written.size(), 4); // the matrix, the mean ± SEM trace and two statistics

    // The file browser shows the result group in the result view.
    DatasetPlugin plugin(QStringLiteral("zarvi"), QStringLiteral("2.0.8.1"), nullptr);
    ASSERT_TRUE(plugin.loadFile(file));
    const int tabs = plugin.viewTabs()->count();
    EXPECT_EQ(plugin.displayPaths(
                  {QStringLiteral("DataAnalyzed/FiberPhotometry/Signals/Series1/Perievents1/Biosensor")}),
              1);
    ASSERT_EQ(plugin.viewTabs()->count(), tabs + 1);
    EXPECT_NE(qobject_cast<PerieventResultView*>(plugin.viewTabs()->widget(tabs)), nullptr);

    // When a run ends, the tree selects what it wrote and the status bar says it.
    QSignalSpy status(&plugin, &AbstractPlugin::sendStatusMessage);
    emit plugin.analysis()->sendOperationProcessFinished(file, run.datapaths);
    ASSERT_EQ(status.count(), 1);
    EXPECT_EQ(status.first().first().toString(), QStringLiteral("Written: Perievents1: 1 signal"));
    QStringList selected = plugin.fileTree()->selectedPaths();
    QStringList outputs = run.datapaths;
    selected.sort();
    outputs.sort();
    EXPECT_EQ(selected, outputs);

    // A picture of the results with their statistics table, for people to look at.
    view.resize(1600, 1000);
    for (int page = 0; page < view.tabs()->count(); ++page)
        if (view.tabs()->widget(page)->isAncestorOf(table) || view.tabs()->widget(page) == table)
            view.tabs()->setCurrentIndex(page);
    view.show();
    EXPECT_TRUE(view.grab().save(QStringLiteral(ZARVI_TEST_BINARY_DIR "/perievent-results.png")));
}

} // namespace
